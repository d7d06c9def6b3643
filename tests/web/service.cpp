// SPDX-License-Identifier: MIT
#include "service.h"

#include <arpa/inet.h>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>
#include <utility>

const char* const RESULT = "<div id=\"pod_0200\"><img title=\"8.047 km (kilometers)\" alt=\"other\"></div>";
const char* const RESULT_TITLE = "8.047 km (kilometers)";

Service::Service(std::string answer, Manner how) : bytes(std::move(answer)), manner(how) {
    std::signal(SIGPIPE, SIG_IGN); // a client may hang up first
    listener = socket(AF_INET, SOCK_STREAM, 0);
    fcntl(listener, F_SETFD, FD_CLOEXEC);
    sockaddr_in address = {};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof address;
    auto* const any = reinterpret_cast<sockaddr*>(&address);
    if (listener < 0 || bind(listener, any, size) != 0 || listen(listener, 8) != 0 ||
        getsockname(listener, any, &size) != 0) {
        ADD_FAILURE() << "no loopback socket";
        return;
    }
    port = ntohs(address.sin_port);
    worker = std::thread([this] { Serve(); });
}

Service::~Service() {
    ends = true;
    shutdown(listener, SHUT_RDWR); // accept returns
    if (worker.joinable()) worker.join();
    close(listener);
}

std::string Service::Request() const {
    const std::lock_guard<std::mutex> lock(mutex);
    return request;
}

void Service::WaitForRequest() const {
    while (Request().empty()) usleep(2000);
}

void Service::Serve() {
    while (!ends) {
        const int connection = accept(listener, nullptr, nullptr);
        if (connection < 0) return;
        fcntl(connection, F_SETFD, FD_CLOEXEC);
        Answer(connection);
        close(connection);
    }
}

void Service::Answer(int connection) {
    std::string head;
    char buffer[1000];
    while (head.find("\r\n\r\n") == std::string::npos) {
        const ssize_t count = recv(connection, buffer, sizeof buffer, 0);
        if (count <= 0) return;
        head.append(buffer, static_cast<size_t>(count));
    }
    {
        const std::lock_guard<std::mutex> lock(mutex);
        request = head.substr(0, head.find("\r\n"));
    }
    if (manner == Manner::HangsUp) return;
    for (size_t sent = 0; manner != Manner::NeverAnswers && sent < bytes.size();) {
        const ssize_t count = send(connection, bytes.data() + sent, bytes.size() - sent, 0);
        if (count <= 0) return;
        sent += static_cast<size_t>(count);
    }
    while (manner != Manner::Answers && !ends) {
        usleep(20000);
        if (manner == Manner::Drips && send(connection, " ", 1, 0) < 0) return;
    }
}

std::string response(const std::string& status, const std::string& body) {
    return "HTTP/1.1 " + status +
           "\r\nContent-Type: text/html; charset=utf-8\r\nContent-Length: " + std::to_string(body.size()) +
           "\r\nConnection: close\r\n\r\n" + body;
}

std::string page(const std::string& body) {
    return response("200 OK", "<html>" + body + "</html>");
}

bool hasChildren() {
    return waitpid(-1, nullptr, WNOHANG) >= 0 || errno != ECHILD;
}
