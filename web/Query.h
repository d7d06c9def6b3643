// SPDX-License-Identifier: MIT
//
// The online query service: its address, its page, and the answer in the page.
#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>

// How long a service is waited for, in seconds, unless the person says otherwise.
constexpr int QUERY_SECONDS = 20;

// The longest page that is read, in bytes. A longer one holds no answer.
constexpr size_t LONGEST_PAGE = size_t{8} << 20;

// What the service at an http or https address answers to a query such as "convert+5+miles+to+km", in UTF-8:
// an HTTP GET of its path /input/?i=QUERY by the program curl, for so many seconds at most. Redirections are
// followed, to http and https. Empty when there is no answer: an address of another kind, a service that
// cannot be reached or does not answer in time, an HTTP status that is not 200 to 299, a page that is too
// long, that is not UTF-8 or that holds no answer, or no curl. `isGivenUp` is asked about every 20
// milliseconds and ends the wait, without an answer, by returning true. In every case, no process is
// left behind.
std::string askService(std::string_view service, std::string_view query, int seconds,
                       const std::function<bool()>& isGivenUp);

// The answer in a page: the value of the first title attribute behind "pod_0200", in one line and without
// control characters. Empty when there is none.
std::string answerInPage(std::string_view page);

// The address of the service's page for a query: what a URL does not allow is percent-encoded; '+' stays, it
// stands for a blank.
std::string queryAddress(std::string_view service, std::string_view query);
