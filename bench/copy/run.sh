#!/usr/bin/env bash
# Times copying through the portable layer against cp, on the same machine
# in the same run: one 1 GiB file (CopyFileExA against `cp`) and a tree of
# 20,000 small files in 200 directories (FindFirst recursion + CopyFileExA
# against `cp -r`; `cp -a`, which also keeps times as the layer does, is
# shown for reference). Each copy runs three times, interleaved,
# each after a sync; the best time counts. Data lives in a scratch directory
# deleted at the end.
#
# usage: bench/copy/run.sh [BUILD_DIR]   (default: build/bench)
set -euo pipefail

ROOT=$(cd "$(dirname "$0")/../.." && pwd)
BUILD=${1:-$ROOT/build/bench}
if [[ ! -x $BUILD/bench/copy/copy_bench ]]; then
  cmake -S "$ROOT" -B "$BUILD" -DCMAKE_BUILD_TYPE=Release -DZT_BUILD_BENCH=ON >/dev/null
  cmake --build "$BUILD" -j2 --target copy_bench >/dev/null
fi
DRIVER=$BUILD/bench/copy/copy_bench
BIG_MB=${BIG_MB:-1024}
DIRS=${DIRS:-200}
FILES_PER_DIR=${FILES_PER_DIR:-100}

# Source and two copies of everything must fit.
need_kb=$(( (BIG_MB * 2 + 600) * 1024 ))
free_kb=$(df -Pk "${TMPDIR:-/tmp}" | awk 'NR==2 {print $4}')
if (( free_kb < need_kb )); then
  echo "not enough free space in ${TMPDIR:-/tmp}: need ${need_kb} KiB, have ${free_kb}" >&2
  exit 1
fi
WORK=$(mktemp -d "${TMPDIR:-/tmp}/zt-copy-bench-XXXXXX")
trap 'rm -rf "$WORK"' EXIT

echo "making data in $WORK ..."
head -c $((BIG_MB * 1024 * 1024)) /dev/urandom >"$WORK/big.bin"
python3 - "$WORK/tree" "$DIRS" "$FILES_PER_DIR" <<'PY'
import os, random, sys
root, dirs, per = sys.argv[1], int(sys.argv[2]), int(sys.argv[3])
rng = random.Random(1)
for d in range(dirs):
    sub = os.path.join(root, "d%03d" % d)
    os.makedirs(sub)
    for f in range(per):
        with open(os.path.join(sub, "f%03d.dat" % f), "wb") as out:
            out.write(rng.randbytes(rng.randint(0, 8192)))
PY
sync

# time_once CLEAN COMMAND...: wall time in seconds of COMMAND, after CLEAN and
# a sync, so that no run pays for the write-back of the one before.
time_once() {
  local clean=$1 t0 t1
  shift
  eval "$clean"
  sync
  t0=$(date +%s.%N)
  "$@" >/dev/null
  t1=$(date +%s.%N)
  awk -v a="$t0" -v b="$t1" 'BEGIN { printf "%.6f", b - a }'
}

min() { awk -v a="$1" -v b="$2" 'BEGIN { print (a == "" || b < a) ? b : a }'; }
ratio() { awk -v a="$1" -v b="$2" 'BEGIN { printf "%.2f", a / b }'; }

echo
echo "one file of ${BIG_MB} MiB (best of three, runs interleaved)"
clean_big="rm -f '$WORK/big.copy'"
zt_big="" cp_big=""
for _ in 1 2 3; do
  zt_big=$(min "$zt_big" "$(time_once "$clean_big" "$DRIVER" file "$WORK/big.bin" "$WORK/big.copy")")
  cmp -s "$WORK/big.bin" "$WORK/big.copy" || { echo "copy differs" >&2; exit 1; }
  cp_big=$(min "$cp_big" "$(time_once "$clean_big" cp "$WORK/big.bin" "$WORK/big.copy")")
done
eval "$clean_big"
printf '  %-26s %8.3fs\n' "CopyFileExA" "$zt_big" "cp" "$cp_big"
echo "  ratio layer/cp: $(ratio "$zt_big" "$cp_big")"

echo
echo "tree of $((DIRS * FILES_PER_DIR)) files in ${DIRS} directories (best of three, runs interleaved)"
clean_tree="rm -rf '$WORK/tree.copy'"
zt_tree="" cpr_tree="" cpa_tree=""
for _ in 1 2 3; do
  zt_tree=$(min "$zt_tree" "$(time_once "$clean_tree" "$DRIVER" tree "$WORK/tree" "$WORK/tree.copy")")
  diff -r "$WORK/tree" "$WORK/tree.copy" >/dev/null || { echo "tree copy differs" >&2; exit 1; }
  cpr_tree=$(min "$cpr_tree" "$(time_once "$clean_tree" cp -r "$WORK/tree" "$WORK/tree.copy")")
  cpa_tree=$(min "$cpa_tree" "$(time_once "$clean_tree" cp -a "$WORK/tree" "$WORK/tree.copy")")
done
eval "$clean_tree"
printf '  %-26s %8.3fs\n' "FindFirst + CopyFileExA" "$zt_tree" "cp -r" "$cpr_tree" "cp -a" "$cpa_tree"
echo "  ratio layer/cp -r: $(ratio "$zt_tree" "$cpr_tree")   layer/cp -a: $(ratio "$zt_tree" "$cpa_tree")"
