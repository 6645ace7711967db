#!/usr/bin/env bash
# Shows tvsettings at work on the sample products: the tree, a value set at the user level,
# the user file that now holds it, a second run that reads it back, and refused values with
# their messages. Everything happens in a temporary folder (a copy of examples/ and a fresh
# preference folder) that is removed at the end; neither the repository nor the home folder is
# written.
#
#   scripts/demo.sh BUILD_DIR
set -euo pipefail

if [ $# -ne 1 ]; then
    echo "usage: $0 BUILD_DIR" >&2
    exit 1
fi
repo="$(cd "$(dirname "$0")/.." && pwd)"
tool="$(cd "$1" && pwd)/bin/tvsettings"
if [ ! -x "$tool" ]; then
    echo "no tvsettings in $1/bin: build the tvsettings target first" >&2
    exit 1
fi

work="$(mktemp -d "${TMPDIR:-/tmp}/tvsettings-demo.XXXXXX")"
trap 'rm -rf "$work"' EXIT

# The factory files of the samples, and a fresh preference folder that starts with the
# samples' user files: the user level of this demo.
cp -r "$repo/examples/factory" "$work/factory"
mkdir -p "$work/prefs" "$work/home"
cp "$repo/examples/user/"*.settings "$work/prefs/"

unset SETTINGS_USERDIR SETTINGS_WORKGROUPDIR
export SETTINGS_FACTORYDIR="$work/factory"
export TOLVAN_PREFDIR="$work/prefs"
export HOME="$work/home" XDG_CONFIG_HOME="$work/home/.config" XDG_DATA_HOME="$work/home/.local/share"

step() {
    printf '\n== %s\n' "$1"
}

# Runs tvsettings with the command shown first; a failing run shows its exit code and the
# demo goes on.
tvsettings() {
    printf '$ tvsettings %s\n' "$*"
    local status=0
    "$tool" "$@" 2>&1 || status=$?
    if [ "$status" -ne 0 ]; then
        printf '(exit code %d)\n' "$status"
    fi
}

step "Where the settings come from"
tvsettings dirs

step "The products and their files"
tvsettings products

step "The editor's settings: type, value and the level it comes from"
tvsettings tree editor

step "Everything about one key"
tvsettings describe editor.tabWidth

step "Set editor.tabWidth to 8 at the user level"
tvsettings set editor.tabWidth 8

step "The user file now holds the value"
printf '$ grep -A4 %s %s\n' "'name=\"tabWidth\"'" "prefs/editor.settings"
grep -A4 'name="tabWidth"' "$work/prefs/editor.settings"

step "A second run reads it back"
tvsettings get editor.tabWidth
tvsettings get editor.tabWidth --json

step "A refused value: the factory allows tabWidth 1 to 16"
tvsettings set editor.tabWidth 99

step "A refused value: not one of the solver's methods"
tvsettings set solver.method quick

step "A refused value: the validator of fontSize stops at 30"
tvsettings set editor.fontSize 40

step "The refusals changed nothing"
tvsettings get editor.tabWidth
