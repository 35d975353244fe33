#!/bin/bash
# Tables that the tool writes, read by ffmpeg and ImageMagick: on random colours each looks like its
# look. Prints a row per look with the greatest differences, for docs/pipelines.md.
#   other_programs.sh TOOL_DIR
set -euo pipefail
PATH=$1:$PATH
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cd "$work"

random="nullsrc=s=256x256,format=gbrp,geq=r='random(0)*256':g='random(1)*256':b='random(2)*256'"
ffmpeg -v error -f lavfi -i "$random" -frames:v 1 -pix_fmt rgb24 random.png
raw() { ffmpeg -v error -y -i "$1" -pix_fmt rgb24 -f rawvideo "$2"; }

# within LIMIT: prints the greatest difference of got.png from the look, which must not be above.
within() {
  raw got.png got
  [[ $(stat -c %s got) == $(stat -c %s want) ]] || { echo "the sizes differ"; exit 1; }
  local greatest
  greatest=$( (cmp -l want got || true) | awk '
    function level(octal) { return int(octal / 100) * 64 + int(octal % 100 / 10) * 8 + octal % 10 }
    { d = level($2) - level($3); d = d < 0 ? -d : d; if (d > most) most = d }
    END { print most + 0 }')
  printf ' %d |' "$greatest"
  ((greatest <= $1)) || { echo " more than $1"; exit 1; }
}
cube() { ffmpeg -v error -y -i random.png -vf "format=gbrp,lut3d=$1:interp=$2" got.png; }

echo '| look | 33, tetrahedral | 33, trilinear | 65, tetrahedral | Hald 8, ffmpeg | Hald 8, ImageMagick |'
echo '|---|---|---|---|---|---|'
looks=0
for look in moran rixi fugu valencia nuanyangyang tianmeikeren heibai; do
  lumora apply --look $look --force random.png want.png
  raw want.png want
  lumora lut --look $look --force 33.cube
  lumora lut --look $look --size 65 --force 65.cube
  lumora lut --look $look --force hald.png
  printf '| %s |' $look
  cube 33.cube tetrahedral && within 4
  cube 33.cube trilinear && within 4
  cube 65.cube tetrahedral && within 2
  ffmpeg -v error -y -i random.png -i hald.png -filter_complex haldclut got.png && within 3
  convert random.png hald.png -hald-clut got.png && within 3
  echo
  looks=$((looks + 1))
done
[[ $looks == 7 ]]

# The tiles hold the same: tile by tile they are the entries of a table of size 64.
lumora lut --look fugu --force hald.png
lumora lut --look fugu --to tiles --force tiles.png
[[ $(convert tiles.png -format '%wx%h' info:) == 512x512 ]]
tiles=$(convert tiles.png -crop 64x64 +repage -append -depth 8 rgb:- | md5sum)
hald=$(convert hald.png -depth 8 rgb:- | md5sum)
[[ $tiles == "$hald" ]] || { echo "the tiles are not those of the look"; exit 1; }
