// SPDX-License-Identifier: MIT
//
// The unit library once more, written for clearness alone: strings, vectors and plain walks along the lists.
// Built from the tests' own table.
#pragma once

#include <optional>
#include <string>
#include <utility>
#include <vector>

struct Reduced {
    double factor = 1.0;
    bool isPrimitive = false;
    std::vector<std::string> numerator;
    std::vector<std::string> denominator;
};

class UnitModel {
public:
    UnitModel();
    std::optional<Reduced> Reduce(const std::string& text);
    double Convert(const std::string& from, const std::string& to);
    void Define(const std::string& name, const std::string& definition);
    bool Remove(const std::string& name);

    // What a name means: the position of its prefix (-1 for none) and of its unit (-1 for an unknown name).
    struct Meaning {
        int prefix = -1;
        int unit = -1;
    };
    Meaning LookUp(const std::string& name) const;

    const Reduced& Unit(int position) const { return units[static_cast<size_t>(position)].second; }
    double Prefix(int position) const { return prefixes[static_cast<size_t>(position)].second; }

    std::string message; // of the last failure, empty while there was none

private:
    Meaning LookUpSingular(const std::string& name) const;
    bool Apply(std::string token, bool isDivisor, const std::string& remainder, Reduced& result);
    void Fail(const std::string& format, const std::string& first, const std::string& second = "");

    std::vector<std::pair<std::string, Reduced>> units;
    std::vector<std::pair<std::string, double>> prefixes;
};
