#!/usr/bin/env bash
# Times the loop actions, run through zt on project files, in one run on the
# same machine:
#   "File Iterator" with Recurse over 100,000 files in 1,000 directories,
#   no child actions                               vs  find DIR -type f
#     (and, for scale, find -printf '%s %T@', which looks at every file as
#     the iterator must to read its attributes; find -type f reads only the
#     directories)
#   "List Iterator" of 100,000 items whose only child is a disabled action,
#   with --quiet: the cost of one pass (the same project with the loop
#   disabled is timed too, and its time taken off, so loading the project
#   and starting zt do not count)
# Each figure is the best of three wall-clock times. Data lives in a scratch
# directory that is deleted at the end.
#
# usage: bench/loops/run.sh [BUILD_DIR]   (default: build/bench)
set -euo pipefail

ROOT=$(cd "$(dirname "$0")/../.." && pwd)
BUILD=${1:-$ROOT/build/bench}
if [[ ! -x $BUILD/zt || ! -f $BUILD/FileAndMiscPackage.so ]]; then
  cmake -S "$ROOT" -B "$BUILD" -DCMAKE_BUILD_TYPE=Release -DZT_BUILD_TESTS=OFF >/dev/null
  cmake --build "$BUILD" -j2 --target zt FileAndMiscPackage >/dev/null
fi
ZT=$BUILD/zt
DIRS=${DIRS:-1000}
PER_DIR=${PER_DIR:-100}
ITEMS=${ITEMS:-100000}

WORK=$(mktemp -d "${TMPDIR:-/tmp}/zt-loops-bench-XXXXXX")
trap 'rm -rf "$WORK"' EXIT
cd "$WORK"

echo "making data in $WORK ..."
python3 - "$DIRS" "$PER_DIR" "$ITEMS" <<'PY'
import os, sys
dirs, per_dir, items = map(int, sys.argv[1:])
for d in range(dirs):
    os.makedirs("tree/d%04d" % d)
    for f in range(per_dir):
        open("tree/d%04d/f%03d.dat" % (d, f), "wb").close()
for enabled in ("true", "false"):
    with open("list-%s.yml" % enabled, "w") as out:
        out.write("actions:\n  - action: List Iterator\n    enabled: %s\n    ZTVariable: ITEM\n" % enabled)
        out.write("    ListOfItems: |\n")
        for i in range(items):
            out.write("      item-%06d\n" % i)
        out.write("    actions:\n      - action: Delete File(s)\n        FileSpec: \"%ITEM%\"\n        enabled: false\n")
PY
cat >files.yml <<'YML'
actions:
  - action: File Iterator
    VariableName: F
    FileSpec: tree/*
    Recurse: true
YML

# best of three wall-clock times, in seconds: best COMMAND...
best() {
  local best=
  for _ in 1 2 3; do
    local s e
    s=$(date +%s.%N)
    "$@" >/dev/null 2>&1
    e=$(date +%s.%N)
    best=$(python3 -c "a=$e-$s; b='$best'; print('%.3f' % (a if b=='' else min(a, float(b))))")
  done
  echo "$best"
}
ratio() { python3 -c "print('%.2f' % ($1 / $2))"; }

find tree -type f >/dev/null  # directories into the cache
"$ZT" run files.yml --quiet --log-json files.jsonl
found=$(grep -o '"text":"Found [0-9]* Files."' files.jsonl)
[[ $found == "\"text\":\"Found $((DIRS * PER_DIR)) Files.\"" ]] || { echo "zt found the wrong files: $found" >&2; exit 1; }
"$ZT" run list-true.yml --quiet --log-json list.jsonl
[[ $(grep -c '"event":"iteration"' list.jsonl) == "$ITEMS" ]] || { echo "zt made the wrong number of passes" >&2; exit 1; }

echo "timing (best of 3) ..."
find_s=$(best find tree -type f)
find_stat=$(best find tree -type f -printf '%s %T@\n')
files_quiet=$(best "$ZT" run files.yml --quiet)
files_console=$(best "$ZT" run files.yml)
list_on=$(best "$ZT" run list-true.yml --quiet)
list_off=$(best "$ZT" run list-false.yml --quiet)
list_json=$(best "$ZT" run list-true.yml --quiet --log-json "$WORK/list.jsonl")

echo
echo "File Iterator, $((DIRS * PER_DIR)) files in $DIRS dirs, Recurse, no children:"
printf '  find -type f %7ss | zt --quiet %7ss (%s x find) | zt %7ss (%s x find)\n' "$find_s" \
  "$files_quiet" "$(ratio "$files_quiet" "$find_s")" "$files_console" "$(ratio "$files_console" "$find_s")"
printf '  find -printf %7ss | zt --quiet is %s x that\n' "$find_stat" "$(ratio "$files_quiet" "$find_stat")"
python3 - "$ITEMS" "$list_on" "$list_off" "$list_json" <<'PY'
import sys
items, on, off, json = int(sys.argv[1]), *map(float, sys.argv[2:])
print("List Iterator, %d passes, child disabled, --quiet: %.3fs (loop disabled: %.3fs): %.2f us per pass"
      % (items, on, off, (on - off) / items * 1e6))
print("  with --log-json as well: %.3fs: %.2f us per pass" % (json, (json - off) / items * 1e6))
PY
