// SPDX-License-Identifier: MIT
//
// The online query service: its address, its page, and the answer in the page.
//
// The page is fetched by the program curl as a child and not by its library, which every start would pay for
// and hardly any use. Measured on Debian 12 (x86-64), an empty program that is linked with -lcurl loads 32
// shared libraries instead of 2, and takes 4.9 ms of processor time from start to end instead of 0.35 ms (5.1
// and 0.39 ms on the clock; best of 7 runs of 300 starts). The console for terminals takes 1 ms for an entry,
// linked statically, which the library's own libraries do not allow. And a child can be ended at any time.
#pragma once

#include "System.h"

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
// long, that is not UTF-8 or that holds no answer, no curl, or a call of the system that fails. `isGivenUp`
// is asked about every 20 milliseconds and ends the wait, without an answer, by returning true. In every
// case, no process is left behind.
std::string askService(std::string_view service, std::string_view query, int seconds,
                       const std::function<bool()>& isGivenUp, System& system = System::Real());

// The answer in a page: the value of the first title attribute behind "pod_0200", in one line and without
// control characters. Empty when there is none.
std::string answerInPage(std::string_view page);

// The address of the service's page for a query: what a URL does not allow is percent-encoded; '+' stays, it
// stands for a blank.
std::string queryAddress(std::string_view service, std::string_view query);
