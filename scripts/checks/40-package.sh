#!/usr/bin/env bash
# The manual page renders without warnings, and the Debian package builds
# from a build tree's install rules (scripts/checks/40-package.sh [BUILD_DIR],
# default build/). The package's contents are checked by tests/install.
set -euo pipefail
cd "$(dirname "$0")/../.."
build=${1:-build}

# groff reports its warnings on standard error; the page is read at the
# width of a terminal.
warnings=$(MANWIDTH=80 man --warnings -l docs/znlauncher.1 2>&1 >/dev/null)
if [ -n "$warnings" ]; then
  echo "$warnings" >&2
  echo "package: docs/znlauncher.1 renders with warnings" >&2
  exit 1
fi

out=$build/packages
rm -rf "$out"
if ! log=$(cpack --config "$build/CPackConfig.cmake" -B "$out" 2>&1); then
  echo "$log" >&2
  exit 1
fi
debs=("$out"/*.deb)
dpkg-deb --info "${debs[0]}" | sed -n 's/^ \(Package\|Version\|Architecture\|Depends\):/  \1:/p'
echo "package: ${debs[0]} ($(dpkg-deb --contents "${debs[0]}" | wc -l) entries)"
