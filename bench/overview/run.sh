#!/usr/bin/env bash
# The four figures that tell whether zt keeps up with the tools a user would
# otherwise run, each timed against that tool in the same run:
#   "Copy File(s)" Recurse, 20,000 files in 200 dirs   vs  cp -r      (zt/cp)
#   "Delete File(s)", 20,000 files in one dir          vs  rm -f dir/* (zt/rm)
#   "Calculate File CRC32" of 1 GiB in the page cache  vs  cat > /dev/null (zt/cat)
#   10,000 "Calculate File MD5" actions, 0-16 KiB      vs  md5sum      (md5sum/zt: speed)
# zt runs with --quiet. On each file system (tmpfs /dev/shm, where the
# program's own cost shows, and the disk's) every row runs REPS times, zt and
# the tool interleaved, the target removed and the disk synced (untimed)
# before each run. Each ratio is taken within one repetition; the table
# gives the median and the range over the repetitions, and the median CPU
# time (user + system), which other work on the machine disturbs less than
# the wall clock. With BEFORE=<build dir> a second zt (an older build) runs
# in the same repetitions, for a before/after comparison.
#
# usage: bench/overview/run.sh [BUILD_DIR]   (default: build/bench)
#   REPS=5  FILESYSTEMS="/dev/shm /var/tmp"  BEFORE=<build dir>  BIG_MB=1024
set -euo pipefail

ROOT=$(cd "$(dirname "$0")/../.." && pwd)
BUILD=${1:-$ROOT/build/bench}
if [[ ! -x $BUILD/zt || ! -f $BUILD/FileAndMiscPackage.so ]]; then
  cmake -S "$ROOT" -B "$BUILD" -DCMAKE_BUILD_TYPE=Release -DZT_BUILD_TESTS=OFF >/dev/null
  cmake --build "$BUILD" -j2 --target zt FileAndMiscPackage >/dev/null
fi
BUILD=$(cd "$BUILD" && pwd)
BEFORE=${BEFORE:+$(cd "$BEFORE" && pwd)}
export ZT=$BUILD/zt ZT_BEFORE=${BEFORE:+$BEFORE/zt}
export REPS=${REPS:-5} BIG_MB=${BIG_MB:-1024}
FILESYSTEMS=${FILESYSTEMS:-/dev/shm ${TMPDIR:-/var/tmp}}

for fs in $FILESYSTEMS; do
  need_kb=$(( (BIG_MB + 400) * 1024 ))
  free_kb=$(df -Pk "$fs" | awk 'NR==2 {print $4}')
  if (( free_kb < need_kb )); then
    echo "skipping $fs: need ${need_kb} KiB free, have ${free_kb}" >&2
    continue
  fi
  WORK=$(mktemp -d "$fs/zt-overview-bench-XXXXXX")
  trap 'rm -rf "$WORK"' EXIT
  echo
  echo "== $fs ($(df -PT "$fs" | awk 'NR==2 {print $2}')), $REPS repetitions"
  python3 - "$WORK" <<'PY'
import os, random, resource, statistics, subprocess, sys, time

work = sys.argv[1]
os.chdir(work)
reps, big_mb = int(os.environ["REPS"]), int(os.environ["BIG_MB"])
zts = [("zt", os.environ["ZT"])] + ([("before", os.environ["ZT_BEFORE"])] if os.environ.get("ZT_BEFORE") else [])

rng = random.Random(1)
def write(path, size):
    with open(path, "wb") as f:
        f.write(rng.randbytes(size))
for d in range(200):
    os.makedirs("tree/d%03d" % d)
    for i in range(100):
        write("tree/d%03d/f%03d.dat" % (d, i), rng.randint(0, 8192))
os.makedirs("flat.template")
for i in range(20000):
    write("flat.template/f%05d.tmp" % i, rng.randint(0, 1024))
os.makedirs("small")
for i in range(10000):
    write("small/f%05d.dat" % i, rng.randint(0, 16384))
subprocess.run("head -c %d /dev/urandom >big.bin" % (big_mb << 20), shell=True, check=True)

def project(name, actions):
    with open(name, "w") as f:
        f.write("actions:\n" + "".join(actions))
project("copy.yml", ["  - action: Copy File(s)\n    FileSpec: tree/*\n    Target: tree.copy\n"
                     "    Recurse: true\n    Force: true\n"])
project("delete.yml", ["  - action: Delete File(s)\n    FileSpec: flat/*\n"])
project("crc.yml", ["  - action: Calculate File CRC32\n    FileName: big.bin\n"])
project("md5.yml", ["  - action: Calculate File MD5\n    FileName: small/%s\n" % n for n in sorted(os.listdir("small"))])

# name, prepare (untimed), the tool's command, the zt project, check after zt,
# and whether the ratio is a speed (tool/zt) rather than a time (zt/tool)
rows = [
    ("Copy File(s), 20,000 files", "rm -rf tree.copy", "cp -r tree tree.copy", "copy.yml",
     "test $(find tree.copy -type f | wc -l) = 20000", False),
    ("Delete File(s), 20,000 files", "rm -rf flat && cp -r flat.template flat", "rm -f flat/*", "delete.yml",
     "test -z \"$(ls flat)\"", False),
    ("CRC32 of %d MiB" % big_mb, "cat big.bin >/dev/null", "cat big.bin >/dev/null", "crc.yml", "true", False),
    ("10,000 MD5 actions", "cat small/* >/dev/null", "md5sum small/* >/dev/null", "md5.yml", "true", True),
]

def timed(prepare, command):
    subprocess.run(prepare, shell=True, check=True)
    os.sync()
    before = resource.getrusage(resource.RUSAGE_CHILDREN)
    start = time.perf_counter()
    subprocess.run(command, shell=True, check=True, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
    wall = time.perf_counter() - start
    after = resource.getrusage(resource.RUSAGE_CHILDREN)
    return wall, (after.ru_utime - before.ru_utime) + (after.ru_stime - before.ru_stime)

def spread(values, fmt):
    return "%s [%s-%s]" % (fmt % statistics.median(values), fmt % min(values), fmt % max(values))

print("%-30s %-21s %-21s %-22s %s" % ("row", "tool s [range]", "zt s [range]", "ratio [range]", "CPU s tool/zt"))
for name, prepare, tool, yml, check, speed in rows:
    t = {"tool": []}
    t.update({label: [] for label, _ in zts})
    for _ in range(reps):
        t["tool"].append(timed(prepare, tool))
        for label, zt in zts:
            t[label].append(timed(prepare, "'%s' run %s --quiet" % (zt, yml)))
            subprocess.run(check, shell=True, check=True)
    for label, _ in zts:
        ratios = [(a[0] / b[0]) if speed else (b[0] / a[0]) for a, b in zip(t["tool"], t[label])]
        cpu_tool = statistics.median(c for _, c in t["tool"])
        cpu_zt = statistics.median(c for _, c in t[label])
        print("%-30s %-21s %-21s %-22s %.3f / %.3f" % (
            name if label == "zt" else "  (before)", spread([w for w, _ in t["tool"]], "%.3f"),
            spread([w for w, _ in t[label]], "%.3f"), spread(ratios, "%.2f") + ("x speed" if speed else "x"),
            cpu_tool, cpu_zt), flush=True)
PY
  rm -rf "$WORK"
  trap - EXIT
done
