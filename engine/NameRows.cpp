// SPDX-License-Identifier: MIT
#include "NameRows.h"

#include "Builtins.h"
#include "Functions.h"
#include "units.h"

#include <cstdio>
#include <cstdlib>
#include <set>

std::vector<NameRow> functionRows() {
    std::vector<NameRow> ours, rows;
    std::set<std::string> definitions; // of functions that are predefined as a person would do it
    for (const Builtin& builtin : builtinTable()) {
        const Function* const function = funcs.FindByName(builtin.name, -1);
        if (!builtin.help || !function) continue;
        const std::string name = builtin.name, call = name + "(" + builtin.arguments + ")";
        const std::string definition = builtin.definition ? call + "=" + builtin.definition : "";
        if (function->body && function->ToString() != definition) continue; // the person's own
        definitions.insert(definition);
        ours.push_back({name + "(", call, builtin.help});
    }
    for (const Function* function = funcs.Get(0); function; function = funcs.GetNext()) {
        if (!function->body) continue;
        const std::string text = function->ToString([] { return true; });
        if (!definitions.count(text)) rows.push_back({function->name + std::string("("), text, ""});
    }
    rows.insert(rows.end(), ours.begin(), ours.end());
    return rows;
}

std::vector<NameRow> unitRows() {
    std::vector<NameRow> rows;
    for (const std::string& name : units_names()) {
        const std::string definition = units_definition(name.c_str());
        char* names = nullptr;
        char factor[40];
        snprintf(factor, sizeof factor, "%.10g", strtod(definition.c_str(), &names));
        rows.push_back({name, name, definition.empty() ? "" : factor + std::string(names)});
    }
    return rows;
}
