# What the scripts that drive the real program share; to be sourced, from the project's folder.
# shellcheck shell=bash

standin=build/release/bin/tessaport-standin

# Where a failure leaves a picture of the desktop; a script sets it to a folder of its own.
trial=$PWD/build/trial
# The pixels of one unit of the program's windows.
scale=1

build_for_trial() {
    script/bootstrap build run
    echo "Building the program and the stand-in service in build/release"
    cmake --preset release >/dev/null
    cmake --build build/release --target tessaport-monitor tessaport-standin
}

step() { echo "[$(date +%T)] $*"; }

fail() {
    echo "${0##*/}: $*" >&2
    if import -window root "$trial/failed.png" 2>/dev/null; then
        echo "${0##*/}: the desktop at that moment: $trial/failed.png" >&2
    fi
    exit 1
}

# A condition, tried four times a second for so many seconds.
wait_for() {
    local seconds=$1 what=$2
    shift 2
    for _ in $(seq $((seconds * 4))); do
        if "$@" >/dev/null 2>&1; then return 0; fi
        sleep 0.25
    done
    fail "waited $seconds seconds in vain for: $what"
}

# Starts the stand-in with its store in a folder; further arguments are its own. The caller ends
# the process standin_pid.
start_standin() {
    local store=$1
    shift
    mkdir -p "$store"
    $standin --store "$store" --quiet "$@" >"$store/standin.log" 2>&1 &
    standin_pid=$!
    for _ in $(seq 100); do
        grep -q https "$store/standin.log" && return 0
        kill -0 $standin_pid 2>/dev/null || break
        sleep 0.1
    done
    echo "The stand-in service does not start:" >&2
    cat "$store/standin.log" >&2
    exit 1
}

# The id of the visible window with a title; it fails where there is none.
window() {
    local found
    # A window that goes away during the search ends it with an error.
    for _ in 1 2 3; do
        if found=$(xdotool search --onlyvisible --name "^$1\$" 2>/dev/null); then
            tail -n 1 <<<"$found"
            return 0
        fi
    done
    return 1
}

no_window() { ! window "$1"; }

# Moves the real pointer to a place in a window and presses the left button there.
click() {
    xdotool mousemove --window "$(window "$1")" $(($2 * scale)) $(($3 * scale))
    sleep 0.3
    xdotool click 1
}

sign_in() {
    wait_for 20 "the sign-in window" window Авторизация
    sleep 0.5
    xdotool type --delay 40 demo@example.com
    xdotool key Tab
    xdotool type --delay 40 demo
}
