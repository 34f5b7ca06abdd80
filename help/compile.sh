#!/usr/bin/env bash
# Compiles the help file: compile.sh FOLDER puts Sonavex.chm into the folder. Links that lead nowhere fail.
#
# The compiler writes the full path of each numbered topic's page into the result. It is given its project
# by a path that is the same on every machine, so nothing of this machine's folders gets into the file.
set -euo pipefail

sources="$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)"
target="$(cd "$1" && pwd)"
work="$(mktemp -d)"
trap 'rm -rf "$work"' EXIT

cp "$sources"/*.html "$sources"/Sonavex.hhp "$sources"/contents.hhc "$sources"/pictures/*.png "$work"
# Pictures have twice the dots of the size that they are shown in, for screens of any density.
for drawing in "$sources"/pictures/*.svg; do
    rsvg-convert --zoom 2 "$drawing" --output "$work/$(basename "$drawing" .svg).png"
done

cd "$work"
if ! log="$(chmcmd /proc/self/cwd/Sonavex.hhp 2>&1)" || [[ $log == *Warning* || ! -s Sonavex.chm ]]; then
    echo "$log" >&2
    exit 1
fi

# A last line by which the reader sees that nothing is damaged. Other readers do not look behind the end.
printf '\nSonavex help file %s\n' "$(cksum <Sonavex.chm)" >>Sonavex.chm
mv Sonavex.chm "$target/Sonavex.chm"
