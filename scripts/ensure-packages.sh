#!/usr/bin/env bash
# Installs the Debian packages the build needs, skipping those dpkg already knows as installed.
# Sourced by run.sh and test.sh; needs root (or sudo) only when something is missing.
set -euo pipefail

SETTINGSCORE_PACKAGES=(
    g++ cmake ninja-build make
    libboost-dev libboost-thread-dev libboost-filesystem-dev libboost-system-dev
    libboost-log-dev libboost-date-time-dev libboost-locale-dev
    libtbb-dev libxerces-c-dev
    libgtest-dev libgmock-dev libbenchmark-dev
    libcli11-dev nlohmann-json3-dev
)

ensure_packages() {
    local missing=()
    local pkg
    for pkg in "${SETTINGSCORE_PACKAGES[@]}" "$@"; do
        if ! dpkg -s "$pkg" 2>/dev/null | grep -q '^Status: install ok installed'; then
            missing+=("$pkg")
        fi
    done
    if [ ${#missing[@]} -eq 0 ]; then
        return 0
    fi
    echo "Installing: ${missing[*]}"
    local sudo=""
    if [ "$(id -u)" -ne 0 ]; then
        sudo="sudo"
    fi
    export DEBIAN_FRONTEND=noninteractive
    $sudo apt-get update -qq
    $sudo apt-get install -y --no-install-recommends "${missing[@]}"
}
