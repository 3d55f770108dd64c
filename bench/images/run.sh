#!/usr/bin/env bash
# Times the image actions, run through zt on a project file, against the
# tools a user would otherwise run, in one run on the same machine:
#   "Image Manipulation", N twelve-megapixel JPEGs fitted into 800 px
#                                   vs  vipsthumbnail -s 800   (aim <= 1.2x)
#                                   vs  convert -resize 800x800 (aim >= 3x faster;
#                                       run on N_CONVERT images, compared per image)
#   "JPEG Lossless Transform" jtRotate90 of the same N JPEGs
#                                   vs  a jpegtran -rot 90 loop (aim <= 1.1x)
# The JPEG is made at run time (libvips) and copied N times. Each figure is
# the best of three wall-clock times; outputs are removed (untimed) before
# every run. Data lives in a scratch directory deleted at the end.
#
# usage: bench/images/run.sh [BUILD_DIR]   (default: build/bench; N=200 N_CONVERT=20)
set -euo pipefail

ROOT=$(cd "$(dirname "$0")/../.." && pwd)
BUILD=${1:-$ROOT/build/bench}
if [[ ! -x $BUILD/zt || ! -f $BUILD/FileAndMiscImages.so ]]; then
  cmake -S "$ROOT" -B "$BUILD" -DCMAKE_BUILD_TYPE=Release -DZT_BUILD_TESTS=OFF >/dev/null
  cmake --build "$BUILD" -j2 --target zt FileAndMiscPackage FileAndMiscImages >/dev/null
fi
ZT=$(cd "$BUILD" && pwd)/zt
N=${N:-200}
N_CONVERT=${N_CONVERT:-20}
for tool in vips vipsthumbnail jpegtran convert; do
  command -v $tool >/dev/null || { echo "missing $tool (libvips-tools, libjpeg-turbo-progs, imagemagick)" >&2; exit 1; }
done

WORK=$(mktemp -d "${TMPDIR:-/tmp}/zt-images-bench-XXXXXX")
trap 'rm -rf "$WORK"' EXIT
cd "$WORK"
echo "making $N 4000x3000 JPEGs in $WORK ..."
vips gaussnoise noise.v 4000 3000 --sigma 40 --mean 128
vips bandjoin "noise.v noise.v noise.v" rgb.v
vips copy rgb.v photo.jpg[Q=90]
mkdir src convert-src
for i in $(seq -w 1 "$N"); do cp photo.jpg src/p$i.jpg; done
for i in $(seq -w 1 "$N_CONVERT"); do cp photo.jpg convert-src/p$i.jpg; done
cat src/* >/dev/null

best() {  # best of three wall-clock seconds of "$@", after the setup in $SETUP
  local b=""
  for _ in 1 2 3; do
    eval "$SETUP"
    local s e t
    s=$(date +%s.%N); "$@" >/dev/null 2>&1; e=$(date +%s.%N)
    t=$(echo "$e - $s" | bc)
    if [[ -z $b ]] || (( $(echo "$t < $b" | bc) )); then b=$t; fi
  done
  echo "$b"
}
ratio() { echo "scale=2; $1 / $2" | bc; }

cat >thumbs.yml <<YML
actions:
  - action: Image Manipulation
    FileSpec: src/*.jpg
    OutputDirectory: out
    ResizeMode: rmFit
    Width: 800
    Height: 800
YML
cat >rotate.yml <<YML
actions:
  - action: JPEG Lossless Transform
    FileSpec: src/*.jpg
    OutputDirectory: out
    Transform: jtRotate90
YML
vipsthumbnails() { for f in src/*.jpg; do vipsthumbnail -s 800 -o "$PWD/out/%s.jpg" "$f"; done; }
converts() { for f in convert-src/*.jpg; do convert "$f" -resize 800x800 "out/$(basename "$f")"; done; }
jpegtrans() { for f in src/*.jpg; do jpegtran -rot 90 -trim -copy all -outfile "out/$(basename "$f")" "$f"; done; }

SETUP='rm -rf out; mkdir out'
zt_thumbs=$(best "$ZT" run thumbs.yml --quiet)
vt=$(best vipsthumbnails)
cv=$(best converts)
zt_rot=$(best "$ZT" run rotate.yml --quiet)
jt=$(best jpegtrans)

printf '%-48s %8s s\n' "zt Image Manipulation, $N images" "$zt_thumbs"
printf '%-48s %8s s   zt/tool %sx (aim <= 1.2x)\n' "vipsthumbnail loop" "$vt" "$(ratio "$zt_thumbs" "$vt")"
per_zt=$(echo "scale=4; $zt_thumbs / $N" | bc); per_cv=$(echo "scale=4; $cv / $N_CONVERT" | bc)
printf '%-48s %8s s   per image: convert/zt %sx faster (aim >= 3x)\n' "convert -resize loop, $N_CONVERT images" "$cv" \
  "$(ratio "$per_cv" "$per_zt")"
printf '%-48s %8s s\n' "zt JPEG Lossless Transform jtRotate90, $N images" "$zt_rot"
printf '%-48s %8s s   zt/tool %sx (aim <= 1.1x)\n' "jpegtran -rot 90 loop" "$jt" "$(ratio "$zt_rot" "$jt")"
