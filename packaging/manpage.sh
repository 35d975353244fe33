#!/bin/bash
# Writes the manual page from the tool's own help texts.
#   manpage.sh LUMORA > lumora.1
set -euo pipefail
lumora=$1

literal() { sed -e 's/\\/\\e/g' -e "s/^[.']/\\\\\&&/" -e 's/-/\\-/g'; }
commands() { awk '/^Commands:/{on=1;next} /^$/{on=0} on{print $1}'; }
actions() { awk '/^  [a-z]+ +[a-z]/ && !/^  lumora/{print $1}'; }
section() {
  printf '.SS lumora %s\n' "$*"
  "$lumora" "$@" --help | block
}
block() {
  echo .nf
  literal
  echo .fi
}

cat <<'HEAD'
.TH LUMORA 1 "" "lumora_filters" "User Commands"
.SH NAME
lumora \- picture filters for photographs and camera frames
.SH SYNOPSIS
.B lumora
.I COMMAND
[options]
.SH DESCRIPTION
HEAD
"$lumora" --help | block
echo .SH COMMANDS
for command in $("$lumora" --help | commands); do
  section "$command"
done
for action in $("$lumora" pack --help | actions); do
  section pack "$action"
done
cat <<'TAIL'
.SH FILES
.TP
.I mixIm.dat
the texture pack; found beside the build, in the installation's
.IR share/lumora_filters ,
or in the folder that \-\-resources names
.TP
.I filter.xml
the tuning document, in the same folder
.SH SEE ALSO
The header
.I lumora/filters.h
documents the library.
TAIL
