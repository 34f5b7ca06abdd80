# shellcheck shell=bash
# Sourced by scripts that measure on a private sound server. Sets `work` (a temporary folder) and `pids` (processes);
# both are removed when the script exits. Defines await and start_private_sound.

work="$(mktemp -d)"
pids=()
finish() {
    for pid in "${pids[@]}"; do kill "$pid" 2>/dev/null || true; done
    wait 2>/dev/null || true
    rm -rf "$work"
}
trap finish EXIT

# await WHAT COMMAND...: waits until the command succeeds, at most ten seconds.
await() {
    local what="$1" i
    shift
    for ((i = 0; i < 100; ++i)); do
        if "$@" >/dev/null 2>&1; then return; fi
        sleep 0.1
    done
    echo "The $what did not start." >&2
    exit 1
}

# start_private_sound FORMAT: starts a private PulseAudio with one sink at 48000 Hz, whose monitor returns what is
# played. FORMAT is that of its samples, for example s24le. Hides the user's configuration from the programs.
start_private_sound() {
    export HOME="$work" XDG_CONFIG_HOME="$work" XDG_RUNTIME_DIR="$work" LC_ALL=C.UTF-8
    export PULSE_SERVER="unix:$work/native"
    unset SONAVEX_SOUND SONAVEX_OS_MAJOR
    pulseaudio -n --daemonize=no --exit-idle-time=-1 --use-pid-file=no \
        -L "module-native-protocol-unix socket=$work/native auth-anonymous=1" \
        -L "module-null-sink sink_name=card rate=48000 format=$1 norewinds=1" >"$work/pulse.log" 2>&1 &
    pids+=($!)
    await "sound server" pactl info
}
