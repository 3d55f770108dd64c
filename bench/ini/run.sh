#!/usr/bin/env bash
# Times reading one key from, and writing one key into, INI files of 100,000
# and 200,000 keys (the key is the last one, so every tool reads the whole
# file): the INI engine (ini_bench) against what a user would otherwise run
# for one key: `git config -f`, Python's configparser, and awk (read) / sed -i
# (write). Prints milliseconds per call, best of three runs of N calls.
#
# usage: bench/ini/run.sh [BUILD_DIR]   (default: build/bench)
set -euo pipefail

ROOT=$(cd "$(dirname "$0")/../.." && pwd)
BUILD=${1:-$ROOT/build/bench}
if [[ ! -x $BUILD/bench/ini/ini_bench ]]; then
  cmake -S "$ROOT" -B "$BUILD" -DCMAKE_BUILD_TYPE=Release -DZT_BUILD_BENCH=ON >/dev/null
  cmake --build "$BUILD" -j2 --target ini_bench >/dev/null
fi
DRIVER=$BUILD/bench/ini/ini_bench
N=${N:-20}
WORK=$(mktemp -d "${TMPDIR:-/tmp}/zt-ini-bench-XXXXXX")
trap 'rm -rf "$WORK"' EXIT

# best of three: milliseconds per call of N calls of "$@"
per_call() {
  python3 - "$N" "$@" <<'PY'
import subprocess, sys, time
n, cmd = int(sys.argv[1]), sys.argv[2:]
best = None
for _ in range(3):
    s = time.perf_counter()
    for _ in range(n):
        subprocess.run(cmd, check=True, stdout=subprocess.DEVNULL)
    t = (time.perf_counter() - s) * 1000 / n
    best = t if best is None else min(best, t)
print("%.3f" % best)
PY
}
# best of three of the driver's own per-call time (N calls in one process)
driver() { for _ in 1 2 3; do "$DRIVER" "$@"; done | sort -n | head -1; }
ratio() { python3 -c "print('%.1fx' % ($1 / $2))"; }

PYREAD='import configparser,sys
c=configparser.ConfigParser(interpolation=None,strict=False); c.optionxform=str; c.read(sys.argv[1])
print(c[sys.argv[2]][sys.argv[3]])'
PYWRITE='import configparser,sys
c=configparser.ConfigParser(interpolation=None,strict=False); c.optionxform=str; c.read(sys.argv[1])
c[sys.argv[2]][sys.argv[3]]=sys.argv[4]
with open(sys.argv[1],"w") as f: c.write(f)'

printf '%-8s %-6s %-22s %10s %8s\n' keys op tool ms/call vs-engine
for KEYS in 100000 200000; do
  F=$WORK/k$KEYS.ini
  "$DRIVER" make "$F" "$KEYS"
  S=$(printf 'section%05d' $(( (KEYS - 1) / 1000 )))
  K=$(printf 'key%07d' $(( KEYS - 1 )))

  engine=$(driver read "$F" "$S" "$K" "$N")
  printf '%-8s %-6s %-22s %10s %8s\n' "$KEYS" read "INI engine" "$engine" 1.0x
  for tool in git python awk; do
    case $tool in
      git) t=$(per_call git config -f "$F" "$S.$K") ;;
      python) t=$(per_call python3 -c "$PYREAD" "$F" "$S" "$K") ;;
      awk) t=$(per_call awk -F= -v s="[$S]" -v k="$K" '$0==s{f=1;next} /^\[/{f=0} f&&$1==k{print $2; exit}' "$F") ;;
    esac
    printf '%-8s %-6s %-22s %10s %8s\n' "$KEYS" read "$tool" "$t" "$(ratio "$t" "$engine")"
  done

  engine=$(driver write "$F" "$S" "$K" "$N")
  printf '%-8s %-6s %-22s %10s %8s\n' "$KEYS" write "INI engine" "$engine" 1.0x
  for tool in git python sed; do
    cp "$F" "$F.tool"
    case $tool in
      git) t=$(per_call git config -f "$F.tool" "$S.$K" "tool value") ;;
      python) t=$(per_call python3 -c "$PYWRITE" "$F.tool" "$S" "$K" "tool value") ;;
      sed) t=$(per_call sed -i "/^\[$S\]/,/^\[/ s/^$K=.*/$K=tool value/" "$F.tool") ;;
    esac
    printf '%-8s %-6s %-22s %10s %8s\n' "$KEYS" write "$tool" "$t" "$(ratio "$t" "$engine")"
  done
done
