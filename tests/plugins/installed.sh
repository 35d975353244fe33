#!/bin/bash
# Sourced by the scripts that try plug-ins as installed.
#   source installed.sh BUILD_DIR COMPONENT
# Goes to an empty folder, $work, that is removed in the end and has the component, and the library
# that it needs, in $work/moved; the tool is in the PATH.
build=$1
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cd "$work" || exit
for component in runtime "$2"; do
  cmake --install "$build" --prefix "$work/prefix" --component "$component" >/dev/null
done
# What is installed does not know its place.
mv prefix moved
PATH=$build/tools/lumora:$PATH
