// SPDX-License-Identifier: MIT
#include "NameRows.h"

#include "Builtins.h"
#include "Functions.h"
#include "units.h"

#include <cstdio>
#include <cstdlib>

std::vector<NameRow> functionRows() {
    std::vector<NameRow> rows;
    for (const Function* function = funcs.Get(0); function; function = funcs.GetNext()) {
        if (function->body)
            rows.push_back({function->name + std::string("("), function->ToString([] { return true; }), ""});
    }
    for (const Builtin& builtin : builtinTable()) {
        const std::string name = builtin.name;
        if (builtin.help && funcs.FindByName(builtin.name, -1))
            rows.push_back({name + "(", name + "(" + builtin.arguments + ")", builtin.help});
    }
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
