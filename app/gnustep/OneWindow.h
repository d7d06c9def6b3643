// SPDX-License-Identifier: MIT
//
// One window for each person and display: a second start of the program hands what it was asked to open to
// the first, which shows itself. They meet at a socket, which only the person can reach, and neither talks to
// the program of somebody else.
#pragma once

#include <chrono>
#include <string>
#include <vector>

// Where they meet: in $XDG_RUNTIME_DIR, or else in the folder of the person's files. Another one for each
// such folder and each display. Empty when the path is too long for a socket.
std::string meetingPlace(const std::string& folder, const std::string& display);

class OneWindow {
public:
    explicit OneWindow(std::string meetingPlace) : path(std::move(meetingPlace)) {}
    ~OneWindow();
    OneWindow(const OneWindow&) = delete;
    OneWindow& operator=(const OneWindow&) = delete;

    // True when a window was there and has taken these paths, which hold no NUL; without any it shows itself
    // only. Otherwise, where no window listens, this one does from now on: what a killed program has left of
    // the socket is replaced. A window that does not answer in ANSWER_SECONDS, being stopped, say, takes
    // nothing, and where another one `isWanted` none does.
    bool HandOver(const std::vector<std::string>& paths, bool isWanted);

    // What can be read when somebody calls, or -1 when this one does not listen.
    int Listener() const { return listener; }

    // Answers a caller, which has ANSWERING_TIME to say all that it wants. False when there was none, when it
    // took longer or did not wait; `paths` is what it hands over.
    bool Answer(std::vector<std::string>& paths) const;

    static constexpr int ANSWER_SECONDS = 3;
    static constexpr std::chrono::seconds ANSWERING_TIME{1};

private:
    bool Reach(int caller) const;
    void Listen();

    std::string path;
    int listener = -1;
};
