// SPDX-License-Identifier: MIT
//
// The online query service, played by a server on the loopback interface.
#pragma once

#include <atomic>
#include <mutex>
#include <string>
#include <thread>

// Accepts one connection after the other, reads the head of the request and sends its answer.
class Service {
public:
    enum class Manner {
        Answers,
        HangsUp,      // without a word
        NeverAnswers, // and keeps the connection
        Drips         // goes on with a blank now and then
    };

    // Sends these bytes, the head of the response included.
    explicit Service(std::string answer, Manner how = Manner::Answers);
    ~Service();
    Service(const Service&) = delete;
    Service& operator=(const Service&) = delete;

    std::string Address() const { return "http://127.0.0.1:" + std::to_string(port); }

    // The first line of the last request.
    std::string Request() const;

    // Waits until a request has come.
    void WaitForRequest() const;

private:
    void Serve();
    void Answer(int connection);

    const std::string bytes;
    const Manner manner;
    mutable std::mutex mutex;
    std::string request;
    int listener = -1;
    int port = 0;
    std::atomic<bool> ends{false};
    std::thread worker;
};

// A response with a status such as "200 OK".
std::string response(const std::string& status, const std::string& body);

// A page that is found.
std::string page(const std::string& body);

// The part of a page that holds an answer, and that answer.
extern const char* const RESULT;
extern const char* const RESULT_TITLE;

// Whether this process has children, running or ended.
bool hasChildren();
