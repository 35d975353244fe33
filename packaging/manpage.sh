#!/bin/bash
# Writes the manual page from the tool's own help texts.
#   manpage.sh LUMORA > lumora.1
set -euo pipefail
lumora=$1

literal() { sed -e 's/\\/\\e/g' -e "s/^[.']/\\\\\&&/" -e 's/-/\\-/g'; }
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
for command in $("$lumora" --help | awk '/^Commands:/{on=1;next} /^$/{on=0} on{print $1}'); do
  printf '.SS lumora %s\n' "$command"
  "$lumora" "$command" --help | block
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
