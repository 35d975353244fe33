#!/bin/bash
# Runs the gallery host on a small picture under every mode.
#   gallery_host.sh GALLERY_HOST RESOURCE_DIR/ [EMULATOR...]
set -euo pipefail
host=$1 resources=$2
shift 2
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
{
  printf 'P6\n100 96\n255\n'
  head -c $((3 * 100 * 96)) /dev/zero | tr '\0' 'k'
} > "$work/in.ppm"
for mode in 1 5 6 11 13 18 19 20; do
  "$@" "$host" "$resources" "$mode" 16 "$work/in.ppm" "$work/out$mode.ppm"
  [[ $(wc -c < "$work/out$mode.ppm") == $(wc -c < "$work/in.ppm") ]]
done
# Looks change a plain grey picture; the region and focus effects have nothing to do on it.
for mode in 1 5 6 11 13; do
  if cmp -s "$work/in.ppm" "$work/out$mode.ppm"; then exit 1; fi
done
if "$@" "$host" "$resources" 99 16 "$work/in.ppm" "$work/out.ppm" 2>/dev/null; then exit 1; fi
