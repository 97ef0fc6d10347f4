#!/usr/bin/env bash
# Builds the libFuzzer harnesses (clang, AddressSanitizer and
# UndefinedBehaviorSanitizer, the library instrumented too) and runs each one
# for SECONDS, with its own dictionary and seeds (fuzz/harnesses.txt) and its
# kept corpus fuzz/corpus/<subject>/.
#
#   scripts/run-fuzz.sh [--smoke] [SECONDS] [HARNESS...]
#
# SECONDS is per harness (default 600). HARNESS is a subject of
# fuzz/harnesses.txt (default: every harness built). A full run merges what
# each harness grew into its kept corpus (inputs that add coverage only) and
# records its -print_final_stats figures in docs/fuzz/<subject>.txt, from
# which docs/FUZZING.md's table is rewritten. --smoke does neither: it only
# fails when a harness crashes, leaks, hangs or trips a sanitizer.
# MTKIT_FUZZ_JOBS=2 runs two harnesses at a time.
set -euo pipefail

root="$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)"
build="$root/build-fuzz"
smoke=0
if [ "${1:-}" = "--smoke" ]; then smoke=1; shift; fi
seconds="${1:-600}"
if [ $# -gt 0 ]; then shift; fi
case "$seconds" in ''|*[!0-9]*) echo "run-fuzz: SECONDS must be a whole number, got '$seconds'" >&2; exit 2;; esac
jobs="${MTKIT_FUZZ_JOBS:-1}"

cmake -S "$root" -B "$build" -G Ninja \
  -DCMAKE_CXX_COMPILER=clang++ -DCMAKE_BUILD_TYPE=RelWithDebInfo \
  -DMTKIT_BUILD_FUZZERS=ON -DMTKIT_BUILD_TESTS=OFF -DMTKIT_BUILD_BENCHMARKS=OFF -DMTKIT_BUILD_TOOLS=OFF -DMTKIT_BUILD_PYTHON=OFF \
  -DMTKIT_SANITIZE=address,undefined \
  -DCMAKE_CXX_FLAGS=-fsanitize=fuzzer-no-link >/dev/null
cmake --build "$build" -j2 >/dev/null

declare -A dictionary seeds
while read -r subject dict globs; do
  case "$subject" in ''|'#'*) continue;; esac
  dictionary[$subject]="$dict"
  seeds[$subject]="$globs"
done <"$root/fuzz/harnesses.txt"

subjects=("$@")
if [ ${#subjects[@]} -eq 0 ]; then
  while read -r binary; do
    name="$(basename "$binary")"
    subjects+=("${name#fuzz_}")
  done < <(find "$build/fuzz" -maxdepth 1 -type f -name 'fuzz_*' -perm -u+x | sort)
  subjects=("${subjects[@]%fuzz}")
fi
if [ ${#subjects[@]} -eq 0 ]; then echo "run-fuzz: no harnesses built in $build/fuzz" >&2; exit 1; fi

commit="$(git -C "$root" rev-parse --short HEAD 2>/dev/null || echo unknown)"
if [ -n "$(git -C "$root" status --porcelain --untracked-files=no -- src fuzz 2>/dev/null)" ]; then commit="$commit+changes"; fi

# One harness: prepares its corpus and seeds, runs it, keeps what it found.
run_one() {
  local subject="$1" binary="$build/fuzz/fuzz_${1}fuzz"
  local work="$build/work/$subject" seeddir="$build/seeds/$subject" log="$build/$subject.log"
  if [ ! -x "$binary" ]; then echo "run-fuzz: no harness '$subject' (looked for $binary)" >&2; return 1; fi
  rm -rf "$work" "$seeddir"
  mkdir -p "$work" "$seeddir"
  local kept="$root/fuzz/corpus/$subject"
  if [ -d "$kept" ]; then cp "$kept"/* "$work"/ 2>/dev/null || true; fi
  local glob
  for glob in ${seeds[$subject]:-}; do
    # shellcheck disable=SC2086
    for f in $root/$glob; do [ -f "$f" ] && cp "$f" "$seeddir/"; done
  done
  local dict=()
  if [ -n "${dictionary[$subject]:-}" ] && [ "${dictionary[$subject]}" != "-" ]; then
    dict=(-dict="$root/fuzz/${dictionary[$subject]}")
  fi
  local started status=0
  started="$(date -u +%Y-%m-%dT%H:%MZ)"
  (cd "$build" && "$binary" "${dict[@]}" -max_total_time="$seconds" -timeout=10 -rss_limit_mb=2048 \
     -print_final_stats=1 "$work" "$seeddir" >"$log" 2>&1) || status=$?
  if [ $status -ne 0 ]; then
    echo "== $subject FAILED after $(grep -c '' "$log") log lines; see $log" >&2
    tail -n 40 "$log" >&2
    return 1
  fi
  local runs cov ft corpus
  runs="$(sed -n 's/^stat::number_of_executed_units: *//p' "$log" | tail -n 1)"
  cov="$(grep -Eo 'cov: [0-9]+' "$log" | tail -n 1 | cut -d' ' -f2)"
  ft="$(grep -Eo 'ft: [0-9]+' "$log" | tail -n 1 | cut -d' ' -f2)"
  corpus="$(grep -Eo 'corp: [0-9]+' "$log" | tail -n 1 | cut -d' ' -f2)"
  echo "== $subject: ${seconds}s, ${runs:-?} runs, cov ${cov:-?}, ft ${ft:-?}, corpus ${corpus:-?}, no findings"
  if [ $smoke -eq 1 ]; then return 0; fi
  mkdir -p "$kept" "$root/docs/fuzz"
  "$binary" -merge=1 "$kept" "$work" >"$build/$subject.merge.log" 2>&1
  {
    echo "subject: $subject"
    echo "started: $started"
    echo "commit: $commit"
    echo "seconds: $seconds"
    echo "dictionary: ${dictionary[$subject]:--}"
    echo "seeds: ${seeds[$subject]:--}"
    echo "result: no crash, leak, timeout or sanitizer report"
    echo "coverage: cov ${cov:-?} ft ${ft:-?} corpus ${corpus:-?}"
    echo "kept corpus files: $(find "$kept" -type f | wc -l)"
    grep '^stat::' "$log"
  } >"$root/docs/fuzz/$subject.txt"
}

failed=0
pids=()
for subject in "${subjects[@]}"; do
  if [ "$jobs" -gt 1 ]; then
    run_one "$subject" & pids+=($!)
    if [ ${#pids[@]} -ge "$jobs" ]; then wait "${pids[0]}" || failed=1; pids=("${pids[@]:1}"); fi
  else
    run_one "$subject" || failed=1
  fi
done
for pid in "${pids[@]}"; do wait "$pid" || failed=1; done

if [ $smoke -eq 0 ] && [ -d "$root/docs/fuzz" ]; then "$root/scripts/fuzz-table.sh" >/dev/null; fi
exit $failed
