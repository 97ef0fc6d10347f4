#!/usr/bin/env bash
# What CI runs of the fuzz harnesses: each one briefly, without records or
# corpus changes. Exits non-zero when a harness crashes, leaks, hangs or
# trips a sanitizer.
#
#   scripts/run-fuzz-smoke.sh [SECONDS_PER_HARNESS]   (default 10)
set -euo pipefail
exec "$(dirname "$0")/run-fuzz.sh" --smoke "${1:-10}"
