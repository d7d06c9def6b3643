#!/bin/sh
# SPDX-License-Identifier: MIT
#
# Checks the sources without running them: license lines, format, clang-tidy, cppcheck.
#
#   scripts/lint.sh BUILD_DIR [JOBS] [SOURCES]
#
# BUILD_DIR is a configured build folder with a compile_commands.json. SOURCES is an extended regular
# expression: of the sources that it matches clang-tidy, which takes most of the time, reads those alone;
# without it, all.
set -eu

build=$1
jobs=${2:-2}
tidied=${3:-.}
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
# A header is included by its name alone.
twice=$(sources '^(qfloat|units|engine|store|web|terminal|app)/.*\.h$' | sed 's|.*/||' | tr '[:upper:]' '[:lower:]' | sort | uniq -d)
if [ -n "$twice" ]; then
    printf 'lint: several folders have a header of this name:\n%s\n' "$twice" >&2
    exit 1
fi

echo "lint: anonymous namespaces"
# This clang-tidy has no check for it.
if sources '^(qfloat|units|engine|store|web|terminal|app)/.*\.cpp$' | xargs grep -nE '^static ' >&2; then
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
        --suppress=passedByValue -Iqfloat -Iunits -Iengine -Istore -Iweb -Iterminal -Iapp
}

echo "lint: cppcheck"
sources '\.cpp$' | grep -v '^tests/' | check warning,performance,portability
sources '^tests/.*\.cpp$' | check warning,portability # tests need not be fast

echo "lint: clang-tidy"
# Only what the build compiles has flags to check it with; the largest files first, so that no core waits
# at the end. Of the tests in Objective-C++ the compiler's warnings are the check.
sources '\.(cpp|mm)$' | grep -v '^tests/.*\.mm$' | grep -E "$tidied" | xargs ls -S | while read -r file; do
    grep -q "/$file\"" "$build/compile_commands.json" && printf '%s\n' "$file"
done | xargs -P "$jobs" -n 1 clang-tidy -p "$build" --quiet --warnings-as-errors='*' 2>"$build/clang-tidy.log" || {
    cat "$build/clang-tidy.log" >&2
    exit 1
}
