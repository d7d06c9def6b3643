// SPDX-License-Identifier: MIT
#include <tallyquill/Real.h>

#include <iomanip>
#include <iostream>

int main() {
    using namespace tallyquill;
    const Real principal = 250'000_real, rate = 0.0385_real / 12;
    const Real payment = principal * rate / (1 - pow(1 + rate, -360));
    std::cout << "each month  " << std::fixed << std::setprecision(2) << payment << '\n';
    std::cout << "pi          " << toString(pi(), 50) << '\n';
    std::cout << "sqrt 2      " << toString(sqrt(Real(2)), 50) << '\n';
}
