// SPDX-License-Identifier: MIT
//
// usage: preview_bench [LINE]
//
// Prints what the preview of a line costs the engine at each key press: milliseconds of processor time for
// lines of up to 10, 100 and 1,000 characters. An empty column: the line is longer. With a line's number,
// from 0, it only has two previews of it with 1,000 characters, for whoever counts instructions.
#include "lines.h"

#include <cstdio>
#include <cstdlib>
#include <unistd.h>

__attribute__((noinline)) static void onePreview(ZqCalculator& calc, const std::string& text) {
    calc.ProcessEntry(text.c_str(), true);
}

int main(int count, char** arguments) {
    // The engine writes trace lines to the standard output.
    FILE* const table = fdopen(dup(STDOUT_FILENO), "w");
    if (!table || !freopen("/dev/null", "w", stdout)) return 1;
    static ZqCalculator calc;
    calc.InitializeFunctionsAndVars();
    preview::define(calc);
    if (count > 1) {
        const size_t number = strtoul(arguments[1], nullptr, 10);
        const std::string text = preview::textOf(preview::lines().at(number), 1000);
        for (int i = 0; i < 2; ++i) onePreview(calc, text);
        return 0;
    }
    fprintf(table, "%-26s %10s %10s %10s   (ms; the limit is 5)\n", "preview of", "10 chars", "100", "1000");
    for (const preview::Line& line : preview::lines()) {
        fprintf(table, "%-26s", line.name.c_str());
        for (size_t length : {10U, 100U, 1000U}) {
            const std::string text = preview::textOf(line, length);
            const double time = preview::median([] {}, [&] { calc.ProcessEntry(text.c_str(), true); });
            if (text.empty())
                fprintf(table, " %10s", "");
            else
                fprintf(table, " %10.3f%s", time, time > 5 ? "!" : "");
        }
        fprintf(table, "\n");
    }
    return fclose(table) == 0 ? 0 : 1;
}
