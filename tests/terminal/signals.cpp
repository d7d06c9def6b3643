// SPDX-License-Identifier: MIT
//
// The tests send themselves signals: they get them also when they were started in the background by a shell,
// which has SIGINT and SIGQUIT ignored there.
#include <csignal>

namespace {

[[maybe_unused]] const bool IS_SET =
    std::signal(SIGINT, SIG_DFL) != SIG_ERR && std::signal(SIGQUIT, SIG_DFL) != SIG_ERR;

} // namespace
