#!/usr/bin/env bash
# Sets up the machine, builds the launcher, installs it into a demo tree with
# the project's install rules, adds sample Java commands and runs `znnode -l`
# through the launcher.
set -euo pipefail
cd "$(dirname "$0")/.."
root=$PWD

scripts/setup.sh
scripts/build.sh build

demo=$root/demo
rm -rf "$demo"
# The same rules as the package, relocated below demo/ (ZN_BASE_DIR): the
# launcher, its 36 command links, znsetlocale, the manual page, the empty
# directories, and opt/zn/j2re linked to the build JDK.
cmake --install build --prefix "$demo" >/dev/null
# Sample commands: the test suite's Java classes, which print what they
# received.
cp build/tests/fixtures/java/jars/commands.jar "$demo/opt/zn/lib/sample-commands.jar"
cp build/tests/fixtures/java/jars/auth.jar "$demo/opt/zn/lib/sample-auth.jar"

echo "== Demo install tree: $demo (ZN_BASE_DIR)"
echo "== Running: znnode -l   (options echoed by ZN_SHOW_JVM_OPTS)"
echo
status=0
ZN_BASE_DIR=$demo ZN_SHOW_JVM_OPTS= "$demo/opt/zn/bin/znnode" -l || status=$?
echo
echo "== Exit status: $status"
echo "== Manual page: man -l $demo/opt/zn/share/man/man1/znlauncher.1"
exit "$status"
