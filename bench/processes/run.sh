#!/usr/bin/env bash
# Times the process actions, run through zt on a project file, against the
# shell a user would otherwise use, in one run on the same machine:
#   1,000 "Execute Program" actions running /bin/true
#                                   vs  a shell loop running it 1,000 times
#   "Execute Program" running `seq 1 5000000`, its output captured into the
#   log, with --quiet --log-json    vs  seq 1 5000000 > file
# Each figure is the best of five wall-clock times, the runs interleaved.
# The projects and logs live in a scratch directory deleted at the end.
#
# usage: bench/processes/run.sh [BUILD_DIR]   (default: build/bench)
set -euo pipefail

ROOT=$(cd "$(dirname "$0")/../.." && pwd)
BUILD=$(realpath -m "${1:-$ROOT/build/bench}")
if [[ ! -x $BUILD/zt || ! -f $BUILD/FileAndMiscPackage.so ]]; then
  cmake -S "$ROOT" -B "$BUILD" -DCMAKE_BUILD_TYPE=Release -DZT_BUILD_TESTS=OFF >/dev/null
  cmake --build "$BUILD" -j2 --target zt FileAndMiscPackage >/dev/null
fi
ZT=$BUILD/zt
RUNS=${RUNS:-1000}
LINES=${LINES:-5000000}
WORK=$(mktemp -d "${TMPDIR:-/tmp}/zt-processes-bench-XXXXXX")
trap 'rm -rf "$WORK"' EXIT
cd "$WORK"

{
  echo "name: Many programs"
  echo "actions:"
  for ((i = 0; i < RUNS; i++)); do
    printf '  - action: Execute Program\n    ProgramName: /bin/true\n'
  done
} >many.yml
cat >capture.yml <<YAML
name: Captured output
actions:
  - action: Execute Program
    ProgramName: seq
    Params: 1 $LINES
YAML

# time_once COMMAND...: wall time in seconds.
time_once() {
  local t0 t1
  t0=$(date +%s.%N)
  "$@" >/dev/null
  t1=$(date +%s.%N)
  awk -v a="$t0" -v b="$t1" 'BEGIN { printf "%.6f", b - a }'
}
min() { awk -v a="$1" -v b="$2" 'BEGIN { print (a == "" || b < a) ? b : a }'; }
ratio() { awk -v a="$1" -v b="$2" 'BEGIN { printf "%.2f", a / b }'; }
shell_loop() { sh -c 'i=0; while [ $i -lt "$1" ]; do /bin/true; i=$((i + 1)); done' loop "$RUNS"; }
seq_to_file() { seq 1 "$LINES" >seq.out; }

zt_many="" sh_many="" zt_seq="" sh_seq=""
for _ in 1 2 3 4 5; do
  zt_many=$(min "$zt_many" "$(time_once "$ZT" run many.yml --quiet --log-json many.jsonl)")
  sh_many=$(min "$sh_many" "$(time_once shell_loop)")
  zt_seq=$(min "$zt_seq" "$(time_once "$ZT" run capture.yml --quiet --log-json capture.jsonl)")
  sh_seq=$(min "$sh_seq" "$(time_once seq_to_file)")
done
# The log holds every line.
captured=$(python3 -c 'import json, sys
print(sum(len(e.get("details", [])) for e in map(json.loads, open(sys.argv[1])) if e["event"] == "status"))' capture.jsonl)
[[ $captured -eq $LINES ]] || { echo "captured $captured lines of $LINES" >&2; exit 1; }

echo "$RUNS programs (best of five, runs interleaved)"
printf '  %-40s %8.3fs\n' "zt: $RUNS Execute Program actions" "$zt_many" "sh: a loop running /bin/true" "$sh_many"
echo "  ratio zt/sh: $(ratio "$zt_many" "$sh_many")"
echo
echo "seq 1 $LINES captured (best of five, runs interleaved)"
printf '  %-40s %8.3fs\n' "zt: Execute Program, --quiet --log-json" "$zt_seq" "sh: seq > file" "$sh_seq"
echo "  ratio zt/sh: $(ratio "$zt_seq" "$sh_seq")"
