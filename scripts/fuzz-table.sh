#!/usr/bin/env bash
# Rewrites the table of docs/FUZZING.md (between its "fuzz-table" markers)
# from the records docs/fuzz/<subject>.txt that scripts/run-fuzz.sh writes.
set -euo pipefail
root="$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)"
doc="$root/docs/FUZZING.md"
table="$(mktemp)"
trap 'rm -f "$table"' EXIT
{
  echo "| harness | started (UTC) | commit | seconds | runs | runs/s | cov | ft | kept corpus | peak RSS MB | result |"
  echo "|---|---|---|---|---|---|---|---|---|---|---|"
  for record in "$root"/docs/fuzz/*.txt; do
    [ -f "$record" ] || continue
    awk -F': ' '
      { sub(/^ +/, "", $2); v[$1] = $2 }
      END {
        split(v["coverage"], c, " ")
        printf "| %s | %s | %s | %s | %s | %s | %s | %s | %s | %s | %s |\n",
          v["subject"], v["started"], v["commit"], v["seconds"], v["stat::number_of_executed_units"],
          v["stat::average_exec_per_sec"], c[2], c[4], v["kept corpus files"], v["stat::peak_rss_mb"], v["result"]
      }' "$record"
  done
} >"$table"
awk -v table="$table" '
  /<!-- fuzz-table:begin -->/ { print; while ((getline line < table) > 0) print line; skip = 1; next }
  /<!-- fuzz-table:end -->/ { skip = 0 }
  !skip { print }' "$doc" >"$doc.new"
mv "$doc.new" "$doc"
cat "$table"
