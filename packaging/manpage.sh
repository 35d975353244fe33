#!/bin/bash
# Writes the manual page: what the tool's own help texts say of every command, and what only a page
# has room for.
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
.SH EXAMPLES
Choosing a look, with the photograph itself as the first cell of the sheet:
.PP
.nf
    lumora gallery \-\-original photo.jpg sheet.jpg
    lumora gallery \-\-looks fugu,lofi \-\-strengths 50%,75%,100% photo.jpg sheet.jpg
.fi
.PP
A folder of photographs, on all processors in at most two gigabytes of memory. The same command
again does what is missing, whatever ended the first one:
.PP
.nf
    lumora apply \-\-look rixi \-\-recursive \-\-jobs auto \-\-memory 2G \e
        \-\-skip\-existing \-\-out\-dir done photos
.fi
.PP
The second of eight machines that see the same folders:
.PP
.nf
    lumora apply \-\-look rixi \-\-recursive \-\-shard 2/8 \-\-out\-dir done photos
.fi
.PP
Which pictures failed, and why:
.PP
.nf
    lumora apply \-\-look rixi \-r \-d done \-\-json photos |
        jq \-r 'select(.state == "failed") | .error'
.fi
.SH "LINES OF JSON"
With \-\-json every picture is one line on standard output, in the order of the inputs and behind
those that \-\-skip\-existing leaves out:
.TP
.BR input ", " output
names as they were given or made; bytes that are no UTF\-8 appear as U+FFFD
.TP
.B look
the name of the look, or the file of \-\-lut
.TP
.B state
.BR done ", " failed ", " skipped " or, with \-\-dry\-run, " planned
.TP
.BR width ", " height
pixels, as soon as the picture could be read
.TP
.BR bytes ", " ms
of a picture that was made: the size of the file, and milliseconds of
.BR decode ", " filter " and " encode
.TP
.BR warnings ", " error
a list of remarks on the result, and the reason of a failure or null
.PP
The last line has the single key
.BR summary :
.BR pictures ", " done " or " planned ", " skipped ", " failed " and " seconds .
.SH "EXIT STATUS"
.TP
.B 0
All is done, or there was nothing to do.
.TP
.B 1
One picture failed, or some of several; the others are done. To do it again with
\-\-skip\-existing tries those that failed.
.TP
.B 2
The command line cannot be carried out as it stands. Nothing was done.
.TP
.B 3
The texture pack or the tuning document is missing or malformed. Nothing was done.
.TP
.B 4
Of several pictures all failed.
.PP
A signal ends the run with the signal's status, after files that were not complete are removed.
SIGKILL leaves such a file behind, hidden under a name like
.IR .photo.jpg.Xy12ab .
.SH FILES
.TP
.I mixIm.dat
the texture pack; found beside the build, in the installation's
.IR share/lumora_filters ,
or in the folder that \-\-resources names
.TP
.I filter.xml
the tuning document, in the same folder
.TP
.I /tmp/lumora\-*
a folder of links to these two, while a command runs, where their own folder's name is long or
\-\-params names another document
.SH ENVIRONMENT
.TP
.B TERM
The bar of several pictures is drawn on a terminal, unless it is
.BR dumb .
.TP
.B VIPS_CONCURRENCY
threads of the image library for one picture, where \-\-jobs is 1
.SH SEE ALSO
The header
.I lumora/filters.h
documents the library;
.I docs/many.md
in the source has recipes for many machines.
TAIL
