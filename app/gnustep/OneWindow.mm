// SPDX-License-Identifier: MIT
#include "OneWindow.h"

#import "Controls.h"
#import "PelmoAppDelegate.h"
#import "Platform.h"

#include "FileKeeping.h"
#include "Folder.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <poll.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

static const char SIGN = 'y';             // the first byte of what is asked, and all of the answer
static const size_t MOST_BYTES = 1000000; // of paths

std::string meetingPlace(const std::string& folder, const std::string& display) {
    uint64_t mark = 14695981039346656037U; // FNV-1a
    const std::string place = folder + '\n' + display;
    for (const char c : place) mark = (mark ^ static_cast<unsigned char>(c)) * 1099511628211U;
    char name[40];
    snprintf(name, sizeof name, "tallyquill-%016llx", static_cast<unsigned long long>(mark));
    const char* const ofRun = getenv("XDG_RUNTIME_DIR");
    const std::string path = (ofRun && ofRun[0] == '/' ? ofRun : folder) + "/" + name;
    return path.size() < sizeof(sockaddr_un::sun_path) ? path : "";
}

static sockaddr_un addressOf(const std::string& path) {
    sockaddr_un address = {};
    address.sun_family = AF_UNIX;
    memcpy(address.sun_path, path.c_str(), path.size() + 1);
    return address;
}

static int newSocket() {
    return socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
}

static void setPatience(int caller, time_t seconds) {
    const timeval patience = {seconds, 0};
    setsockopt(caller, SOL_SOCKET, SO_RCVTIMEO, &patience, sizeof patience);
    setsockopt(caller, SOL_SOCKET, SO_SNDTIMEO, &patience, sizeof patience);
}

static bool isOfThisPerson(int caller) {
    ucred other = {};
    socklen_t size = sizeof other;
    return getsockopt(caller, SOL_SOCKET, SO_PEERCRED, &other, &size) == 0 && other.uid == geteuid();
}

// What a caller that does not block says up to its end. False when it is not at its end in ANSWERING_TIME, or
// says too much: the window waits meanwhile.
static bool receiveAll(int caller, std::string& text) {
    const auto end = std::chrono::steady_clock::now() + OneWindow::ANSWERING_TIME;
    char bytes[4096];
    while (text.size() < MOST_BYTES) {
        const ssize_t count = recv(caller, bytes, sizeof bytes, 0);
        if (count == 0) return true;
        if (count > 0) text.append(bytes, static_cast<size_t>(count));
        if (count < 0 && errno != EAGAIN && errno != EINTR) return false;
        const std::chrono::duration<double, std::milli> left = end - std::chrono::steady_clock::now();
        if (left.count() <= 0) return false;
        pollfd waiting = {caller, POLLIN, 0};
        poll(&waiting, 1, static_cast<int>(left.count()) + 1);
    }
    return false;
}

static bool sendAll(int caller, const std::string& text) {
    for (size_t sent = 0; sent < text.size();) {
        const ssize_t count = send(caller, text.data() + sent, text.size() - sent, MSG_NOSIGNAL);
        if (count <= 0) return false;
        sent += static_cast<size_t>(count);
    }
    return shutdown(caller, SHUT_WR) == 0;
}

OneWindow::~OneWindow() {
    if (listener >= 0) close(listener);
}

// Whether a window listens, to which the socket then leads.
bool OneWindow::Reach(int caller) const {
    const sockaddr_un address = addressOf(path);
    setPatience(caller, ANSWER_SECONDS);
    return connect(caller, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0 &&
           isOfThisPerson(caller);
}

void OneWindow::Listen() {
    const sockaddr_un address = addressOf(path);
    unlink(path.c_str());
    listener = newSocket();
    if (listener < 0) return;
    const mode_t before = umask(0177);
    const bool isBound = bind(listener, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0;
    umask(before);
    if (isBound && listen(listener, 8) == 0) return;
    close(listener);
    listener = -1;
}

bool OneWindow::HandOver(const std::vector<std::string>& paths, bool isWanted) {
    if (path.empty()) return false;
    const FileLock lock(path); // of two starts at the same moment one is the first
    const int caller = newSocket();
    if (caller < 0) return false; // a window may listen
    if (!Reach(caller)) {
        close(caller);
        if (!lock.IsTaken()) Listen();
        return false;
    }
    std::string text(1, SIGN); // whoever says nothing asks for nothing
    for (const std::string& one : paths) text += one + '\0';
    char answer = 0;
    const bool isTaken =
        !isWanted && sendAll(caller, text) && recv(caller, &answer, 1, 0) == 1 && answer == SIGN;
    close(caller);
    return isTaken;
}

bool OneWindow::Answer(std::vector<std::string>& paths) const {
    const int caller = accept4(listener, nullptr, nullptr, SOCK_CLOEXEC | SOCK_NONBLOCK);
    if (caller < 0) return false;
    std::string text;
    // Whoever has given up has closed its end, and opens the files itself.
    const bool isWaiting = isOfThisPerson(caller) && receiveAll(caller, text) && !text.empty() &&
                           send(caller, &SIGN, 1, MSG_NOSIGNAL) == 1;
    close(caller);
    paths.clear();
    for (size_t start = 1, end = 0; start < text.size(); start = end + 1) {
        end = std::min(text.find('\0', start), text.size());
        paths.push_back(text.substr(start, end - start));
    }
    return isWaiting;
}

// --- In the window's run loop ---

@interface Callers : NSObject {
@public
    OneWindow* oneWindow;
    NSFileHandle* listener;
}
- (void)wait;
@end

@implementation Callers
- (void)wait {
    [listener waitForDataInBackgroundAndNotifyForModes:everyMode()];
}

- (void)answer:(NSNotification*)notification {
    std::vector<std::string> paths;
    const bool isToShow = oneWindow->Answer(paths);
    [self wait];
    if (!isToShow) return;
    NSFileManager* const manager = [NSFileManager defaultManager];
    NSMutableArray* const files = [NSMutableArray array];
    for (const std::string& path : paths)
        [files addObject:[manager stringWithFileSystemRepresentation:path.data() length:path.size()]];
    // Behind what runs in this turn: a script is replayed in it.
    [(PelmoAppDelegate*)[NSApp delegate] performSelector:@selector(showAgainWith:)
                                              withObject:files
                                              afterDelay:0
                                                 inModes:everyMode()];
}
@end

// The server and the screen's number behind it, which does not matter: "host:0.1" is "host:0".
static std::string displayName() {
    NSString* const host = [[NSUserDefaults standardUserDefaults] stringForKey:@"NSHost"];
    const char* const variable = getenv("DISPLAY");
    std::string name = (host ? std::string([host UTF8String]) : "") + (variable ? variable : "");
    const size_t colon = name.rfind(':');
    return name.substr(0, colon == std::string::npos ? colon : name.find('.', colon));
}

bool platformHandOver(NSArray* paths, bool isWanted) {
    makeFolder(ownFolder());
    // What listens does so up to the end of the run.
    OneWindow* const oneWindow = new OneWindow(meetingPlace(ownFolder(), displayName()));
    std::vector<std::string> names;
    for (NSString* const path in paths) names.emplace_back([path fileSystemRepresentation]);
    if (oneWindow->HandOver(names, isWanted)) return true;
    if (oneWindow->Listener() < 0) return false;
    Callers* const callers = [[Callers alloc] init];
    callers->oneWindow = oneWindow;
    callers->listener = [[NSFileHandle alloc] initWithFileDescriptor:oneWindow->Listener()];
    [[NSNotificationCenter defaultCenter] addObserver:callers
                                             selector:@selector(answer:)
                                                 name:NSFileHandleDataAvailableNotification
                                               object:callers->listener];
    [callers wait];
    return false;
}
