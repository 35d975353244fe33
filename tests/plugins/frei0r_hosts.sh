#!/bin/bash
# The plug-ins as installed, in ffmpeg and melt: pictures equal those of the tool, and a missing
# texture pack is told.
#   frei0r_hosts.sh BUILD_DIR
set -euo pipefail
source "${BASH_SOURCE%/*}/installed.sh" "$1" frei0r
export FREI0R_PATH=$work/moved/lib/frei0r-1

lumora sample --size 640x360 scene.png
filtered() { ffmpeg -v error -y -i scene.png -vf "format=rgba,$1" -f rawvideo "$2"; }
looks=0
for plugin in "$FREI0R_PATH"/lumora_*.so; do
  plugin=${plugin##*/lumora_} look=${plugin%.so}
  case $look in
    laodianying) continue ;;  # never twice alike
    colour_fix) options=(--colour '#ff0000') ;;
    *) options=() ;;
  esac
  lumora apply --force --look "${look//_/-}" "${options[@]}" scene.png expected.png
  ffmpeg -v error -y -i expected.png -pix_fmt rgba -f rawvideo expected
  filtered "frei0r=lumora_$look" got
  cmp expected got || { echo "$look differs in ffmpeg"; exit 1; }
  looks=$((looks + 1))
done
[[ $looks == 19 ]] || { echo "$looks looks instead of 19"; exit 1; }

echo "== melt"
export SDL_AUDIODRIVER=dummy HOME=$work
melt -silent scene.png out=4 -filter frei0r.lumora_heibai \
  -consumer avformat:clip.mkv vcodec=ffv1 pix_fmt=gbrp an=1 width=640 height=360 2>melt.log
[[ $(ffprobe -v error -count_frames -show_entries stream=nb_read_frames -of csv=p=0 clip.mkv) == 5 ]]
# Black and white: the channels of a frame are alike.
ffmpeg -v error -y -i clip.mkv -frames:v 1 -pix_fmt rgb24 -f rawvideo frame
od -An -v -tu1 -w3 frame | awk '$1 != $2 || $2 != $3 { other++ } END { exit other > 0 || NR == 0 }' ||
  { echo "melt's clip is not grey"; exit 1; }

echo "== no texture pack"
rm moved/share/lumora_filters/mixIm.dat
if filtered frei0r=lumora_fugu got 2>said; then
  echo "a missing texture pack is no matter"
  exit 1
fi
grep -q 'Lumora fugu: .*mixIm.dat' said || { cat said; exit 1; }
