#!/bin/sh
# SPDX-License-Identifier: MIT
#
# Installs what this project needs and the machine lacks. The only place that names packages.
#
#   scripts/deps.sh terminal    what the program for terminals alone takes
#   scripts/deps.sh run         that, and what the window takes
#   scripts/deps.sh test        that, and what the tests, the linters and the benchmarks take
#   scripts/deps.sh package     what building takes (run), and what Debian packages and their check take
#
# When everything is there it says nothing, asks for nothing and calls no package manager.
set -eu

# Debian 12 packages. The window: AppKit is GNUstep's, its back end draws on the X server, its runtime
# packages hold the pasteboard server, the fonts are those it falls back on, xdg-open shows web pages, and
# curl asks the online service.
debian_terminal="clang cmake ninja-build libpugixml-dev libreadline-dev xdg-utils curl"
debian_run="$debian_terminal libgnustep-gui-dev gnustep-back0.29-cairo gnustep-gui-runtime gnustep-base-runtime
    libx11-dev fonts-dejavu-core"
debian_test="$debian_run g++ libclang-rt-dev llvm libgtest-dev libgmp-dev libmpfr-dev libbenchmark-dev pkg-config
    clang-format clang-tidy cppcheck valgrind git locales bc apcalc qalc units
    man-db groff-base zsh fish desktop-file-utils appstream shared-mime-info iproute2
    python3 python3-pexpect python3-pyte tmux xvfb openbox picom xdotool xclip x11-utils imagemagick"

debian_package="$debian_run git dpkg-dev debhelper lintian debootstrap python3 xvfb openbox x11-utils xdotool
    imagemagick"

# Homebrew formulae; the compiler and AppKit come with Apple's command line tools. Nobody has verified this
# list on a Mac yet.
brew_terminal="cmake ninja pugixml readline"
brew_run="$brew_terminal"
brew_test="$brew_run googletest gmp mpfr google-benchmark pkgconf llvm cppcheck git"

# Elsewhere only the presence of these programs is checked.
programs_terminal="clang++ cmake ninja curl"
programs_run="$programs_terminal gnustep-config"
programs_test="$programs_run units man zsh fish g++ llvm-cov llvm-symbolizer pkg-config clang-format clang-tidy cppcheck valgrind git
    python3 tmux Xvfb openbox picom xdotool xclip xprop import"

fail() {
    printf 'deps: %s\n' "$1" >&2
    exit 1
}

# Prints the Debian packages of its arguments that are not installed.
missing_debian() {
    for package in "$@"; do
        state=$(dpkg-query -W -f '${db:Status-Status}' "$package" 2>/dev/null || true)
        [ "$state" = installed ] || printf '%s ' "$package"
    done
}

install_debian() {
    missing=$(missing_debian "$@")
    [ -n "$missing" ] || return 0
    if [ "$(id -u)" -eq 0 ]; then
        as_root=
    elif command -v sudo >/dev/null 2>&1; then
        as_root=sudo
    else
        fail "missing packages: $missing- run this as root, or install sudo"
    fi
    printf 'deps: installing %s\n' "$missing"
    # The standard input belongs to the program that is run afterwards, so the package manager gets none.
    # One unreachable source need not matter; whether the packages can be had shows below.
    $as_root env DEBIAN_FRONTEND=noninteractive apt-get update -qq </dev/null ||
        printf 'deps: the package lists could not all be brought up to date\n' >&2
    # shellcheck disable=SC2086 # the list is meant to be split
    $as_root env DEBIAN_FRONTEND=noninteractive apt-get install -y -qq --no-install-recommends $missing </dev/null ||
        fail "could not install: $missing"
}

install_brew() {
    missing=
    for formula in "$@"; do
        brew list --versions "$formula" >/dev/null 2>&1 || missing="$missing $formula"
    done
    [ -n "$missing" ] || return 0
    printf 'deps: installing%s\n' "$missing"
    # shellcheck disable=SC2086 # the list is meant to be split
    brew install $missing </dev/null
}

check_programs() {
    missing=
    for program in "$@"; do
        command -v "$program" >/dev/null 2>&1 || missing="$missing $program"
    done
    [ -z "$missing" ] || fail "no package manager known here; please install:$missing"
}

group=${1:-test}
case $group in
terminal) debian=$debian_terminal brew=$brew_terminal programs=$programs_terminal ;;
run) debian=$debian_run brew=$brew_run programs=$programs_run ;;
test) debian=$debian_test brew=$brew_test programs=$programs_test ;;
package) debian=$debian_package brew=$brew_run programs="$programs_run dpkg-buildpackage dh lintian debootstrap" ;;
*) fail "unknown group '$group' (terminal, run, test or package)" ;;
esac

# shellcheck disable=SC2086 # the lists are meant to be split
if command -v apt-get >/dev/null 2>&1 && command -v dpkg-query >/dev/null 2>&1; then
    install_debian $debian
elif [ "$(uname -s)" = Darwin ]; then
    command -v brew >/dev/null 2>&1 || fail "Homebrew is needed: https://brew.sh"
    install_brew $brew
else
    check_programs $programs
fi
