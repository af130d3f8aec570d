#!/usr/bin/env bash
# Each fuzz target for a few seconds: the long runs are scripts/fuzz.sh.
set -euo pipefail
cd "$(dirname "$0")/../.."
bash scripts/fuzz.sh 5
