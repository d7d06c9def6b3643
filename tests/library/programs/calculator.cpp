// SPDX-License-Identifier: MIT
#include <tallyquill/Calculator.h>

#include <iostream>
#include <string>

int main() {
    tallyquill::Calculator calculator;
    for (std::string line; std::getline(std::cin, line);) {
        const tallyquill::Answer answer = calculator.Evaluate(line);
        if (answer.status == tallyquill::Answer::Status::Value) std::cout << answer.name << " = ";
        std::cout << answer.text << '\n';
    }
}
