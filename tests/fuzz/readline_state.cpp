// SPDX-License-Identifier: MIT
//
// By itself, since Readline has a name of the engine's for something else.
#include "readline_state.h"

#include <cstdio>

#include <readline/readline.h>

// Readline's own: when it is 0, the next text that is killed is no part of the one before.
extern "C" int _rl_last_command_was_kill; // NOLINT(readability-identifier-naming): Readline's name

void emptyKillRing() {
    constexpr int MOST_TEXTS = 10;
    for (int i = 0; i < MOST_TEXTS; i++) {
        rl_insert_text("x");
        rl_kill_text(0, rl_end);
        _rl_last_command_was_kill = 0;
    }
    rl_free_undo_list();
}

void useKeys(bool areOfVi) {
    rl_variable_bind("editing-mode", areOfVi ? "vi" : "emacs");
}
