#!/usr/bin/env bash
# Times the built-in robocopy (`zt robocopy ... /MIR`) against `cp -r` and
# `rsync -a --delete` on a tree of 20,000 files in 200 directories, in the
# same run: the first copy, a second run with nothing changed, and a run after
# 10 % of the files changed and 10 % extra files appeared at the destination;
# then /MT:8 against one thread, and `zt xcopy /E /I` against `cp -r`. Each
# row runs three times, interleaved, each after a sync; the best time counts. Output lines are left out (/NFL /NDL
# /NJH /NJS), as cp and rsync print nothing either.
#
# usage: bench/robocopy/run.sh [BUILD_DIR]   (default: build/release; TMPDIR picks the file system)
set -euo pipefail

ROOT=$(cd "$(dirname "$0")/../.." && pwd)
BUILD=${1:-$ROOT/build/release}
ZT=$BUILD/zt
[[ -x $ZT ]] || { echo "build zt first (cmake --build $BUILD --target zt)" >&2; exit 1; }
DIRS=${DIRS:-200}
FILES_PER_DIR=${FILES_PER_DIR:-100}
WORK=$(mktemp -d "${TMPDIR:-/tmp}/zt-robocopy-bench-XXXXXX")
trap 'rm -rf "$WORK"' EXIT
echo "file system: $(df -PT "$WORK" | awk 'NR==2 {print $2}') ($WORK)"

python3 - "$WORK/src" "$DIRS" "$FILES_PER_DIR" <<'PY'
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

Q="/NFL /NDL /NJH /NJS /NP /R:0 /W:0"
# best_of CLEAN COMMAND: the best of three wall times (seconds) of COMMAND,
# each after CLEAN and a sync.
best_of() {
  local clean=$1 cmd=$2 best="" t0 t1 t
  for _ in $(seq "${REPS:-3}"); do
    eval "$clean"
    sync
    t0=$(date +%s.%N)
    eval "$cmd" >/dev/null || true
    t1=$(date +%s.%N)
    t=$(awk -v a="$t0" -v b="$t1" 'BEGIN { printf "%.4f", b - a }')
    best=$(awk -v a="$t" -v b="${best:-$t}" 'BEGIN { print (a < b ? a : b) }')
  done
  echo "$best"
}
ratio() { awk -v a="$1" -v b="$2" 'BEGIN { printf "%.2fx", a / b }'; }
row() {  # name zt cp rsync
  printf '%-34s zt %7.3f s   cp -r %7.3f s (%s)   rsync %7.3f s (%s)\n' "$1" "$2" "$3" "$(ratio "$2" "$3")" "$4" \
    "$(ratio "$2" "$4")"
}

# Changes 10 % of the source files and adds 10 % extras at the destination.
churn() {
  python3 - "$WORK/src" "$1" <<'PY'
import os, sys
src, dst = sys.argv[1], sys.argv[2]
for i, d in enumerate(sorted(os.listdir(src))):
    for f in range(0, 100, 10):
        p = os.path.join(src, d, "f%03d.dat" % f)
        with open(p, "ab") as out: out.write(b"changed")
        with open(os.path.join(dst, d, "extra%03d.dat" % f), "wb") as out: out.write(b"extra")
PY
}

first_zt=$(best_of "rm -rf $WORK/a" "$ZT robocopy $WORK/src $WORK/a /MIR $Q")
first_cp=$(best_of "rm -rf $WORK/b" "cp -r $WORK/src $WORK/b")
first_rs=$(best_of "rm -rf $WORK/c" "rsync -a --delete $WORK/src/ $WORK/c/")
row "Mirror, first copy" "$first_zt" "$first_cp" "$first_rs"

same_zt=$(best_of ":" "$ZT robocopy $WORK/src $WORK/a /MIR $Q")
same_rs=$(best_of ":" "rsync -a --delete $WORK/src/ $WORK/c/")
row "Mirror, no change" "$same_zt" "$first_cp" "$same_rs"

cp -a "$WORK/src" "$WORK/src0"
churn_zt=$(best_of "rm -rf $WORK/src; cp -a $WORK/src0 $WORK/src; rm -rf $WORK/a; cp -a $WORK/src0 $WORK/a; churn $WORK/a" \
  "$ZT robocopy $WORK/src $WORK/a /MIR $Q")
churn_rs=$(best_of "rm -rf $WORK/src; cp -a $WORK/src0 $WORK/src; rm -rf $WORK/c; cp -a $WORK/src0 $WORK/c; churn $WORK/c" \
  "rsync -a --delete $WORK/src/ $WORK/c/")
row "Mirror, 10 % changed + 10 % extra" "$churn_zt" "$first_cp" "$churn_rs"

one=$(best_of "rm -rf $WORK/a" "$ZT robocopy $WORK/src $WORK/a /MIR $Q")
eight=$(best_of "rm -rf $WORK/a" "$ZT robocopy $WORK/src $WORK/a /MIR /MT:8 $Q")
printf '%-34s one thread %7.3f s   /MT:8 %7.3f s   (%s faster)\n' "Mirror, /MT:8" "$one" "$eight" "$(ratio "$one" "$eight")"

xcopy_zt=$(best_of "rm -rf $WORK/x" "$ZT xcopy $WORK/src $WORK/x /E /I /Q /Y || echo xcopy failed >&2")
xcopy_cp=$(best_of "rm -rf $WORK/b" "cp -r $WORK/src $WORK/b")
printf '%-34s zt %7.3f s   cp -r %7.3f s (%s)\n' "XCopy /E /I, first copy" "$xcopy_zt" "$xcopy_cp" "$(ratio "$xcopy_zt" "$xcopy_cp")"
