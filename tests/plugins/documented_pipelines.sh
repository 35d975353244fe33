#!/bin/bash
# Runs every block of docs/pipelines.md as it is written, on a small film and photograph. A test has no
# camera and no screen: a test picture and a sink without a window stand in for them.
#   documented_pipelines.sh BUILD_DIR SOURCE_DIR
set -euo pipefail
build=$1 page=$2/docs/pipelines.md
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cd "$work"
export GST_PLUGIN_PATH=$build/plugins/gstreamer GST_REGISTRY=$work/registry
export FREI0R_PATH=$build/plugins/frei0r/plugins HOME=$work SDL_AUDIODRIVER=dummy
PATH=$build/tools/lumora:$PATH

lumora sample --size 320x180 photo.png
ffmpeg -v error -loop 1 -i photo.png -frames:v 25 -r 25 -c:v libvpx -deadline realtime in.webm

awk '/^```sh$/ { file = sprintf("block%02d.sh", ++count); next } /^```$/ { file = "" } file { print > file }' \
  "$page"
blocks=0
for block in block*.sh; do
  sed -i 's/v4l2src/videotestsrc num-buffers=20/; s/autovideosink/fakesink/' "$block"
  timeout 120 bash -euo pipefail "$block" >said 2>&1 </dev/null || { cat "$block" said; exit 1; }
  blocks=$((blocks + 1))
done
((blocks >= 8)) || { echo "only $blocks blocks"; exit 1; }

# They have written what they say.
frames() { ffprobe -v error -count_frames -show_entries stream=nb_read_frames -of csv=p=0 "$1"; }
[[ $(frames out.webm) == 25 && $(frames graded.webm) == 25 && $(frames swept.mkv) == 25 ]]
[[ $(convert four.png -format '%wx%h' info:) == 640x360 ]]
# Half strength at first, strongest at the end.
ffmpeg -v error -y -i swept.mkv -vf 'select=eq(n\,0)+eq(n\,24)' -vsync 0 swept%d.png
change() { convert photo.png "$1" -metric MAE -compare -format '%[distortion]' info:; }
awk "BEGIN { exit !($(change swept2.png) > 1.5 * $(change swept1.png)) }"
cmp -s graded.png photo.png && { echo "the photograph has no look"; exit 1; }
[[ -s look.png && -s weaker.png && -s graded.mkv ]]
