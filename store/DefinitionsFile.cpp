// SPDX-License-Identifier: MIT
#include "DefinitionsFile.h"

#include "Calculator.h"
#include "DefinitionRecords.h"
#include "FileKeeping.h"
#include "Helpers_String.h"
#include "units.h"

#include <algorithm>
#include <cmath>
#include <vector>

using Kind = DefinitionRecord::Kind;

namespace {

// --- Writing ---

// Whether the definition, read now, makes the unit that it once made. A unit of its own stands for itself.
bool saysWhatItIs(const DefinitionRecord& unit) {
    if (unit.body == primitivestring) return true;
    units_clear_exception();
    const double factor = units_convert(std::string(unit.name).c_str(), std::string(unit.body).c_str());
    return !units_check_exception() && std::abs(factor - 1) < 1e-12;
}

std::string unitLine(const DefinitionRecord& unit, bool usesElsewhere) {
    std::string line(unit.line);
    const std::string name(unit.name);
    if (unit.kind != Kind::Unit || (saysWhatItIs(unit) && !usesElsewhere)) return line;
    const std::string byValue = units_definition(name.c_str());
    return byValue.empty() ? line : "unit " + name + "=" + byValue;
}

std::string unitLines(const ZqCalculator& calc, const std::set<std::string>& elsewhere) {
    std::vector<DefinitionRecord> units, others;
    std::vector<bool> isElsewhere;
    for (const node* unit = calc.unitDefs.first; unit; unit = unit->next) {
        units.push_back(recordOf(unit->text));
        isElsewhere.push_back(elsewhere.count(std::string(unit->text) + '\n') > 0);
        if (isElsewhere.back()) others.push_back(units.back());
    }
    const std::vector<bool> usesElsewhere = usesAny(units, others);
    std::string text;
    for (size_t i = 0; i < units.size(); ++i)
        text += unitLine(units[i], usesElsewhere[i] && !isElsewhere[i]) + '\n';
    units_clear_exception();
    return text;
}

std::string functionLines() {
    std::string text;
    for (const Function* function = funcs.Get(0); function; function = funcs.GetNext()) {
        if (function->body) text += function->ToString() + '\n';
    }
    return text;
}

std::string variableLines(const ZqCalculator& calc) {
    std::string text;
    for (const node* variable = calc.vars.first; variable; variable = variable->next) {
        if (!variable->value || (*variable->value)[1] >= OVERFLOW_EXPONENT) continue;
        text += std::string(variable->text) + '=' + plainNumber(*variable->value) + '\n';
    }
    return text;
}

// By number, so that the position at which the history is browsed stays.
std::string historyLines(const CHistory& history) {
    std::string text;
    for (int32_t k = history.count; k >= 1; --k) {
        std::string line = history.GetHistoryStr(k);
        std::replace_if(line.begin(), line.end(), isControl, ' ');
        text += line + '\n';
    }
    return text;
}

// --- Reading ---

// Sets the engine up for reading. What an entry leaves in it is put back by the steps in `undo`.
void prepare(ZqCalculator& calc, Undo& undo) {
    undo.Begin();
    undo.Add([&calc] {
        calc.terms.Clear();
        calc.target = calc.vars.first;
        units_clear_exception();
    });
    undo.Keep<EntrySettings>(calc);
    undo.Keep<Outcome>(calc);
    undo.Keep(calc.answer);
    undo.Keep(calc.fullEntry);
    undo.Keep(calc.interruptCheck);
    undo.Keep(merror);
    calc.european = calc.tenKey = false;
    calc.fullEntry = true;
    calc.interruptCheck = nullptr; // an interrupted line would be a lost one
}

enum class Reading { Refused, Taken, TooLong };

// Takes definitions into a calculator.
class Reader {
public:
    explicit Reader(ZqCalculator& into) : calc(into) {}

    // What became of each record. What one that takes too long would have defined is not known, so whatever
    // is refused then may need it and counts as such, too.
    std::vector<Reading> Take(const std::vector<DefinitionRecord>& records) {
        // A person may have any number of definitions: the limit is for evaluations and for long lines.
        uint64_t limit = WorkLimit::READ_FILE;
        for (const DefinitionRecord& record : records) {
            if (!IsLong(record)) limit += CostOf(record);
        }
        budget.Begin(limit);
        std::vector<Reading> readings(records.size(), Reading::Refused);
        for (const size_t position : orderOfReading(records)) readings[position] = TakeOne(records[position]);
        if (std::count(readings.begin(), readings.end(), Reading::TooLong) == 0) return readings;
        for (size_t i = 0; i < records.size(); ++i) {
            if (readings[i] == Reading::Refused && records[i].kind != Kind::Nothing)
                readings[i] = Reading::TooLong;
        }
        return readings;
    }

private:
    // For its length it is no entry.
    static bool IsLong(const DefinitionRecord& record) { return record.statement.size() >= TEXT_SIZE; }

    // What reading it takes besides its evaluation.
    static uint64_t CostOf(const DefinitionRecord& record) {
        const bool isFunction = record.kind == Kind::Function;
        return Cost::READ_LINE + record.statement.size() *
                                     (isFunction ? Cost::CHARACTER_OF_FUNCTION : Cost::CHARACTER_OF_VALUE);
    }

    bool IsKnown(const DefinitionRecord& record) const {
        if (record.kind == Kind::Unit) {
            const node* const unit = calc.UnitExists(std::string(record.name).c_str());
            return unit && record.statement == unit->text;
        }
        const node* const variable = calc.VariableExists(std::string(record.name).c_str());
        return variable && variable->value && record.body == plainNumber(*variable->value);
    }

    Reading TakeOne(const DefinitionRecord& record) {
        const bool isFunction = record.kind == Kind::Function;
        const uint64_t cost = CostOf(record);
        if (cost > budget.Left() || (IsLong(record) && !isFunction)) return Reading::TooLong;
        budget.Spend(cost);
        if (isFunction) {
            const int state = calc.DefineFunction(std::string(record.statement).c_str(), true);
            return state == STATUS_ERROR ? Reading::Refused : Reading::Taken;
        }
        return IsKnown(record) ? Reading::Taken : Evaluate(record);
    }

    // A variable may have the name of a command, which would read what follows a blank.
    Reading Evaluate(const DefinitionRecord& record) {
        const uint64_t allowed = std::min(budget.Left(), WorkLimit::READ_DEFINITION);
        uint64_t work = allowed;
        std::string statement(record.statement);
        if (record.kind == Kind::Variable) (statement = record.name).append("=").append(record.body);
        const int state = calc.CalculateWithin(statement.c_str(), work);
        budget.Spend(allowed - work);
        if (state != STATUS_ERROR) return Reading::Taken;
        return work == 0 ? Reading::TooLong : Reading::Refused;
    }

    ZqCalculator& calc;
    WorkBudget budget;
};

// Whether the history was read completely.
bool takeHistory(CHistory& history, const std::vector<std::string_view>& lines) {
    bool isWhole = true;
    for (const std::string_view shown : lines) {
        std::string line(shown);
        if (std::any_of(line.begin(), line.end(), isControl)) isWhole = false;
        history.FilteredInsertNew(line.data(), true);
    }
    return isWhole;
}

void takeText(ZqCalculator& calc, const DefinitionsText& text, DefinitionsRead& result) {
    const std::vector<Reading> readings = Reader(calc).Take(text.records);
    result.damaged = !takeHistory(calc.history, text.history) || !text.isFramed;
    for (size_t i = 0; i < readings.size(); ++i) {
        if (readings[i] == Reading::TooLong) ++result.unread;
        if (readings[i] != Reading::Refused) continue;
        result.damaged = true;
        result.refused.insert(text.records[i].Key());
    }
}

void deleteDefinition(ZqCalculator& calc, const DefinitionRecord& record) {
    const std::string name(record.name);
    if (record.kind == Kind::Function) {
        const std::string joined = withoutBlanks(name);
        const Function* const function = funcs.FindByName(joined.c_str(), record.ParameterCount());
        if (function && function->body) funcs.DeleteFunction(function);
    } else if (record.kind == Kind::Variable) {
        node* const variable = calc.VariableExists(name.c_str());
        if (variable && variable != calc.vars.first) calc.DeleteVariable(variable);
    } else if (node* const unit = calc.UnitExists(name.c_str())) {
        calc.unitDefs.Del(unit);
        removeUnit(name.c_str());
    }
}

} // namespace

std::string definitionsText(const ZqCalculator& calc, const std::set<std::string>& elsewhere) {
    const auto mathError = merror; // printing numbers may leave a code
    std::string text = textOf(
        {functionLines(), variableLines(calc), unitLines(calc, elsewhere), historyLines(calc.history)});
    merror = mathError;
    return text;
}

DefinitionsRead readDefinitions(ZqCalculator& calc, const std::string& path, System& system) {
    DefinitionsRead result;
    result.opened = readWholeFile(path, result.text, system);
    if (!result.opened) return result;
    const DefinitionsText text(result.text);
    for (const DefinitionRecord& record : text.records) {
        if (record.kind != Kind::Unit) continue;
        const node* const unit = calc.UnitExists(std::string(record.name).c_str());
        if (unit && record.statement != unit->text) deleteDefinition(calc, record);
    }
    Undo undo;
    prepare(calc, undo);
    takeText(calc, text, result);
    undo.TakeBack();
    return result;
}

void takeDefinitions(ZqCalculator& calc, const std::string& lines, const std::string& deleted) {
    // The first line of a text is its header. Deleting may change what Undo puts back: it comes first.
    for (const DefinitionRecord& record : DefinitionsText("\n" + deleted).records)
        deleteDefinition(calc, record);
    Undo undo;
    prepare(calc, undo);
    Reader(calc).Take(DefinitionsText("\n" + lines).records);
    undo.TakeBack();
}
