#!/usr/bin/env bash
# Times the text-file and variable actions, run through zt on project files,
# against what a user would otherwise run, in one run on the same machine:
#   "Replace Variables" on a template of LINES CR LF lines with two
#   references each, written to another file       vs  sed (two s///g) and envsubst
#   "Write to Text File" putting one line before a file of PREPEND_MB MiB
#                                                  vs  { printf; cat; } > tmp && mv tmp file
#   "Save Variables to INI" of VARS variables      vs  a shell loop printing NAME=value lines
# Outputs are compared byte for byte before timing. Each figure is the best
# of three wall-clock times (zt's include starting zt and loading the
# project). Data lives in a scratch directory that is deleted at the end.
#
# usage: bench/textvars/run.sh [BUILD_DIR]   (default: build/bench)
set -euo pipefail

ROOT=$(cd "$(dirname "$0")/../.." && pwd)
BUILD=${1:-$ROOT/build/bench}
if [[ ! -x $BUILD/zt || ! -f $BUILD/FileAndMiscPackage.so ]]; then
  cmake -S "$ROOT" -B "$BUILD" -DCMAKE_BUILD_TYPE=Release -DZT_BUILD_TESTS=OFF >/dev/null
  cmake --build "$BUILD" -j2 --target zt FileAndMiscPackage >/dev/null
fi
ZT=$BUILD/zt
LINES=${LINES:-1000000}
PREPEND_MB=${PREPEND_MB:-256}
VARS=${VARS:-100}

WORK=$(mktemp -d "${TMPDIR:-/tmp}/zt-textvars-bench-XXXXXX")
trap 'rm -rf "$WORK"' EXIT
cd "$WORK"

echo "making data in $WORK ..."
python3 - "$LINES" "$PREPEND_MB" "$VARS" <<'PY'
import sys
lines, mb, nvars = map(int, sys.argv[1:])
with open("template.txt", "w", newline="") as f:
    for i in range(lines):
        f.write("line %07d version=%%VER%% name=%%NAME%% and 100%% more\r\n" % i)
with open("big.txt", "wb") as f:
    block = b"x" * 1023 + b"\n"
    for _ in range(mb * 1024):
        f.write(block)
with open("replace.yml", "w") as f:
    f.write("variables:\n  VER: 1.4.2\n  NAME: zt\nactions:\n  - action: Replace Variables\n"
            "    SourceFile: template.txt\n    WriteBackToSource: false\n    DestFile: zt-out.txt\n")
with open("prepend.yml", "w") as f:
    f.write("actions:\n  - action: Write to Text File\n    FileName: big.txt\n    NewContent: head\n"
            "    WriteToPosition: toStart\n")
with open("save.yml", "w") as f:
    f.write("variables:\n")
    for i in range(nvars):
        f.write("  V%03d: value-%d\n" % (i, i))
    f.write("actions:\n  - action: Save Variables to INI\n    INIFile: vars.ini\n    Variables:\n")
    for i in range(nvars):
        f.write("      - V%03d\n" % i)
PY

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

run_sed() { sed -e 's/%VER%/1.4.2/g; s/%NAME%/zt/g; s/%%/%/g' template.txt >sed-out.txt; }
run_envsubst() { sed -e 's/%VER%/${VER}/g; s/%NAME%/${NAME}/g; s/%%/%/g' template.txt | VER=1.4.2 NAME=zt envsubst >env-out.txt; }
prepend_shell() { { printf 'head\r\n'; cat big.txt; } >big.tmp && mv big.tmp big.txt; }
save_shell() {
  { printf '[ZTVariables]\r\n'; for ((i = 0; i < VARS; i++)); do printf 'V%03d=value-%d\r\n' "$i" "$i"; done; } >shell.ini
}

echo "checking outputs ..."
"$ZT" run replace.yml --quiet
run_sed
run_envsubst
cmp zt-out.txt sed-out.txt
cmp zt-out.txt env-out.txt
cp big.txt before.txt
"$ZT" run prepend.yml --quiet
{ printf 'head\r\n'; cat before.txt; } | cmp - big.txt
rm before.txt
"$ZT" run save.yml --quiet
save_shell
cmp vars.ini shell.ini

echo "timing (best of 3) ..."
replace_zt=$(best "$ZT" run replace.yml --quiet)
replace_sed=$(best run_sed)
replace_env=$(best run_envsubst)
prepend_zt=$(best "$ZT" run prepend.yml --quiet)
prepend_sh=$(best prepend_shell)
rm -f vars.ini
save_zt=$(best "$ZT" run save.yml --quiet)
save_sh=$(best save_shell)

echo
printf 'Replace Variables, %d lines (%s MiB):  zt %ss | sed %ss (zt %s x sed) | sed+envsubst %ss (zt %s x)\n' \
  "$LINES" "$(( $(stat -c %s template.txt) >> 20 ))" "$replace_zt" "$replace_sed" "$(ratio "$replace_zt" "$replace_sed")" \
  "$replace_env" "$(ratio "$replace_zt" "$replace_env")"
printf 'Write to Text File, prepend to %d MiB:  zt %ss | shell %ss (zt %s x shell)\n' \
  "$PREPEND_MB" "$prepend_zt" "$prepend_sh" "$(ratio "$prepend_zt" "$prepend_sh")"
printf 'Save Variables to INI, %d variables:    zt %ss | shell %ss (zt %s x shell)\n' \
  "$VARS" "$save_zt" "$save_sh" "$(ratio "$save_zt" "$save_sh")"
