// SPDX-License-Identifier: MIT
//
// usage: preview_bench
//
// Prints what the preview of a line costs the engine at each key press: milliseconds of processor time for
// lines of up to 10, 100 and 1,000 characters. An empty column: the line is longer.
#include "lines.h"

#include <cstdio>
#include <unistd.h>

int main() {
    // The engine writes trace lines to the standard output.
    FILE* const table = fdopen(dup(STDOUT_FILENO), "w");
    if (!table || !freopen("/dev/null", "w", stdout)) return 1;
    static ZqCalculator calc;
    calc.InitializeFunctionsAndVars();
    preview::define(calc);
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
