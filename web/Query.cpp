// SPDX-License-Identifier: MIT
#include "Query.h"

#include "ChildProcess.h"
#include "Helpers_String.h"
#include "ShownText.h"

#include <algorithm>
#include <chrono>

namespace {

bool isWebAddress(const std::string& address) {
    const std::string lower = lowerCased(address);
    return startsWith(lower, "http://") || startsWith(lower, "https://");
}

// What curl writes behind the page of a transfer that is complete: a status of 200 to 299 and no error.
constexpr std::string_view GOOD_END = "\n2?? 0";

// The length of the page in front of that; 0 when the output ends in another way.
size_t pageLength(std::string_view output) {
    if (output.size() < GOOD_END.size()) return 0;
    const size_t length = output.size() - GOOD_END.size();
    for (size_t i = 0; i < GOOD_END.size(); ++i) {
        if (GOOD_END[i] != '?' && GOOD_END[i] != output[length + i]) return 0;
    }
    return length;
}

// Whether there is something to read, or the end, before long.
enum class Ready { Yes, NotYet, Never };

Ready whenReady(int descriptor, System& system) {
    constexpr int INTERVAL = 20; // milliseconds
    pollfd waiting = {descriptor, POLLIN, 0};
    const int ready = system.Poll(waiting, INTERVAL);
    if (ready > 0) return Ready::Yes;
    return ready == 0 || errno == EINTR ? Ready::NotYet : Ready::Never;
}

// Reads to the end. False when that does not come in time, is given up, or lies beyond the longest page.
bool readAll(int descriptor, System::Time deadline, const std::function<bool()>& isGivenUp, System& system,
             std::string& output) {
    char block[16384];
    while (output.size() <= LONGEST_PAGE + GOOD_END.size() && system.Now() < deadline && !isGivenUp()) {
        const Ready ready = whenReady(descriptor, system);
        if (ready == Ready::Never) return false;
        if (ready == Ready::NotYet) continue;
        const ssize_t count = system.Read(descriptor, block, sizeof block);
        if (count < 0 && errno == EINTR) continue;
        if (count <= 0) return count == 0;
        output.append(block, static_cast<size_t>(count));
    }
    return false;
}

// The page at the address, empty on every failure.
std::string fetch(const std::string& address, int seconds, const std::function<bool()>& isGivenUp,
                  System& system) {
    int ends[2];
    if (system.MakePipe(ends) != 0) return "";
    for (const int end : ends) system.CloseOnExec(end);
    // Its own time-out is there for the case that this process is killed meanwhile.
    const pid_t process =
        startProgram({"curl", "--disable", "--silent", "--globoff", "--location", "--max-redirs", "5",
                      "--proto", "=http,https", "--max-time", std::to_string(seconds), "--write-out",
                      "\n%{http_code} %{exitcode}", "--", address},
                     ends[1], system);
    system.Close(ends[1]);
    std::string output;
    const auto deadline = system.Now() + std::chrono::seconds(seconds);
    const bool isWhole = process >= 0 && readAll(ends[0], deadline, isGivenUp, system, output);
    system.Close(ends[0]);
    if (process < 0) return "";
    if (!isWhole) system.Signal(process, SIGKILL);
    waitForProgram(process, system);
    output.resize(isWhole ? pageLength(output) : 0);
    return output;
}

bool isPlain(char c) {
    const bool isLetter = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
    return isLetter || (c >= '0' && c <= '9') || std::string_view("-._~+").find(c) != std::string_view::npos;
}

} // namespace

std::string queryAddress(std::string_view service, std::string_view query) {
    while (!service.empty() && service.back() == '/') service.remove_suffix(1);
    std::string address(service);
    address += "/input/?i=";
    for (const char c : query) {
        if (isPlain(c)) {
            address += c;
            continue;
        }
        const auto code = static_cast<unsigned char>(c);
        address += '%';
        address += "0123456789ABCDEF"[code >> 4U];
        address += "0123456789ABCDEF"[code & 0xFU];
    }
    return address;
}

std::string answerInPage(std::string_view page) {
    const size_t pod = page.find("pod_0200");
    if (pod == std::string_view::npos || !isUtf8(page)) return "";
    const size_t title = page.find("title", pod);
    if (title == std::string_view::npos) return "";
    const size_t open = page.find('"', title);
    if (open == std::string_view::npos) return "";
    const size_t close = page.find('"', open + 1);
    std::string answer(page.substr(open + 1, close == std::string_view::npos ? close : close - open - 1));
    std::replace_if(
        answer.begin(), answer.end(), [](char c) { return c == '\n' || c == '\r'; }, ' ');
    return shownText(answer);
}

std::string askService(std::string_view service, std::string_view query, int seconds,
                       const std::function<bool()>& isGivenUp, System& system) {
    if (!isWebAddress(std::string(service))) return "";
    return answerInPage(fetch(queryAddress(service, query), seconds, isGivenUp, system));
}
