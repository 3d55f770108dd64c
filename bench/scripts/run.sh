#!/usr/bin/env bash
# Times 100,000 calls of a one-line script that reads a parameter and sets it
# ("Value = Value + 1"), as a per-match or per-line script runs:
#   - through zt's script host (ExecuteScript: parameters in, the compiled
#     chunk, in-out parameters back, the stop hook), the figure that matters;
#   - through Lua's bare C API (set a global, call, read it), the floor;
#   - through Python's embedded form of the same (exec of a compiled code
#     object with a globals dict), the other script host a user might pick.
# Prints microseconds per call, best of three, and each against the host.
#
# usage: bench/scripts/run.sh [BUILD_DIR]   (default: build/bench)
set -euo pipefail

ROOT=$(cd "$(dirname "$0")/../.." && pwd)
BUILD=${1:-$ROOT/build/bench}
if [[ ! -x $BUILD/bench/scripts/scripts_bench ]]; then
  cmake -S "$ROOT" -B "$BUILD" -DCMAKE_BUILD_TYPE=Release -DZT_BUILD_BENCH=ON >/dev/null
  cmake --build "$BUILD" -j2 --target scripts_bench >/dev/null
fi
DRIVER=$BUILD/bench/scripts/scripts_bench
N=${N:-100000}

best() { for _ in 1 2 3; do "$@"; done | sort -n | head -1; }
ratio() { python3 -c "print('%.2fx' % ($1 / $2))"; }

PY='import sys, time
n = int(sys.argv[1])
code = compile("Value = Value + 1", "script", "exec")
g = {}
s = time.perf_counter()
for i in range(n):
    g["Value"] = i
    exec(code, g)
    assert g["Value"] == i + 1
print("%.3f" % ((time.perf_counter() - s) * 1e6 / n))'

host=$(best "$DRIVER" host "$N")
lua=$(best "$DRIVER" lua "$N")
python=$(best python3 -c "$PY" "$N")
printf '%-28s %10s %10s\n' "$N calls of one script" "us/call" "vs host"
printf '%-28s %10s %10s\n' "zt script host" "$host" 1.00x
printf '%-28s %10s %10s\n' "Lua C API (bare)" "$lua" "$(ratio "$lua" "$host")"
printf '%-28s %10s %10s\n' "Python exec (embedded)" "$python" "$(ratio "$python" "$host")"
