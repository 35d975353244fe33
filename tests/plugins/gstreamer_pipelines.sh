#!/bin/bash
# The element as installed, in pipelines of gst-launch-1.0: frames equal those of the tool, errors and
# the library's log are told, every effect description is a pipeline, and nothing leaks.
#   gstreamer_pipelines.sh BUILD_DIR
set -euo pipefail
source "${BASH_SOURCE%/*}/installed.sh" "$1" gstreamer
GST_PLUGIN_PATH=$(dirname "$(find "$work/moved" -name libgstlumora.so)")
export GST_PLUGIN_PATH GST_REGISTRY=$work/registry
unset GST_DEBUG

# pipeline WORDS...: runs it to its end.
pipeline() { timeout 60 gst-launch-1.0 -q "$@" || { echo "failed: $*"; exit 1; }; }
source="videotestsrc num-buffers=2 pattern=smpte75"

# A width that is a multiple of four, whose rows videotestsrc does not pad.
for format in RGBA NV12 NV21; do
  caps="video/x-raw,format=$format,width=164,height=100"
  # shellcheck disable=SC2086
  pipeline $source ! "$caps" ! filesink location=plain
  for look in $(lumora looks --json | sed -n 's/.*"name": "\(.*\)",/\1/p'); do
    case $look in
      laodianying) continue ;;  # never twice alike
      colour-fix) [[ $format == RGBA ]] || continue ;;
    esac
    options=()
    [[ $look != colour-fix ]] || options=(--colour '#ff0000')
    lumora frame --force --look "$look" "${options[@]}" --format "${format,,}" --size 164x100 \
      plain expected
    # shellcheck disable=SC2086
    pipeline $source ! "$caps" ! lumorafilter look="$look" ! filesink location=got
    cmp expected got || { echo "$look $format differs"; exit 1; }
  done
done

echo "== errors and log"
# After an error before the first frame is shown, of whatever element, gst-launch-1.0 may wait for ever.
if timeout 5 gst-launch-1.0 videotestsrc num-buffers=1 ! lumorafilter resources=/nowhere ! \
  fakesink >said 2>&1; then
  echo "a missing texture pack is no matter"
  exit 1
fi
grep -q '/nowhere/mixIm.dat is no usable texture pack' said || { cat said; exit 1; }
GST_DEBUG=lumorafilter:4 timeout 60 gst-launch-1.0 -q videotestsrc num-buffers=1 ! lumorafilter ! fakesink 2>said
grep -q 'lumorafilter.*Filter Version' said || { cat said; exit 1; }

echo "== leaks"
# shellcheck disable=SC2086
GST_TRACERS=leaks GST_DEBUG=GST_TRACER:7 pipeline $source ! video/x-raw,format=NV12 ! tee name=t \
  t. ! queue ! lumorafilter look=xpro2 ! fakesink t. ! queue ! lumorafilter look=blur ! fakesink 2>said
grep -q GST_TRACER said || { echo "the tracer says nothing"; exit 1; }
if grep -E 'object-(alive|leaked), type-name=.string.[A-Z]' said; then exit 1; fi

echo "== effect descriptions"
count=0
for effect in moved/share/gnome-video-effects/lumora-*.effect; do
  description=$(sed -n 's/^PipelineDescription=//p' "$effect")
  grep -q '^Name=.' "$effect" && grep -q '^Comment=.' "$effect"
  # shellcheck disable=SC2086
  pipeline $source ! $description ! fakesink
  count=$((count + 1))
done
[[ $count == 20 ]] || { echo "$count effects instead of 20"; exit 1; }
