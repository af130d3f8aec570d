#!/usr/bin/env bash
# Installs what building and testing need, from Debian's packages, where it
# is missing. Safe to run again.
set -euo pipefail

packages=(
  cmake ninja-build g++ clang clang-format clang-tidy cppcheck libclang-rt-14-dev
  openjdk-17-jdk-headless libgtest-dev libbenchmark-dev
  binutils file util-linux man-db groff-base dpkg-dev fakeroot valgrind
)

missing=()
for package in "${packages[@]}"; do
  dpkg-query -W -f='${Status}' "$package" 2>/dev/null | grep -q "install ok installed" ||
    missing+=("$package")
done

if ((${#missing[@]})); then
  echo "setup: installing ${missing[*]}"
  sudo=""
  [ "$(id -u)" -eq 0 ] || sudo="sudo"
  export DEBIAN_FRONTEND=noninteractive
  $sudo apt-get update -qq
  $sudo apt-get install -y -qq --no-install-recommends "${missing[@]}"
fi
