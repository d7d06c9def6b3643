#!/bin/sh
# SPDX-License-Identifier: MIT
#
# Runs a compiler of Objective-C++, from a folder below the sources. The runtime keeps the name of each source file in the
# program, with the folder as the first option that leads there spells it; relative ones are the same wherever the
# sources are.
#
#   packaging/relative.sh SOURCES COMMAND [ARGUMENT...]
set -eu
sources=$1
shift
for argument; do
    shift
    case $argument in
    "$sources"/*) argument=..${argument#"$sources"} ;;
    -I"$sources"/*) argument=-I..${argument#"-I$sources"} ;;
    esac
    set -- "$@" "$argument"
done
exec "$@"
