// SPDX-License-Identifier: MIT
//
// Any bytes as what is typed at the prompt: the first one tells which of the two editors gets them, from a
// pipe, and whether Readline has the keys of vi.
#include "Completion.h"
#include "EntryText.h"
#include "Keyboard.h"
#include "ReadlineEditor.h"
#include "calculators.h"
#include "readline_state.h"

#include <algorithm>
#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

namespace {

class Host : public PromptHost {
public:
    explicit Host(ZqCalculator& with) : calc(with) {}

    std::string PromptText(bool forEditor) const override {
        return forEditor ? "\001\x1b[1m\002> \001\x1b[0m\002" : "> ";
    }
    long DoDue() override { return -1; }
    std::string PreviewOf(const std::string& entry) override {
        return enter(calc, entry, true) == STATUS_RESULT ? calc.resultLine : "";
    }
    Completion CompletionsAt(const std::string& entry, size_t cursor) override {
        return completionsAt(entry, cursor, calc);
    }
    bool MinusIsSign() const override { return true; }

private:
    ZqCalculator& calc;
};

// Both ends of a pipe that holds the bytes and has no more.
int pipeOf(const std::string& bytes) {
    int ends[2];
    require(pipe(ends) == 0, "there is a pipe");
    const auto count = write(ends[1], bytes.data(), bytes.size());
    require(count == static_cast<ssize_t>(bytes.size()), "a pipe takes the bytes");
    close(ends[1]);
    return ends[0];
}

// Whether keys are typed a thousand times or more: Alt with a digit or a minus begins a count, as an Escape
// in front or in the eighth bit; with the keys of vi any digit does, and ten times are enough.
bool hasLargeCount(const std::string& keys, bool areOfVi) {
    size_t digits = 0;
    bool isCount = false;
    for (size_t i = 0; i < keys.size(); i++) {
        const bool isAlt = static_cast<unsigned char>(keys[i]) >= 0x80;
        const char key = static_cast<char>(keys[i] & 0x7F);
        const bool isDigit = key >= '0' && key <= '9';
        if (isDigit || key == '-')
            isCount = isCount || isAlt || areOfVi || (i > 0 && keys[i - 1] == '\x1b');
        else
            isCount = isCount && key == '\x1b';
        digits = isCount ? digits + (isDigit ? 1 : 0) : 0;
        if (digits > (areOfVi ? 1 : 3)) return true;
    }
    return false;
}

// Whether a killed text may double so often that it fills the memory: put back (by Ctrl-Y, with the keys of
// vi by p and P) or repeated (by a dot) by itself, or with a macro (Ctrl-X e).
bool hasManyYanks(const std::string& keys, bool areOfVi) {
    const auto yanks = std::count_if(keys.begin(), keys.end(), [&](char key) {
        return key == '\x19' || (areOfVi && (key == 'p' || key == 'P' || key == '.'));
    });
    return yanks > 8 || (yanks > 0 && keys.find("\x18\x65") != std::string::npos);
}

void readLines(LineSource& source, bool isPlain, ZqCalculator& calc) {
    std::string line;
    for (;;) {
        const LineSource::Status status = source.Next(line);
        if (status == LineSource::Status::End || status == LineSource::Status::Failed) return;
        const bool isText = checkEntry(line) == EntryFault::None;
        // Readline inserts any key behind Ctrl-V, also where a text is pasted then.
        require(isText || !isPlain || line.find('\n') == std::string::npos, "a line is one", line);
        if (!isText) continue; // the prompt refuses it
        source.AddToHistory(line);
        enter(calc, line, false);
    }
}

// What a terminal without escape sequences gets has none.
void checkPlain(int screen) {
    char block[1 << 16];
    ssize_t count = 0;
    for (off_t start = 0; (count = pread(screen, block, sizeof block, start)) > 0; start += count) {
        for (ssize_t i = 0; i < count; i++)
            require(block[i] != '\x1b' && block[i] != '\a', "no escape sequence is shown");
    }
    require(count == 0, "the screen can be read");
}

} // namespace

// Readline keeps texts for itself, such as one that was searched for when the input ended.
extern "C" const char* __lsan_default_suppressions();
extern "C" const char* __lsan_default_suppressions() {
    return "leak:xmalloc\nleak:xrealloc\n";
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    constexpr size_t MOST_BYTES = 60000; // a pipe holds them
    if (size > MOST_BYTES) return 0;
    setenv("INPUTRC", "/dev/null", 1);
    setenv("TERM", "xterm", 1);
    Input input(data, size);
    const int kind = input.Byte() % 4;
    const bool isPlain = kind % 2 == 0;
    const bool areOfVi = kind == 3;
    const std::string bytes = input.Rest();
    if (hasLargeCount(bytes, areOfVi) || hasManyYanks(bytes, areOfVi)) return 0;
    // Alt with Return turns to the keys of vi.
    for (const char* const toVi : {"\x1b\n", "\x1b\r", "\x8a", "\x8d"}) {
        if (!areOfVi && bytes.find(toVi) != std::string::npos) return 0;
    }
    const auto calc = newCalculator();
    Host host(*calc);
    const int keys = pipeOf(bytes);
    if (isPlain) {
        static const int screen = memfd_create("screen", MFD_CLOEXEC);
        require(ftruncate(screen, 0) == 0 && lseek(screen, 0, SEEK_SET) == 0, "the screen is empty");
        Keyboard keyboard(host, keys, screen, 9999);
        readLines(keyboard, true, *calc);
        checkPlain(screen);
    } else {
        static const int nowhere = open("/dev/null", O_WRONLY | O_CLOEXEC);
        ReadlineEditor editor(host, keys, nowhere);
        useKeys(areOfVi);
        if (areOfVi || bytes.find('\x19') != std::string::npos) emptyKillRing();
        readLines(editor, false, *calc);
    }
    close(keys);
    return 0;
}
