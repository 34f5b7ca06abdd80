#!/usr/bin/env bash
# Runs in a new system: installs the package, tests it and removes it. try-package.sh PACKAGE.deb VERSION
set -euo pipefail

package="$1" version="$2"
limit=30  # seconds, for each wait

fail() {
    echo "try-package: $*" >&2
    exit 1
}

# wait_for COMMAND...: waits until the command succeeds; fails after the limit.
wait_for() {
    local end=$((SECONDS + limit))
    until "$@" >/dev/null 2>&1; do
        ((SECONDS < end)) || fail "timeout: $*"
        sleep 0.2
    done
}

install_package() {
    apt-get -qq update
    apt-get -qq --yes --no-install-recommends install "$package" xvfb xdotool fonts-dejavu-core >/tmp/log 2>&1 ||
        { tail /tmp/log >&2; fail "the package does not install"; }
}

measures() {
    [[ $(sonavex-measure --version) == *"$version"* ]] || fail "sonavex-measure has another version"
    local reading
    reading="$(timeout "$limit" sonavex-measure run --tone sine:1000 --json | tail -n 1)"
    echo "$reading"
    [[ $reading == *'"frequency":"1000"'* && $reading == *'"locked":true'* && $reading == *'"simulated":true'* ]] ||
        fail "the reading is not that of a locked tone of 1000 Hz"
}

screen_answers() { xdotool getdisplaygeometry; }
# window NAME: prints the visible window whose title matches.
window() { xdotool search --onlyvisible --name "$1"; }

opens_window() {
    Xvfb :7 -screen 0 1280x1024x24 >/dev/null 2>&1 &
    export DISPLAY=:7 XDG_RUNTIME_DIR=/tmp/runtime
    mkdir -m 700 "$XDG_RUNTIME_DIR"
    wait_for screen_answers
    sonavex &
    local program=$!
    wait_for window '^Sonavex & Function Generator'
    xdotool getwindowname "$(window '^Sonavex & Function Generator')"
    # F1 opens the installed help file.
    xdotool windowfocus --sync "$(window '^Sonavex & Function Generator')" key F1
    wait_for window '^Sonavex Help$'
    kill -0 "$program" || fail "the program ended unexpectedly"
    kill "$program"
}

leaves_nothing() {
    apt-get -qq --yes purge sonavex >/dev/null 2>&1
    local rest
    rest="$(find /usr /etc /var/lib -iname '*sonavex*' -not -path '/var/lib/dpkg/*')"
    [[ -z $rest ]] || fail "files remain after the removal: $rest"
}

export SONAVEX_SOUND=simulated
install_package
measures
opens_window
leaves_nothing
