#!/usr/bin/env bash
# Builds the libFuzzer harnesses with clang in build-fuzz and runs each one
# briefly on a seed corpus made from the example files. Exits non-zero when a
# harness crashes, leaks or trips a sanitizer.
#
#   scripts/run-fuzz-smoke.sh [SECONDS_PER_FUZZER]   (default 15; all together at most 60)
set -euo pipefail
# The library, too, is built with coverage instrumentation (fuzzer-no-link):
# without it the fuzzers would see only their own few lines.

root="$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)"
build="$root/build-fuzz"
per_fuzzer="${1:-15}"
budget=60

cmake -S "$root" -B "$build" -G Ninja \
  -DCMAKE_CXX_COMPILER=clang++ -DCMAKE_BUILD_TYPE=RelWithDebInfo \
  -DMTKIT_BUILD_FUZZERS=ON -DMTKIT_BUILD_TESTS=OFF -DMTKIT_BUILD_BENCHMARKS=OFF -DMTKIT_BUILD_TOOLS=OFF \
  -DMTKIT_SANITIZE=address,undefined \
  -DCMAKE_CXX_FLAGS=-fsanitize=fuzzer-no-link >/dev/null
cmake --build "$build" -j2 >/dev/null

mapfile -t fuzzers < <(find "$build" -maxdepth 3 -type f -name 'fuzz_*' -perm -u+x | sort)
if [ "${#fuzzers[@]}" -eq 0 ]; then
  echo "no fuzzers found in $build" >&2
  exit 1
fi
# Keep the whole run within the budget.
if [ $((per_fuzzer * ${#fuzzers[@]})) -gt "$budget" ]; then
  per_fuzzer=$((budget / ${#fuzzers[@]}))
fi

seeds="$build/seeds"
rm -rf "$seeds"
mkdir -p "$seeds"
find "$root/examples" -type f \( -name '*.json' -o -name '*.mtk' \) -exec cp {} "$seeds/" \;
# Seed corpora kept beside the harnesses, whatever their names.
if [ -d "$root/fuzz/corpus" ]; then find "$root/fuzz/corpus" -type f -exec cp {} "$seeds/" \;; fi

dict=()
[ -f "$root/fuzz/machine.dict" ] && dict=(-dict="$root/fuzz/machine.dict")

status=0
for fuzzer in "${fuzzers[@]}"; do
  name="$(basename "$fuzzer")"
  corpus="$build/corpus/$name"
  mkdir -p "$corpus"
  echo "== $name (${per_fuzzer}s)"
  if ! (cd "$build" && "$fuzzer" "${dict[@]}" -max_total_time="$per_fuzzer" -timeout=10 -rss_limit_mb=2048 \
          -print_final_stats=1 "$corpus" "$seeds" >"$build/$name.log" 2>&1); then
    echo "$name FAILED; see $build/$name.log" >&2
    tail -n 30 "$build/$name.log" >&2
    status=1
  else
    grep -E '^stat::number_of_executed_units|^#[0-9]+.*DONE' "$build/$name.log" | tail -n 2 || true
  fi
done
exit $status
