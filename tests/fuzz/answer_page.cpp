// SPDX-License-Identifier: MIT
//
// Any bytes as the page of the query service, and as a query.
#include "Query.h"
#include "ShownText.h"
#include "fuzz.h"

#include <algorithm>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::string bytes = Input(data, size).Rest();
    const std::string answer = answerInPage(bytes);
    require(isUtf8(answer), "an answer is UTF-8", bytes);
    require(answer.find('\n') == std::string::npos, "an answer is one line", bytes);
    requireSame(answer, shownText(answer), "an answer holds nothing that is not shown");
    const std::string address = queryAddress("https://service.example/", bytes);
    const bool isPlain =
        std::all_of(address.begin(), address.end(), [](char c) { return c > ' ' && c < 0x7F; });
    require(isPlain && address.find_first_of("\"'<>\\^`{|}#&") == std::string::npos, "an address is one",
            address);
    return 0;
}
