// SPDX-License-Identifier: MIT
//
// The online query service and the web page. Neither has a built-in address; see the environment variables.
#pragma once

#include <string>
#include <string_view>

// What the service at TALLYQUILL_QUERY_URL (http or https) answers to a query such as "convert+5+miles+to+km":
// an HTTP GET of its path /input/?i=QUERY through curl, for a minute at most. Empty when the variable is unset,
// when the service cannot be reached, when its page holds no answer, or when Ctrl-C comes meanwhile (Interrupt.h).
std::string askService(std::string_view query);

// The answer in a page of the service: the value of the first title attribute behind "pod_0200". Empty when
// there is none.
std::string answerInPage(std::string_view page);

// The address for a query: what a URL does not allow is percent-encoded; '+' stays, it stands for a blank.
std::string queryAddress(std::string_view service, std::string_view query);

// Opens the page at TALLYQUILL_WEB_URL in the person's browser. False when the variable is unset or no browser
// can be started. The browser runs on by itself: it is no child of this process.
bool openPage();
