#!/usr/bin/env bash
# SPDX-License-Identifier: GPL-3.0-or-later
# Runs a program in a D-Bus session of its own with an unlocked keyring, in a folder that goes away afterwards.
# ORVANE_KEYRING_PID tells the program which process the keyring is.
set -euo pipefail
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
mkdir -m 700 "$folder/run"
export XDG_DATA_HOME="$folder/data" XDG_CONFIG_HOME="$folder/config" XDG_CACHE_HOME="$folder/cache"
export XDG_RUNTIME_DIR="$folder/run" HOME="$folder"
unset DISPLAY WAYLAND_DISPLAY
dbus-run-session -- bash -c '
    printf pw | gnome-keyring-daemon --unlock --components=secrets >/dev/null 2>&1
    # It takes its name on the bus a little later than it returns.
    for try in $(seq 500); do
        ORVANE_KEYRING_PID=$(dbus-send --session --print-reply=literal --dest=org.freedesktop.DBus / \
            org.freedesktop.DBus.GetConnectionUnixProcessID string:org.freedesktop.secrets 2>/dev/null |
            sed "s/.*uint32 *//") && [ -n "$ORVANE_KEYRING_PID" ] && break
        sleep 0.02
    done
    export ORVANE_KEYRING_PID
    "$@"' with-keyring "$@"
