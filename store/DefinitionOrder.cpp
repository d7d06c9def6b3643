// SPDX-License-Identifier: MIT
#include "DefinitionOrder.h"

#include "Helpers_String.h"

#include <unordered_map>

namespace {

using Positions = std::unordered_map<std::string, size_t>;

bool isOfName(char c) {
    return IsLetter(c) || IsDigit(c) || c == '_';
}

// The positions of the definitions whose names are in the text.
std::vector<size_t> usedIn(const std::string& text, const Positions& positions) {
    std::vector<size_t> used;
    const auto use = [&](const std::string& name) {
        const auto found = positions.find(name);
        if (found != positions.end()) used.push_back(found->second);
    };
    for (size_t i = 0; i < text.size();) {
        if (!IsLetter(text[i])) {
            i++;
            continue;
        }
        const size_t start = i;
        while (i < text.size() && isOfName(text[i])) i++;
        std::string word = text.substr(start, i - start);
        use(word);
        if (word.back() == 's') word.pop_back();
        use(word);
    }
    return used;
}

// A definition whose uses are being followed.
struct Visit {
    size_t position;
    std::vector<size_t> used;
    size_t next = 0;
};

} // namespace

std::vector<size_t> OrderOfDefinitions(const std::vector<NamedText>& definitions) {
    Positions positions;
    for (size_t i = 0; i < definitions.size(); i++) positions.emplace(definitions[i].name, i);
    std::vector<size_t> order;
    std::vector<bool> isVisited(definitions.size(), false);
    std::vector<Visit> path; // a chain may be longer than a stack of calls
    const auto visit = [&](size_t position) {
        if (isVisited[position]) return;
        isVisited[position] = true;
        path.push_back({position, usedIn(definitions[position].text, positions)});
    };
    for (size_t i = 0; i < definitions.size(); i++) {
        visit(i);
        while (!path.empty()) {
            Visit& last = path.back();
            if (last.next < last.used.size()) {
                visit(last.used[last.next++]); // `last` is no longer valid
            } else {
                order.push_back(last.position);
                path.pop_back();
            }
        }
    }
    return order;
}
