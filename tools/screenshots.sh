#!/usr/bin/env bash
# Renders every window in its states, light and dark, at 100 %, 125 % and 200 % scale, into build/screenshots/*.png.
# Needs no display and no sound.
set -euo pipefail
# shellcheck source=tools/build.sh
source "$(dirname "${BASH_SOURCE[0]}")/build.sh"

build_preset dev sonavex-screenshots sonavex-dialog-screenshots
mkdir -p "$root/build/screenshots"
for scale in 1 1.25 2; do
    for program in sonavex-screenshots sonavex-dialog-screenshots; do
        QT_SCALE_FACTOR=$scale QT_LOGGING_RULES='*.warning=false' \
            "$root/build/dev/bin/$program" "$root/build/screenshots"
    done
done
echo "$root/build/screenshots"
