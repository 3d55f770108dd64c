#!/usr/bin/env bash
# Times "Text Find / Replace" through zt against the tools people use instead,
# on one generated CR LF text of log, source and INI-like lines (a literal on
# about a third of the lines, a Version=n.n.n pattern on about a tenth):
#  - a literal and a regular-expression replace into the original file,
#    against `sed -i` with the same substitution (outputs compared byte for byte);
#  - find-only counts of both patterns against `rg -c` (counts compared).
# Times are the best of three wall-clock runs with the text in the page cache.
#
# usage: bench/textfind/run.sh [BUILD_DIR]   (default: build/bench)
#        TEXT_MB=256 by default; TMPDIR chooses the file system.
set -euo pipefail

ROOT=$(cd "$(dirname "$0")/../.." && pwd)
BUILD=${1:-$ROOT/build/bench}
TEXT_MB=${TEXT_MB:-256}
if [[ ! -x $BUILD/zt || ! -f $BUILD/FileAndMiscPackage.so ]]; then
  cmake -S "$ROOT" -B "$BUILD" -DCMAKE_BUILD_TYPE=Release >/dev/null
  cmake --build "$BUILD" -j2 --target zt FileAndMiscPackage >/dev/null
fi
ZT=$BUILD/zt
if ! command -v rg >/dev/null; then
  sudo=""
  [ "$(id -u)" -eq 0 ] || sudo="sudo"
  $sudo apt-get install -y -qq --no-install-recommends ripgrep >/dev/null
fi

need_kb=$(( TEXT_MB * 4 * 1024 + 100 * 1024 ))
free_kb=$(df -Pk "${TMPDIR:-/tmp}" | awk 'NR==2 {print $4}')
if (( free_kb < need_kb )); then
  echo "not enough free space in ${TMPDIR:-/tmp}: need ${need_kb} KiB" >&2
  exit 1
fi
WORK=$(mktemp -d "${TMPDIR:-/tmp}/zt-textfind-bench-XXXXXX")
trap 'rm -rf "$WORK"' EXIT

echo "making a ${TEXT_MB} MiB CR LF text in $WORK ..."
python3 - "$WORK/text.txt" "$TEXT_MB" <<'PY'
import random, sys
path, mib = sys.argv[1], int(sys.argv[2])
rng = random.Random(7)
words = ["alpha", "build", "cache", "delta", "error", "fetch", "group", "index", "jobs", "kernel",
         "linker", "module", "object", "packet", "queue", "render", "source", "target", "update",
         "vector", "worker", "zone"]
# 300,000 distinct lines, repeated up to the size: lines 0, 3, 6 ... carry the
# literal, lines 1, 11, 21 ... the version, the rest is source and INI lines.
block = []
for n in range(300000):
    w = " ".join(rng.choice(words) for _ in range(rng.randint(4, 9)))
    if n % 3 == 0:
        line = "2024-03-%02d 12:%02d:%02d INFO [host acme.internal] %s" % (n % 28 + 1, n % 60, n % 59, w)
    elif n % 10 == 1 or n % 10 == 5:
        line = "Version=%d.%d.%d ; %s" % (n % 9, n % 97, n % 1013, w)
    elif n % 2 == 0:
        line = "    int %s_%d = compute(%s, %d);  // %s" % (rng.choice(words), n % 977, rng.choice(words), n, w)
    else:
        line = "%s_%d=%s" % (rng.choice(words), n % 100, w)
    block.append(line + "\r\n")
block = "".join(block).encode()
target = mib * 1024 * 1024
with open(path, "wb") as f:
    while target >= len(block):
        f.write(block)
        target -= len(block)
    f.write(block[:block.rfind(b"\r\n", 0, target) + 2])
PY

LITERAL=acme.internal
LITERAL_RE='acme\.internal'
VERSION_RE='Version=\d+\.\d+\.\d+'
VERSION_SED='Version=[0-9]+\.[0-9]+\.[0-9]+'

project() {  # file name, search, extra properties...
  local file=$1 search=$2
  shift 2
  {
    echo "actions:"
    echo "  - action: Text Find / Replace"
    echo "    SourcePath: $file"
    echo "    SearchString: '$search'"
    for p in "$@"; do echo "    $p"; done
  } >"$WORK/project.yml"
}

# best of three wall-clock times, in seconds; PREPARE (a shell text) runs
# untimed before each run.
PREPARE=":"
best() {
  local best=
  for _ in 1 2 3; do
    eval "$PREPARE"
    local s e
    s=$(date +%s.%N)
    "$@" >/dev/null 2>&1
    e=$(date +%s.%N)
    best=$(python3 -c "a=$e-$s; b='$best'; print(a if b=='' else min(a, float(b)))")
  done
  echo "$best"
}
ratio() { python3 -c "print('%.2f' % ($1 / $2))"; }
zt_count() {  # the count zt logs for the project in $WORK/project.yml
  "$ZT" run "$WORK/project.yml" --quiet --log-json "$WORK/log.jsonl" >/dev/null
  # the closing message ("Found N matches."), not the progress lines before it
  grep -o '"text":"Found [0-9]* match[a-z]*\."' "$WORK/log.jsonl" | grep -o '[0-9]*' | head -1
}
cat "$WORK/text.txt" >/dev/null

echo
echo "== replace into the original file, ${TEXT_MB} MiB (best of 3)"
replace() {  # name, zt search, zt extra, sed expression, sed flags
  local name=$1 search=$2 extra=$3 expr=$4 flags=$5
  local props=("ReplacementMode: trOriginalFile" "CaseSensitive: true" "ReplacementText: '$6'")
  [[ -n $extra ]] && props+=("$extra")
  project zt.txt "$search" "${props[@]}"
  PREPARE="cp '$WORK/text.txt' '$WORK/zt.txt'; cat '$WORK/zt.txt' >/dev/null"
  local tz ts
  tz=$(best "$ZT" run "$WORK/project.yml" --quiet)
  PREPARE="cp '$WORK/text.txt' '$WORK/sed.txt'; cat '$WORK/sed.txt' >/dev/null"
  # shellcheck disable=SC2086
  ts=$(best sed $flags -i "$expr" "$WORK/sed.txt")
  if ! cmp -s <(tr -d '\r' <"$WORK/zt.txt") <(tr -d '\r' <"$WORK/sed.txt"); then
    echo "  $name: zt and sed wrote different texts" >&2
    exit 1
  fi
  printf '  %-34s zt %6.3f s   sed -i %6.3f s   zt is %sx faster\n' "$name" "$tz" "$ts" "$(ratio "$ts" "$tz")"
}
replace "literal ($LITERAL)" "$LITERAL" "" "s/$LITERAL_RE/acme.example/g" "" "acme.example"
replace "regex ($VERSION_RE)" "$VERSION_RE" "MatchRegExpr: true" "s/$VERSION_SED/Version=2.0.0/g" "-E" \
  "Version=2.0.0"

echo
echo "== find-only counts, ${TEXT_MB} MiB (best of 3)"
PREPARE=":"
count() {  # name, zt search, zt extra, rg arguments...
  local name=$1 search=$2 extra=$3
  shift 3
  local props=()
  [[ -n $extra ]] && props+=("$extra")
  project text.txt "$search" "${props[@]}"
  local nz nr tz tr
  nz=$(zt_count)
  nr=$(rg -c "$@" "$WORK/text.txt")
  if [[ $nz != "$nr" ]]; then
    echo "  $name: zt counted $nz, rg $nr" >&2
    exit 1
  fi
  tz=$(best "$ZT" run "$WORK/project.yml" --quiet)
  tr=$(best rg -c "$@" "$WORK/text.txt")
  printf '  %-34s zt %6.3f s   rg -c %6.3f s   zt runs at %s of rg'"'"'s speed (%s matches)\n' \
    "$name" "$tz" "$tr" "$(ratio "$tr" "$tz")" "$nz"
}
count "literal, exact case" "$LITERAL" "CaseSensitive: true" "$LITERAL_RE"
count "literal, any case (zt's default)" "$LITERAL" "" -i "$LITERAL_RE"
count "regex ($VERSION_RE)" "$VERSION_RE" "MatchRegExpr: true" "$VERSION_RE"
