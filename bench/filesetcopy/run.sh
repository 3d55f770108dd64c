#!/usr/bin/env bash
# Times "FileSet Copy/Move", run through zt on a project file set, against
# rsync -a --files-from over the same list of files, in one run on the same
# machine: a tree of 20,000 small files in 200 directories, copied with their
# paths below the set's base; then the same tree moved (zt) against
# rsync --remove-source-files. zt runs with its console log to a pipe and
# with --quiet. Each figure is the best of three wall-clock times; targets are
# removed (untimed) before every run. Data lives in a scratch directory that
# is deleted at the end.
#
# usage: bench/filesetcopy/run.sh [BUILD_DIR]   (default: build/bench)
set -euo pipefail

ROOT=$(cd "$(dirname "$0")/../.." && pwd)
BUILD=$(realpath -m "${1:-$ROOT/build/bench}")
if [[ ! -x $BUILD/zt || ! -f $BUILD/FileAndMiscPackage.so ]]; then
  cmake -S "$ROOT" -B "$BUILD" -DCMAKE_BUILD_TYPE=Release -DZT_BUILD_TESTS=OFF >/dev/null
  cmake --build "$BUILD" -j2 --target zt FileAndMiscPackage >/dev/null
fi
ZT=$BUILD/zt
DIRS=${DIRS:-200}
PER_DIR=${PER_DIR:-100}
command -v rsync >/dev/null || "$ROOT/scripts/bootstrap"

WORK=$(mktemp -d "${TMPDIR:-/tmp}/zt-filesetcopy-bench-XXXXXX")
trap 'rm -rf "$WORK"' EXIT
cd "$WORK"

echo "making $((DIRS * PER_DIR)) files in $WORK ..."
python3 - "$DIRS" "$PER_DIR" <<'PY'
import os, random, sys
dirs, per_dir = map(int, sys.argv[1:])
rng = random.Random(1)
for d in range(dirs):
    os.makedirs("tree/d%03d" % d)
    for f in range(per_dir):
        with open("tree/d%03d/f%03d.dat" % (d, f), "wb") as out:
            out.write(rng.randbytes(rng.randint(0, 8192)))
PY
(cd tree && find . -type f | sort) >list.txt
sync

cat >copy.yml <<'YML'
filesets:
  Tree:
    base: tree
actions:
  - action: FileSet Copy/Move
    FileSetName: Tree
    TargetDir: out
YML
sed -e 's/base: tree/base: moving/' -e 's/TargetDir: out/TargetDir: out\n    Operation: foMove/' copy.yml >move.yml

# best of three wall-clock times, in seconds: best PREPARE COMMAND...
best() {
  local prepare=$1 best=
  shift
  for _ in 1 2 3; do
    eval "$prepare"
    sync
    local s e
    s=$(date +%s.%N)
    "$@" >/dev/null 2>&1
    e=$(date +%s.%N)
    best=$(python3 -c "a=$e-$s; b='$best'; print('%.3f' % (a if b=='' else min(a, float(b))))")
  done
  echo "$best"
}
ratio() { python3 -c "print('%.2f' % ($1 / $2))"; }
files_in() { find "$1" -type f | wc -l; }

echo "timing (best of 3) ..."
copy_rsync=$(best "rm -rf out" rsync -a --files-from=list.txt tree/ out/)
copy_zt=$(best "rm -rf out" "$ZT" run copy.yml)
copy_quiet=$(best "rm -rf out" "$ZT" run copy.yml --quiet)
[[ $(files_in out) == $((DIRS * PER_DIR)) ]] || { echo "zt copied the wrong number of files" >&2; exit 1; }
diff -r tree out >/dev/null || { echo "zt's copy differs from the tree" >&2; exit 1; }

fresh="rm -rf out moving; cp -a tree moving"
move_rsync=$(best "$fresh" rsync -a --remove-source-files --files-from=list.txt moving/ out/)
move_zt=$(best "$fresh" "$ZT" run move.yml --quiet)
[[ $(files_in out) == $((DIRS * PER_DIR)) && $(files_in moving) == 0 ]] || { echo "zt's move is incomplete" >&2; exit 1; }

echo
echo "ratios are zt time / tool time (lower is better)"
printf '%-36s rsync -a --files-from %7ss | zt %7ss (%s) | --quiet %7ss (%s)\n' \
  "FileSet Copy, $((DIRS * PER_DIR)) files" "$copy_rsync" "$copy_zt" "$(ratio "$copy_zt" "$copy_rsync")" \
  "$copy_quiet" "$(ratio "$copy_quiet" "$copy_rsync")"
printf '%-36s rsync --remove-source-files %7ss | zt --quiet %7ss (%s)\n' \
  "FileSet Move, $((DIRS * PER_DIR)) files" "$move_rsync" "$move_zt" "$(ratio "$move_zt" "$move_rsync")"
