#!/usr/bin/env bash
# Runs in a new system: builds the sources in FOLDER, measures with ./run and tests with ./test. try-source.sh FOLDER
set -euo pipefail
cd "$1"

fail() {
    echo "try-source: $*" >&2
    exit 1
}

# Without a display and without a sound server, ./run measures on the simulated card.
measures() {
    local readings
    readings="$(./run)"
    echo "$readings"
    [[ $readings == *"SIMULATED sound card"* && $readings == *"Frequency : 1000 Hz"* ]] ||
        fail "./run does not measure a tone of 1000 Hz"
}

apt-get -qq update
measures
echo "./run took $SECONDS s, with the installation of the packages"
SECONDS=0
./test
echo "./test took $SECONDS s"
