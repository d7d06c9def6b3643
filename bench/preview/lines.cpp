// SPDX-License-Identifier: MIT
#include "lines.h"

#include <algorithm>
#include <ctime>

namespace preview {

const std::vector<Line>& lines() {
    static const std::vector<Line> all = {
        {"sum", "1", "+2"},
        {"sum of amounts", "19.95", "+124.50"},
        {"products and brackets", "1", "*(2+3)/4"},
        {"powers", "1", "+9^.1"},
        {"sines", "1", "+sin(30)"},
        {"tangents of huge angles", "1", "+tan(1e99)"},
        {"logarithms", "1", "+log3(7)"},
        {"factorials", "1", "+1000!"},
        {"remainders", "1", "+1e9860%1e-9000"},
        {"sums in a function", "sqrt(2", "+sqrt(3)", ")"},
        {"variables of 3,000", "1", "+v2999"},
        {"own function", "1", "+mod(7,3)"},
        {"own function, long body", "1", "+wide(1)"},
        {"own functions that double", "f25(1)"},
        {"the same, with powers", "p25(1)"},
        {"recursion", "again(1)"},
        {"recursion, long body", "deep(1)"},
        {"statements", "1", ";2/3"},
        {"unit conversion", "5 km->mi"},
        {"units of many exponents", "5 s^1000->s^1000"},
        {"units beyond a preview", "5 m", "*N^999", "->m"},
        {"erroneous", "1", "+(2"},
    };
    return all;
}

static void chain(ZqCalculator& calc, const std::string& name, const std::string& leaf) {
    calc.ProcessEntry((name + "1(x)=" + leaf).c_str(), false);
    for (int i = 2; i <= 25; ++i) {
        const std::string before = name + std::to_string(i - 1) + "(x)";
        std::string text = name;
        text.append(std::to_string(i)).append("(x)=").append(before).append("+").append(before);
        calc.ProcessEntry(text.c_str(), false);
    }
}

static std::string times(const std::string& text, size_t number) {
    std::string all;
    for (size_t i = 0; i < number; ++i) all += text;
    return all;
}

void define(ZqCalculator& calc) {
    calc.ProcessEntry(("wide(x)=x" + times("+x", 990)).c_str(), false);
    calc.ProcessEntry("again(x)=again(x)+again(x)", false);
    calc.ProcessEntry(("deep(x)=x" + times("+x", 4900) + "+deep(x)").c_str(), false);
    chain(calc, "f", "x+1");
    chain(calc, "p", "x^.3");
    for (int i = 0; i < 3000; ++i) {
        calc.ProcessEntry(("v" + std::to_string(i) + "=" + std::to_string(i)).c_str(), false);
    }
}

std::string textOf(const Line& line, size_t length) {
    if (line.begin.size() + line.repeated.size() + line.end.size() > length) return "";
    std::string text = line.begin;
    while (!line.repeated.empty() && text.size() + line.repeated.size() + line.end.size() <= length) {
        text += line.repeated;
    }
    return text + line.end;
}

static double processorTime() {
    timespec time = {};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) * 1e3 + static_cast<double>(time.tv_nsec) / 1e6;
}

double median(const std::function<void()>& prepare, const std::function<void()>& run) {
    std::vector<double> runs;
    for (int i = 0; i < 15; ++i) {
        prepare();
        const double begin = processorTime();
        run();
        runs.push_back(processorTime() - begin);
    }
    std::nth_element(runs.begin(), runs.begin() + 7, runs.end());
    return runs[7];
}

} // namespace preview
