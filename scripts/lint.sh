#!/bin/sh
# SPDX-License-Identifier: MIT
#
# Checks the sources without running them: license lines, format, clang-tidy, cppcheck.
#
#   scripts/lint.sh BUILD_DIR [JOBS]
#
# BUILD_DIR is the configured folder of a unity build, with a compile_commands.json.
set -eu

build=$1
jobs=${2:-2}
cd "$(dirname "$0")/.."

# Every tracked file, or every file where there is no repository (an unpacked archive).
all="$build/lint-files.txt"
git -c safe.directory='*' ls-files >"$all" 2>/dev/null || find . -path ./build -prune -o -type f -print | sed 's|^\./||' >"$all"

# Those whose name matches the extended regular expression $1; there must be some.
sources() {
    grep -E "$1" "$all" || {
        echo "lint: no file matches $1" >&2
        exit 1
    }
}

echo "lint: license lines"
unlicensed=$(sources '\.(cpp|mm|h|sh|py)$|(^|/)(CMakeLists\.txt|Makefile)$|^\.ci/run$' |
    xargs grep -L 'SPDX-License-Identifier: MIT' || true)
if [ -n "$unlicensed" ]; then
    printf 'lint: no SPDX line in:\n%s\n' "$unlicensed" >&2
    exit 1
fi

echo "lint: names of headers"
# A header is included by its name alone, those of library/ with the folder in which they are installed.
twice=$(sources '^(qfloat|units|engine|store|web|terminal|app)/.*\.h$' | sed 's|.*/||' | tr '[:upper:]' '[:lower:]' | sort | uniq -d)
if [ -n "$twice" ]; then
    printf 'lint: several folders have a header of this name:\n%s\n' "$twice" >&2
    exit 1
fi

echo "lint: docs/architecture.md"
# It names the home of everything. Left out is qfloat/, whose routines qfloat.h describes.
unnamed=$(sources '^(units|engine|library|store|web|terminal)/.*\.h$|^app/.*\.(h|mm)$' | sed 's|.*[/+]||; s|\.[a-z]*$||' | sort -u |
    while read -r name; do grep -qwF -e "$name" docs/architecture.md || echo "$name"; done)
if [ -n "$unnamed" ]; then
    printf 'lint: docs/architecture.md does not name:\n%s\n' "$unnamed" >&2
    exit 1
fi

echo "lint: anonymous namespaces"
# This clang-tidy has no check for it.
if sources '^(qfloat|units|engine|library|store|web|terminal|app)/.*\.cpp$' | xargs grep -nE '^static ' >&2; then
    echo "lint: it goes into an anonymous namespace, without static" >&2
    exit 1
fi

echo "lint: clang-format"
sources '\.(cpp|mm|h)$' | xargs clang-format --dry-run -Werror

# Of the window it reads what is plain C++: it knows no Objective-C.
# $1: the kinds of findings; the names of the files come on standard input.
# clang-tidy judges parameters passed by value better. cppcheck 2.10 miscounts a std::array whose size is a
# sum of constants; the sanitizers watch the bounds.
check() {
    xargs cppcheck --quiet -j "$jobs" --std=c++17 --language=c++ --error-exitcode=1 --enable="$1" \
        --inline-suppr --library=googletest --suppress=missingIncludeSystem --suppress=containerOutOfBounds \
        --suppress=passedByValue -Iqfloat -Iunits -Iengine -Ilibrary -Istore -Iweb -Iterminal -Iapp
}

echo "lint: cppcheck"
sources '\.cpp$' | grep -v '^tests/' | check warning,performance,portability
sources '^tests/.*\.cpp$' | check warning,portability # tests need not be fast

echo "lint: clang-tidy"
# It reads the sources of a folder as one, which takes a quarter of the time. To the analyzer they are headers
# then; of the program it is told to read those too. In the tests it would walk every path through every EXPECT,
# for minutes and without a finding: the sanitizers run over the same code. Of the tests it reads the names, the
# sizes and the mistakes that are made most, and nothing of those in Objective-C++.
# $@: more arguments; the names of the files come on standard input.
tidy() {
    xargs -P "$jobs" -n 1 clang-tidy -p "$build" --quiet --warnings-as-errors='*' "$@" 2>"$build/clang-tidy.log" || {
        cat "$build/clang-tidy.log" >&2
        exit 1
    }
}

checks_of_tests='-*,readability-identifier-naming,readability-function-size,readability-duplicate-include'
checks_of_tests="$checks_of_tests,bugprone-use-after-move,bugprone-branch-clone,bugprone-sizeof-expression"
compiled="$build/compiled-files.txt"
sed -n 's/.*"file": "\(.*\)".*/\1/p' "$build/compile_commands.json" | sed "s|^$PWD/||" | sort -u >"$compiled"
grep -Ev "^($build/)?tests/" "$compiled" | tidy --extra-arg=-Xclang --extra-arg=-analyzer-opt-analyze-headers
grep -E "^($build/)?tests/.*\.c" "$compiled" | tidy --checks="$checks_of_tests"
