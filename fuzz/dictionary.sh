#!/bin/sh
# Prints a libFuzzer dictionary made from the format reference: the document's frame, every tag (opening and
# closing), every list wrapper and every attribute name.
set -eu
reference=${1:-docs/format.md}
printf '%s\n' '"<?xml version=\"1.0\" encoding=\"UTF-8\"?>"' '"encoding=\"ISO-8859-1\""' \
    '"<Ruvex version=\"2.5\" versionRevision=\"0\">"' '"</Ruvex>"' '"version=\"2.2\""' '"/>"' '"<!--"' '"-->"' \
    '"<![CDATA["' '"]]>"' '"<?"' '"?>"' '"&amp;"' '"&#"'
sed -n 's/^## \([A-Za-z0-9]*\)$/"<\1"\n"<\/\1>"/p' "$reference"
grep -o 'inside "[A-Za-z0-9]*"' "$reference" | sed 's/inside "\(.*\)"/"<\1>"\n"<\/\1>"/' | sort -u
sed -n 's/^| "\([A-Za-z0-9]*\)" |.*/" \1=\\""/p' "$reference" | sort -u
