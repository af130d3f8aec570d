#!/usr/bin/env bash
# Sets up the machine, builds the launcher, lays out a demo install tree
# with sample Java commands and runs `znnode -l` through the launcher.
set -euo pipefail
cd "$(dirname "$0")/.."
root=$PWD

scripts/setup.sh
scripts/build.sh build

demo=$root/demo
rm -rf "$demo"
mkdir -p "$demo/opt/zn/lib" "$demo/opt/zn/bin" "$demo/etc/opt/zn/config" "$demo/var/opt/zn/logs"
# The demo's Java runtime is the build JDK.
ln -s /usr/lib/jvm/java-17-openjdk-amd64 "$demo/opt/zn/j2re"
cp build/tests/fixtures/java/jars/commands.jar "$demo/opt/zn/lib/sample-commands.jar"
cp build/tests/fixtures/java/jars/auth.jar "$demo/opt/zn/lib/sample-auth.jar"
cp build/src/cxx/shared/ZnCLI/znlauncher "$demo/opt/zn/bin/"
while read -r name; do
  ln -sf znlauncher "$demo/opt/zn/bin/$name"
done < <(sed -n 's/^ *{"\([a-z]*\)", .*/\1/p' src/cxx/shared/ZnCLI/CommandTables.cpp)

echo "== Demo install tree: $demo (ZN_BASE_DIR)"
echo "== Running: znnode -l   (options echoed by ZN_SHOW_JVM_OPTS)"
echo
ZN_BASE_DIR=$demo ZN_SHOW_JVM_OPTS= "$demo/opt/zn/bin/znnode" -l
echo
echo "== Exit status: $?"
