#!/usr/bin/env bash
# Times the file actions, run through zt on a project file, against the
# tools a user would otherwise run, in one run on the same machine:
#   "Copy File(s)" with Recurse on a tree of 20,000 small files in 200
#   directories                                   vs  cp -r
#   "Copy File(s)" of one 1 GiB file              vs  cp
#   "Delete File(s)" of 20,000 files in one directory (wildcard spec)
#                                                 vs  rm
# zt runs three ways: console to a pipe (the default), --quiet, and with a
# JSON log, so that the cost of the log shows on its own.
# Each figure is the best of three wall-clock times; the target is removed
# (untimed) before every run. Data lives in a scratch directory that is
# deleted at the end.
#
# usage: bench/fileactions/run.sh [BUILD_DIR]   (default: build/bench)
set -euo pipefail

ROOT=$(cd "$(dirname "$0")/../.." && pwd)
BUILD=${1:-$ROOT/build/bench}
if [[ ! -x $BUILD/zt || ! -f $BUILD/FileAndMiscPackage.so ]]; then
  cmake -S "$ROOT" -B "$BUILD" -DCMAKE_BUILD_TYPE=Release -DZT_BUILD_TESTS=OFF >/dev/null
  cmake --build "$BUILD" -j2 --target zt FileAndMiscPackage >/dev/null
fi
ZT=$BUILD/zt
BIG_MB=${BIG_MB:-1024}
DIRS=${DIRS:-200}
PER_DIR=${PER_DIR:-100}
FLAT=${FLAT:-20000}

echo "disk space before the run:"
df -h "${TMPDIR:-/tmp}"
need_kb=$(( (2 * BIG_MB + 800) * 1024 ))
free_kb=$(df -Pk "${TMPDIR:-/tmp}" | awk 'NR==2 {print $4}')
if (( free_kb < need_kb )); then
  echo "not enough free space in ${TMPDIR:-/tmp}: need ${need_kb} KiB" >&2
  exit 1
fi
WORK=$(mktemp -d "${TMPDIR:-/tmp}/zt-fileactions-bench-XXXXXX")
trap 'rm -rf "$WORK"' EXIT
cd "$WORK"

echo "making data in $WORK ..."
head -c $((BIG_MB * 1024 * 1024)) /dev/urandom >big.bin
python3 - "$DIRS" "$PER_DIR" "$FLAT" <<'PY'
import os, random, sys
dirs, per_dir, flat = map(int, sys.argv[1:])
rng = random.Random(1)
for d in range(dirs):
    os.makedirs("tree/d%03d" % d)
    for f in range(per_dir):
        with open("tree/d%03d/f%03d.dat" % (d, f), "wb") as out:
            out.write(rng.randbytes(rng.randint(0, 8192)))
os.makedirs("flat.template")
for f in range(flat):
    with open("flat.template/f%05d.tmp" % f, "wb") as out:
        out.write(rng.randbytes(rng.randint(0, 1024)))
PY
cat big.bin >/dev/null  # into the page cache
sync

cat >copy-tree.yml <<'YML'
actions:
  - action: Copy File(s)
    FileSpec: tree/*
    Target: tree.copy
    Recurse: true
    Force: true
YML
cat >copy-big.yml <<'YML'
actions:
  - action: Copy File(s)
    FileSpec: big.bin
    Target: big.copy
YML
cat >delete-flat.yml <<'YML'
actions:
  - action: Delete File(s)
    FileSpec: flat/*
YML

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

zt_three_ways() {  # PREPARE PROJECT -> "console quiet json"
  local console quiet json
  console=$(best "$1" "$ZT" run "$2")
  quiet=$(best "$1" "$ZT" run "$2" --quiet)
  json=$(best "$1" "$ZT" run "$2" --quiet --log-json "$WORK/log.jsonl")
  echo "$console $quiet $json"
}

report() {  # NAME TOOL_NAME TOOL_SECONDS "console quiet json"
  local name=$1 tool=$2 base=$3 console quiet json
  read -r console quiet json <<<"$4"
  printf '%-34s %-8s %7ss | zt %7ss (%s) | --quiet %7ss (%s) | --log-json %7ss (%s)\n' "$name" "$tool" "$base" \
    "$console" "$(ratio "$console" "$base")" "$quiet" "$(ratio "$quiet" "$base")" "$json" "$(ratio "$json" "$base")"
}

echo "timing (best of 3) ..."
tree_cp=$(best "rm -rf tree.copy" cp -r tree tree.copy)
tree_zt=$(zt_three_ways "rm -rf tree.copy" copy-tree.yml)
[[ $(find tree.copy -type f | wc -l) == $((DIRS * PER_DIR)) ]] || { echo "zt copied the wrong number of files" >&2; exit 1; }

big_cp=$(best "rm -f big.copy" cp big.bin big.copy)
big_zt=$(zt_three_ways "rm -f big.copy" copy-big.yml)
cmp -s big.bin big.copy || { echo "zt's copy of big.bin differs" >&2; exit 1; }

# rm gets the names from the shell's glob, as a user would type it.
flat_rm=$(best "rm -rf flat; cp -r flat.template flat" bash -c 'rm -f flat/*')
flat_zt=$(zt_three_ways "rm -rf flat; cp -r flat.template flat" delete-flat.yml)
[[ -z $(ls flat) ]] || { echo "zt left files behind" >&2; exit 1; }

echo
echo "ratios are zt time / tool time (lower is better)"
report "Copy File(s), $((DIRS * PER_DIR)) files in $DIRS dirs" "cp -r" "$tree_cp" "$tree_zt"
report "Copy File(s), one ${BIG_MB} MiB file" "cp" "$big_cp" "$big_zt"
report "Delete File(s), $FLAT files" "rm" "$flat_rm" "$flat_zt"
echo "JSON log of the last delete run: $(wc -l <log.jsonl) lines, $(du -h log.jsonl | cut -f1)"
