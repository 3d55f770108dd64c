#!/usr/bin/env bash
# Times the directory and file-content actions, run through zt on a project
# file, against the tools a user would otherwise run, in one run on the same
# machine:
#   "Delete Directory" of a tree of 20,000 files in 200 directories  vs  rm -rf
#   "Move Directory" of that tree to another file system (/dev/shm when it
#     is one; else within this one)                                  vs  mv
#   "Concatenate Files" of 16 files of 32 MiB                        vs  cat
#   "Get File Size" of the tree                                      vs  du -sb
#   "File Compare" of two equal 512 MiB files                        vs  cmp
#   "Text Replace (Deprecated)" in a 256 MiB text, one match a line  vs  sed -i
# Each figure is the best of three wall-clock times; what a run changes is
# made again (untimed) before the next. zt runs with --quiet. Data lives in
# scratch directories that are deleted at the end.
#
# usage: bench/directories/run.sh [BUILD_DIR]   (default: build/bench)
set -euo pipefail

ROOT=$(cd "$(dirname "$0")/../.." && pwd)
BUILD=${1:-$ROOT/build/bench}
if [[ ! -x $BUILD/zt || ! -f $BUILD/FileAndMiscPackage.so ]]; then
  cmake -S "$ROOT" -B "$BUILD" -DCMAKE_BUILD_TYPE=Release -DZT_BUILD_TESTS=OFF >/dev/null
  cmake --build "$BUILD" -j2 --target zt FileAndMiscPackage >/dev/null
fi
ZT=$(cd "$BUILD" && pwd)/zt
DIRS=${DIRS:-200}
PER_DIR=${PER_DIR:-100}
PART_MB=${PART_MB:-32}
PARTS=${PARTS:-16}
CMP_MB=${CMP_MB:-512}
TEXT_MB=${TEXT_MB:-256}

need_kb=$(( (PART_MB * PARTS * 2 + CMP_MB * 2 + TEXT_MB * 2 + 400) * 1024 ))
free_kb=$(df -Pk "${TMPDIR:-/tmp}" | awk 'NR==2 {print $4}')
if (( free_kb < need_kb )); then
  echo "not enough free space in ${TMPDIR:-/tmp}: need ${need_kb} KiB" >&2
  exit 1
fi
WORK=$(mktemp -d "${TMPDIR:-/tmp}/zt-directories-bench-XXXXXX")
OTHER=$WORK
if [[ -d /dev/shm && $(stat -c %d /dev/shm) != $(stat -c %d "$WORK") ]]; then
  OTHER=$(mktemp -d /dev/shm/zt-directories-bench-XXXXXX)
fi
trap 'rm -rf "$WORK"; [[ $OTHER == "$WORK" ]] || rm -rf "$OTHER"' EXIT
cd "$WORK"

echo "making data in $WORK ..."
python3 - "$DIRS" "$PER_DIR" "$PART_MB" "$PARTS" "$TEXT_MB" <<'PY'
import os, random, sys
dirs, per_dir, part_mb, parts, text_mb = map(int, sys.argv[1:])
rng = random.Random(1)
for d in range(dirs):
    os.makedirs("tree.template/d%03d" % d)
    for f in range(per_dir):
        with open("tree.template/d%03d/f%03d.dat" % (d, f), "wb") as out:
            out.write(rng.randbytes(rng.randint(0, 8192)))
os.makedirs("parts")
block = rng.randbytes(1 << 20)
for p in range(parts):
    with open("parts/p%02d.bin" % p, "wb") as out:
        for _ in range(part_mb):
            out.write(block)
line = b"the quick brown fox jumps over the lazy dog; version 1.0.0 of the build\n"
with open("text.template", "wb") as out:
    out.write(line * (text_mb * (1 << 20) // len(line)))
PY
head -c $((CMP_MB * 1024 * 1024)) /dev/urandom >cmp1.bin
cp cmp1.bin cmp2.bin
cat parts/* cmp1.bin cmp2.bin text.template >/dev/null  # into the page cache
sync

project() {  # name, then the action's YAML lines
  local name=$1
  shift
  { echo "name: bench"; echo "actions:"; printf '  %s\n' "$@"; } >"$name.yml"
}
project delete "- action: Delete Directory" "  FileOrDirectory: tree"
project move "- action: Move Directory" "  FileOrDirectory: tree" "  Target: $OTHER/tree.moved"
project concat "- action: Concatenate Files" "  SourceFiles: parts/*.bin" "  TargetFile: all.bin"
project size "- action: Get File Size" "  FileName: tree"
project compare "- action: File Compare" "  FileName: cmp1.bin" "  CompareToFile: cmp2.bin"
project replace "- action: Text Replace (Deprecated)" "  FileSpec: text.txt" "  SearchText: 1.0.0" \
  "  ReplaceText: 1.0.1"

# best of three wall-clock times, in seconds; $1 is run untimed before each
best() {
  local setup=$1 best=
  shift
  for _ in 1 2 3; do
    eval "$setup"
    local s e
    s=$(date +%s.%N)
    "$@" >"$WORK/last.out" 2>&1 || { echo "failed: $*" >&2; cat "$WORK/last.out" >&2; exit 1; }
    e=$(date +%s.%N)
    best=$(python3 -c "a=$e-$s; b='$best'; print(a if b=='' else min(a, float(b)))")
  done
  echo "$best"
}
fresh_tree='rm -rf tree "$OTHER/tree.moved"; cp -r tree.template tree; sync'
fresh_text='cp text.template text.txt; sync'
zt() { "$ZT" run "$1.yml" --quiet; }

declare -A T
T[delete,zt]=$(best "$fresh_tree" zt delete)
T[delete,tool]=$(best "$fresh_tree" rm -rf tree)
T[move,zt]=$(best "$fresh_tree" zt move)
T[move,tool]=$(best "$fresh_tree" mv tree "$OTHER/tree.moved")
eval "$fresh_tree"
T[size,zt]=$(best : zt size)
T[size,tool]=$(best : du -sb tree)
T[concat,zt]=$(best 'rm -f all.bin' zt concat)
T[concat,tool]=$(best 'rm -f all.bin' sh -c 'cat parts/*.bin >all.bin')
T[compare,zt]=$(best : zt compare)
T[compare,tool]=$(best : cmp cmp1.bin cmp2.bin)
T[replace,zt]=$(best "$fresh_text" zt replace)
T[replace,tool]=$(best "$fresh_text" sed -i 's/1\.0\.0/1.0.1/g' text.txt)

across=$([[ $OTHER == "$WORK" ]] && echo "same file system" || echo "to /dev/shm")
printf '%-44s %10s %10s %8s\n' "action (vs tool)" "zt s" "tool s" "zt/tool"
row() {  # key, label
  printf '%-44s %10.3f %10.3f %8.2f\n' "$2" "${T[$1,zt]}" "${T[$1,tool]}" \
    "$(python3 -c "print(${T[$1,zt]} / ${T[$1,tool]})")"
}
row delete "Delete Directory, $((DIRS * PER_DIR)) files (rm -rf)"
row move "Move Directory, $across (mv)"
row concat "Concatenate Files, $PARTS x $PART_MB MiB (cat)"
row size "Get File Size, $((DIRS * PER_DIR)) files (du -sb)"
row compare "File Compare, 2 x $CMP_MB MiB equal (cmp)"
row replace "Text Replace, $TEXT_MB MiB text (sed -i)"
