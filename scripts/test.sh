#!/usr/bin/env bash
# The whole test suite: the default build and an AddressSanitizer +
# UndefinedBehaviorSanitizer build, each with every test, then the
# project's standing checks (scripts/checks/*.sh, in name order).
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/setup.sh

echo "== Default build"
scripts/build.sh build
ctest --test-dir build --output-on-failure -j2

echo "== AddressSanitizer + UndefinedBehaviorSanitizer build"
scripts/build.sh build-asan -DZN_SANITIZE=ON
LSAN_OPTIONS="suppressions=$PWD/tests/lsan.supp:print_suppressions=0" \
  ctest --test-dir build-asan --output-on-failure -j2

echo "== Formatting"
git ls-files '*.cpp' '*.h' | xargs clang-format --dry-run --Werror

for check in scripts/checks/*.sh; do
  [ -e "$check" ] || continue
  echo "== $(basename "$check" .sh)"
  bash "$check"
done
echo "== All tests passed"
