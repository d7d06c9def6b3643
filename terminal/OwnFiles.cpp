// SPDX-License-Identifier: MIT
#include "OwnFiles.h"

#include "Calculator.h"
#include "DefinitionsFile.h"
#include "EntryText.h"
#include "FileKeeping.h"
#include "Folder.h"
#include "SettingsFile.h"
#include "ShippedText.h"

#include <sstream>

namespace {

// What entries in a file leave behind besides definitions, and puts it back.
class EntryState {
public:
    explicit EntryState(ZqCalculator& engine)
        : calc(engine), settings(engine), answer(engine.answer), interruptCheck(engine.interruptCheck) {
        qmov(*calc.vars.first->value, ans);
        calc.interruptCheck = nullptr;
    }
    ~EntryState() {
        static_cast<EntrySettings&>(calc) = settings;
        calc.interruptCheck = interruptCheck;
        calc.answer = answer;
        calc.entryCount = 0;
        calc.status = STATUS_RESULT;
        qmov(ans, *calc.vars.first->value);
    }
    EntryState(const EntryState&) = delete;
    EntryState& operator=(const EntryState&) = delete;

private:
    ZqCalculator& calc;
    const EntrySettings settings;
    const Answer answer;
    bool (*const interruptCheck)();
    qfloat ans = {};
};

FileReading lost(const std::string& path, System& system) {
    struct stat info;
    if (system.Status(path.c_str(), info) != 0) return {};
    return {true, path + ": cannot be read"};
}

// Carries out the lines of a text. Returns the errors, each with its place.
std::string takeEntries(ZqCalculator& calc, const std::string& name, const std::string& text) {
    const EntryState state(calc);
    static_cast<EntrySettings&>(calc) = standardSettings();
    calc.histStack = false;
    std::string errors;
    std::istringstream lines(text);
    std::string line;
    for (size_t number = 1; std::getline(lines, line); ++number) {
        if (!line.empty() && line.back() == '\r') line.pop_back();
        if (isBlankLine(line)) continue;
        std::string_view error = faultMessage(checkEntry(line));
        if (error.empty() && calc.ProcessEntry(line.c_str(), false) == STATUS_ERROR) error = calc.message;
        if (error.empty()) continue;
        error = error.substr(0, error.find('\n'));
        errors += (errors.empty() ? "" : "\n") + name + ":" + std::to_string(number) + ": ";
        errors += error;
    }
    return errors;
}

} // namespace

FileReading takeOwnDefinitions(ZqCalculator& calc, System& system) {
    const std::string path = definitionsPath(ownFolder());
    const EntryState state(calc);
    const DefinitionsRead read = readDefinitions(calc, path, system);
    calc.history.Clear();
    if (!read.opened) return lost(path, system);
    if (read.unread > 0) return {false, path + ": some of it takes too long to read"};
    if (read.damaged) return {false, path + ": not all of it could be read"};
    return {};
}

FileReading takeOwnSettings(ZqCalculator& calc, System& system) {
    const std::string path = settingsPath(ownFolder());
    std::string bytes;
    if (!readWholeFile(path, bytes, system)) return lost(path, system);
    KeptSettings kept;
    if (!readSettings(bytes, kept)) return {true, path + ": cannot be read"};
    for (const Setting& setting : SETTINGS) {
        const auto number = kept.numbers.find(setting.key);
        if (number != kept.numbers.end()) setting.Apply(number->second, calc);
    }
    return {};
}

FileReading takeInitFile(ZqCalculator& calc, System& system) {
    const std::string path = configFolder() + "/init";
    std::string text;
    if (!readWholeFile(path, text, system)) return lost(path, system);
    return {false, takeEntries(calc, path, text)};
}

void takeShipped(ZqCalculator& calc, std::string_view name) {
    for (const ShippedText& shipped : SHIPPED_TEXTS) {
        if (name == shipped.name) takeEntries(calc, shipped.name, shipped.text);
    }
}

std::string_view shippedText(std::string_view name) {
    for (const ShippedText& shipped : SHIPPED_TEXTS) {
        if (name == shipped.name) return shipped.text;
    }
    return {};
}

std::vector<std::string_view> shippedNames() {
    std::vector<std::string_view> names;
    for (const ShippedText& shipped : SHIPPED_TEXTS) names.emplace_back(shipped.name);
    return names;
}
