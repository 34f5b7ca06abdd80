#!/usr/bin/env bash
# Compiles the help file: compile.sh FOLDER writes Sonavex.chm into the folder. Fails on broken links.
#
# The help compiler writes the absolute paths of the pages into the file. /proc/self/cwd is the same on every machine.
set -euo pipefail

sources="$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)"
target="$(cd "$1" && pwd)"
work="$(mktemp -d)"
trap 'rm -rf "$work"' EXIT

cp "$sources"/*.html "$sources"/Sonavex.hhp "$sources"/contents.hhc "$sources"/pictures/*.png "$work"
# Pictures are rendered at twice their displayed size, for screens of high density.
for drawing in "$sources"/pictures/*.svg; do
    rsvg-convert --zoom 2 "$drawing" --output "$work/$(basename "$drawing" .svg).png"
done

cd "$work"
if ! log="$(chmcmd /proc/self/cwd/Sonavex.hhp 2>&1)" || [[ $log == *Warning* || ! -s Sonavex.chm ]]; then
    echo "$log" >&2
    exit 1
fi

# The help window verifies this checksum before it opens the file. Other viewers ignore data behind the end.
printf '\nSonavex help file %s\n' "$(cksum <Sonavex.chm)" >>Sonavex.chm
mv Sonavex.chm "$target/Sonavex.chm"
