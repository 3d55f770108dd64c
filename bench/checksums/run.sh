#!/usr/bin/env bash
# Times the checksum routines against the tools a user would otherwise run:
# CRC-32 against a plain read of the same bytes and `rhash --crc32`; MD5
# against `md5sum` and `openssl dgst -md5`; and both actions through `zt`.
# Data: one 1 GiB file in the page cache and 10,000 small files, made in a
# scratch directory that is deleted at the end.
#
# usage: bench/checksums/run.sh [BUILD_DIR]   (default: build/bench)
set -euo pipefail

ROOT=$(cd "$(dirname "$0")/../.." && pwd)
BUILD=${1:-$ROOT/build/bench}
if [[ ! -x $BUILD/bench/checksums/checksums_bench ]]; then
  cmake -S "$ROOT" -B "$BUILD" -DCMAKE_BUILD_TYPE=Release -DZT_BUILD_BENCH=ON >/dev/null
  cmake --build "$BUILD" -j2 --target checksums_bench >/dev/null
fi
DRIVER=$BUILD/bench/checksums/checksums_bench
ZT=$BUILD/zt
BIG_MB=${BIG_MB:-1024}
SMALL_COUNT=${SMALL_COUNT:-10000}

need_kb=$(( (BIG_MB + 200) * 1024 ))
free_kb=$(df -Pk "${TMPDIR:-/tmp}" | awk 'NR==2 {print $4}')
if (( free_kb < need_kb )); then
  echo "not enough free space in ${TMPDIR:-/tmp}: need ${need_kb} KiB" >&2
  exit 1
fi
WORK=$(mktemp -d "${TMPDIR:-/tmp}/zt-checksums-bench-XXXXXX")
trap 'rm -rf "$WORK"' EXIT

echo "making data in $WORK ..."
head -c $((BIG_MB * 1024 * 1024)) /dev/urandom >"$WORK/big.bin"
mkdir "$WORK/small"
python3 - "$WORK/small" "$SMALL_COUNT" <<'PY'
import os, random, sys
d, n = sys.argv[1], int(sys.argv[2])
rng = random.Random(1)
for i in range(n):
    with open(os.path.join(d, "f%05d.dat" % i), "wb") as f:
        f.write(rng.randbytes(rng.randint(0, 16384)))
PY
( cd "$WORK/small" && ls ) | sed "s|^|$WORK/small/|" >"$WORK/small.list"
cat "$WORK/big.bin" >/dev/null  # into the page cache

# best of three wall-clock times, in seconds
best() {
  local best=
  for _ in 1 2 3; do
    local s e
    s=$(date +%s.%N)
    "$@" >/dev/null 2>&1
    e=$(date +%s.%N)
    best=$(python3 -c "a=$e-$s; b='$best'; print(a if b=='' else min(a, float(b)))")
  done
  echo "$best"
}
on_small() { xargs -a "$WORK/small.list" -d '\n' "$@"; }

# project files with one action per file, for zt
make_project() {  # action list-of-files
  {
    echo "name: bench"
    echo "actions:"
    while read -r f; do printf '  - action: %s\n    FileName: "%s"\n' "$1" "$f"; done <"$2"
  } >"$WORK/$1.yml"
}
have_zt=0
if [[ -x $ZT ]] && "$ZT" actions 2>/dev/null | grep -q "Calculate File CRC32"; then
  if ! "$ZT" actions 2>/dev/null | grep "Calculate File CRC32" | grep -qi "not available"; then have_zt=1; fi
fi

printf '%s\n' "$WORK/big.bin" >"$WORK/big.list"
declare -A T
for set in big small; do
  list=$WORK/$set.list
  T[$set,cat]=$(best xargs -a "$list" -d '\n' cat)
  T[$set,read]=$(best xargs -a "$list" -d '\n' "$DRIVER" read)
  T[$set,crc]=$(best xargs -a "$list" -d '\n' "$DRIVER" crc)
  T[$set,rhash]=$(best xargs -a "$list" -d '\n' rhash --crc32)
  T[$set,md5]=$(best xargs -a "$list" -d '\n' "$DRIVER" md5)
  T[$set,md5sum]=$(best xargs -a "$list" -d '\n' md5sum)
  T[$set,openssl]=$(best xargs -a "$list" -d '\n' openssl dgst -md5)
  if (( have_zt )); then
    make_project "Calculate File CRC32" "$list"
    make_project "Calculate File MD5" "$list"
    T[$set,ztcrc]=$(best "$ZT" run "$WORK/Calculate File CRC32.yml" --quiet)
    T[$set,ztmd5]=$(best "$ZT" run "$WORK/Calculate File MD5.yml" --quiet)
  fi
done

ratio() { python3 -c "print('%.2f' % ($1 / $2))"; }
report() {  # set title
  local s=$1
  echo
  echo "== $2"
  printf '  %-34s %8.3f s\n' "read only (cat > /dev/null)" "${T[$s,cat]}"
  printf '  %-34s %8.3f s\n' "read only (same block reader)" "${T[$s,read]}"
  printf '  %-34s %8.3f s   x%s of reading, rhash/ours = %s\n' "CRC-32 (GetCRC32)" "${T[$s,crc]}" \
    "$(ratio "${T[$s,crc]}" "${T[$s,read]}")" "$(ratio "${T[$s,rhash]}" "${T[$s,crc]}")"
  printf '  %-34s %8.3f s\n' "rhash --crc32" "${T[$s,rhash]}"
  printf '  %-34s %8.3f s   md5sum/ours = %s, openssl/ours = %s\n' "MD5 (HashFile)" "${T[$s,md5]}" \
    "$(ratio "${T[$s,md5sum]}" "${T[$s,md5]}")" "$(ratio "${T[$s,openssl]}" "${T[$s,md5]}")"
  printf '  %-34s %8.3f s\n' "md5sum" "${T[$s,md5sum]}"
  printf '  %-34s %8.3f s\n' "openssl dgst -md5" "${T[$s,openssl]}"
  if (( have_zt )); then
    printf '  %-34s %8.3f s   x%s of reading\n' "zt: Calculate File CRC32" "${T[$s,ztcrc]}" \
      "$(ratio "${T[$s,ztcrc]}" "${T[$s,read]}")"
    printf '  %-34s %8.3f s   md5sum/zt = %s\n' "zt: Calculate File MD5" "${T[$s,ztmd5]}" \
      "$(ratio "${T[$s,md5sum]}" "${T[$s,ztmd5]}")"
  else
    echo "  (zt not built or the checksum actions not registered: zt rows skipped)"
  fi
}
echo
echo "in memory, 1 MiB blocks:"
"$DRIVER" mem
report big "one ${BIG_MB} MiB file in the page cache (best of 3)"
report small "${SMALL_COUNT} files of 0-16 KiB (best of 3)"
