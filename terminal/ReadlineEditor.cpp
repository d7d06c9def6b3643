// SPDX-License-Identifier: MIT
#include "ReadlineEditor.h"

#include "Interrupt.h"
#include "ShownText.h"
#include "TypedText.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <system_error>

#include <readline/history.h>
#include <readline/readline.h>

using Event = TerminalModes::Event;
using std::chrono::milliseconds;

namespace {

// Readline calls functions without an object: they find the one here.
ReadlineEditor* editing = nullptr;

constexpr milliseconds REST{80};
constexpr int KEPT_ENTRIES = 10000;
constexpr int MOST_COUNT = 9999; // of a key: an entry has no more characters
constexpr char PASTE_END[] = "\x1b[201~";

bool isOn(const char* variable) {
    const char* const value = rl_variable_value(variable);
    return value && std::strcmp(value, "on") == 0;
}

// What Readline puts in front of the prompt to show the mode of its keys.
std::string modeText() {
    if (!isOn("show-mode-in-prompt")) return "";
    const char* variable = "emacs-mode-string";
    if (rl_editing_mode == 0)
        variable = rl_get_keymap() == rl_get_keymap_by_name("vi-insert") ? "vi-ins-mode-string"
                                                                         : "vi-cmd-mode-string";
    const char* const text = rl_variable_value(variable);
    return text ? withoutMarkedParts(text) : "";
}

// Readline's keys of vi never end in a line that is no UTF-8, has a NUL or ends in a character that the
// locale does not know.
std::string workable(std::string_view line) {
    std::string text = asUtf8(line);
    std::replace(text.begin(), text.end(), '\0', '?');
    return rl_editing_mode == 0 ? knownCharacters(text) : text;
}

// In one step for undo.
void replaceLine(const std::string& text) {
    rl_begin_undo_group();
    rl_delete_text(0, rl_end);
    rl_point = 0;
    rl_insert_text(text.c_str());
    rl_end_undo_group();
}

} // namespace

// --- Start and end ---

ReadlineEditor::ReadlineEditor(PromptHost& theHost, int from, int to, System& calls)
    : host(theHost), terminal(from, to, TerminalModes::Use::Editing, calls),
      screen(fdopen(calls.Duplicate(to, 3), "w")) {
    if (!screen) throw std::system_error(errno, std::generic_category());
    editing = this;
    rl_readline_name = "tallyquill"; // for "$if" in .inputrc
    rl_instream = stdin;
    rl_outstream = screen;
    rl_catch_signals = rl_catch_sigwinch = 0;
    rl_prep_term_function = nullptr;
    rl_deprep_term_function = nullptr;
    rl_tty_set_echoing(1);
    rl_getc_function = GiveByte;
    rl_input_available_hook = HasBytes;
    rl_attempted_completion_function = Complete;
    rl_completer_word_break_characters = " \t\n+-*/^%!<>=&|@()[]{},;:#.\"'";
    BindKeys(); // before Readline reads .inputrc, so that a person's own bindings win
    rl_change_environment = 0;
    useUtf8();
    rl_initialize();
    rl_completion_query_items = -1; // Readline asks without waiting for an answer while it is fed keys
    rl_variable_bind("page-completions", "off"); // there, too
    if (isOn("enable-bracketed-paste")) terminal.MarkPastes();
    using_history();
    stifle_history(KEPT_ENTRIES);
}

ReadlineEditor::~ReadlineEditor() {
    clear_history();
    std::fclose(screen);
    editing = nullptr;
}

void ReadlineEditor::BindKeys() {
    for (const char* const name : {"emacs-standard", "vi-insert", "vi-move"}) {
        Keymap map = rl_get_keymap_by_name(name);
        rl_bind_keyseq_in_map("\x1b[200~", TakePaste, map);
        rl_bind_keyseq_in_map(PASTE_END, DoNothing, map); // the end of one that was given up
        for (const char* const up : {"\x1b[A", "\x1bOA"}) rl_bind_keyseq_in_map(up, RecallOlder, map);
        for (const char* const down : {"\x1b[B", "\x1bOB"}) rl_bind_keyseq_in_map(down, RecallNewer, map);
        if (std::strcmp(name, "vi-move") == 0) break;
        for (const char operation : {'+', '-', '*', '/'}) rl_bind_key_in_map(operation, TypeOperator, map);
    }
}

int ReadlineEditor::DoNothing(int, int) {
    return 0;
}

// --- One line ---

LineSource::Status ReadlineEditor::Next(std::string& line) {
    if (!pasted.empty()) return GivePasted(line);
    Start();
    for (;;) {
        if (taken < bytes.size()) RunKeys();
        if (isDone) return GiveLine(line);
        if (isAtEnd) return Finish(Status::End);
        if (failure != 0) {
            errno = failure;
            return Finish(Status::Failed);
        }
        RenewPreview();
        const long due = host.DoDue();
        const long rest = RestLeft();
        const Event event = terminal.Wait(rest < 0 || (due >= 0 && due < rest) ? due : rest);
        switch (event) {
        case Event::Input: ReadBytes(0); break;
        case Event::Rest: break;
        case Event::Interrupted: return Cancel();
        case Event::EndAsked: return Finish(Status::End);
        case Event::Failed: return Finish(Status::Failed);
        case Event::Stopping:
            ErasePreview();
            terminal.Stop();
            break;
        case Event::Back: ShowAgain(); break;
        case Event::Resized: FollowSize(); break;
        }
    }
}

void ReadlineEditor::Start() {
    forgetInterrupt(); // one that came during the entry before
    terminal.Forget();
    terminal.isEditing = true;
    isDone = isEnded = isPasted = false;
    preview.clear();
    previewed.clear();
    prompt = host.PromptText(true);
    rl_reset_screen_size();
    rl_callback_handler_install(prompt.c_str(), TakeLine);
    if (kept.empty()) return;
    rl_insert_text(kept.c_str());
    rl_point = keptCursor;
    kept.clear();
    lastKey = Clock::now();
    rl_redisplay();
}

// Leaves the line as it is on the screen.
LineSource::Status ReadlineEditor::Finish(Status status) {
    const int error = errno;
    ErasePreview();
    if (!isDone) {
        rl_callback_sigcleanup(); // a search, say
        rl_point = rl_end;
        rl_redisplay();
        rl_callback_handler_remove();
    }
    std::fflush(screen);
    terminal.isEditing = false;
    errno = error;
    return status;
}

LineSource::Status ReadlineEditor::GiveLine(std::string& line) {
    line.swap(accepted);
    Finish(Status::Line);
    if (isEnded) return isInterrupted() && endSignal() == 0 ? Status::Canceled : Status::End;
    if (isPasted) return line.empty() ? Status::Blank : Status::Pasted;
    // A key arrives by itself, a text that is pasted without marks in large pieces.
    return line.empty() && lastRead > 1 ? Status::Blank : Status::Line;
}

// As it would look had it been typed.
LineSource::Status ReadlineEditor::GivePasted(std::string& line) {
    if (isInterrupted()) return Cancel();
    promptIndent = 0;
    line = std::move(pasted.front());
    pasted.pop_front();
    const std::string shown = host.PromptText(false) + shownText(line) + "\n";
    std::fwrite(shown.data(), 1, shown.size(), screen);
    std::fflush(screen);
    return line.empty() ? Status::Blank : Status::Pasted;
}

LineSource::Status ReadlineEditor::Cancel() {
    const bool isLine = pasted.empty();
    pasted.clear();
    kept.clear();
    piece.clear();
    bytes.clear();
    taken = 0;
    if (endSignal() != 0) return Status::End;
    if (!isLine) return Status::Canceled;
    ErasePreview();
    Finish(Status::Canceled);
    rl_free_line_state();
    std::fputs("^C", screen);
    std::fflush(screen);
    return Status::Canceled;
}

void ReadlineEditor::TakeLine(char* text) {
    int width = 0;
    rl_get_screen_size(nullptr, &width);
    editing->promptIndent = placeBehind(modeText(), {}, width).column;
    editing->isDone = true;
    editing->isEnded = !text;
    editing->accepted = text ? text : "";
    std::free(text);
    rl_callback_handler_remove();
}

// --- Keys ---

// Whether there is something for Readline now.
bool ReadlineEditor::ReadBytes(long patience) {
    if (taken < bytes.size()) return true;
    if (patience != 0) {
        const Event event = terminal.Wait(patience);
        if (event == Event::Stopping) terminal.Stop();
        if (event == Event::Back || event == Event::Resized) terminal.Forget();
        if (event != Event::Input) return false;
    }
    char block[65536];
    const long count = terminal.Read(block, sizeof block);
    isAtEnd = count == 0;
    failure = count < 0 && errno != EAGAIN ? errno : 0;
    if (count <= 0) return false;
    lastRead = static_cast<size_t>(count);
    piece.append(block, lastRead);
    const size_t whole = wholeCharacters(piece);
    bytes = signs.Read(asUtf8(std::string_view(piece).substr(0, whole)));
    piece.erase(0, whole);
    taken = 0;
    return !bytes.empty();
}

// Within a sequence of keys Readline may ask for more than there is.
int ReadlineEditor::GiveByte(std::FILE*) {
    ReadlineEditor& editor = *editing;
    while (!editor.ReadBytes(-1)) {
        if (editor.isAtEnd || editor.failure != 0 || isInterrupted()) return EOF;
    }
    return static_cast<unsigned char>(editor.bytes[editor.taken++]);
}

// Readline asks whether there is more. Only behind an Escape, which may begin a sequence, is it waited for.
int ReadlineEditor::HasBytes() {
    constexpr long PATIENCE = 100;
    ReadlineEditor& editor = *editing;
    if (editor.taken < editor.bytes.size()) return 1;
    const bool isEscape = editor.taken > 0 && editor.bytes[editor.taken - 1] == '\x1b';
    return isEscape && editor.ReadBytes(PATIENCE) ? 1 : 0;
}

// The preview goes first: Readline writes only where it knows what is there. Its hook for drawing the line
// runs for each of many keys that came together, in the middle of a search or a list of names, and not at all
// when a key leaves the line alone. Here all is written until the next key.
void ReadlineEditor::RunKeys() {
    std::fputs(row.Erase().c_str(), screen);
    while (taken < bytes.size() && !isDone) {
        rl_numeric_arg = std::min(rl_numeric_arg, MOST_COUNT); // else bells ring for hours
        rl_callback_read_char();
        if (!isDone) KeepText();
    }
    lastKey = Clock::now();
    if (!isDone) DrawPreview();
}

// It gets no other text, but keeps the rest of a character behind a key that wants another one, and a
// repeated command of vi may leave a NUL. Undoing does not bring it back.
void ReadlineEditor::KeepText() {
    rl_point = std::min(rl_point, rl_end); // a search may have left it behind the end
    const std::string_view line(rl_line_buffer, static_cast<size_t>(rl_end));
    const std::string text = workable(line);
    if (text == line) return;
    const std::string before = workable(line.substr(0, static_cast<size_t>(rl_point)));
    rl_replace_line(text.c_str(), 1);
    rl_point = rl_mark = static_cast<int>(before.size());
    rl_redisplay();
}

int ReadlineEditor::TypeOperator(int count, int key) {
    const bool isTyped = editing->terminal.MarksPastes() || editing->lastRead == 1;
    const auto change = changeByOperator(rl_line_buffer, static_cast<size_t>(rl_point),
                                         static_cast<char>(key), editing->host.MinusIsSign());
    if (!change || !isTyped) return rl_insert(count, key);
    rl_begin_undo_group();
    rl_delete_text(0, static_cast<int>(change->length));
    rl_point = 0;
    rl_insert_text(change->text);
    rl_insert(count, key);
    rl_end_undo_group();
    return 0;
}

// --- Pasted texts ---

// Up to the mark of its end, which is taken, too. Empty when it was given up.
std::string ReadlineEditor::ReadPaste() {
    constexpr size_t MARK = sizeof PASTE_END - 1;
    std::string text;
    size_t searched = 0;
    for (;;) {
        text.append(bytes, taken, std::string::npos);
        taken = bytes.size();
        const size_t end = text.find(PASTE_END, searched);
        if (end != std::string::npos) {
            bytes = text.substr(end + MARK);
            taken = 0;
            text.resize(end);
            return text;
        }
        searched = text.size() < MARK ? 0 : text.size() - MARK;
        while (!ReadBytes(-1)) {
            if (isAtEnd || failure != 0 || isInterrupted()) return "";
        }
    }
}

// A pasted text of several lines: each that has an end is run, what follows the last end stays in the editor.
int ReadlineEditor::TakePaste(int, int) {
    ReadlineEditor& editor = *editing;
    std::vector<std::string> lines = pastedLines(editor.ReadPaste());
    if (lines.size() == 1) {
        rl_insert_text(lines.front().c_str());
        return 0;
    }
    editor.isPasted = true;
    const std::string entry = rl_line_buffer;
    const auto cursor = static_cast<size_t>(rl_point);
    editor.keptCursor = static_cast<int>(lines.back().size());
    editor.kept = lines.back() + entry.substr(cursor);
    editor.pasted.assign(std::make_move_iterator(lines.begin() + 1),
                         std::make_move_iterator(lines.end() - 1));
    replaceLine(entry.substr(0, cursor) + lines.front());
    rl_redisplay();
    return rl_newline(1, '\n');
}

// --- Entries brought back ---

void ReadlineEditor::SetHistory(const std::vector<std::string>& lines) {
    clear_history();
    for (const std::string& line : lines) add_history(line.c_str());
}

void ReadlineEditor::AddToHistory(const std::string& line) {
    const HIST_ENTRY* const newest =
        history_length > 0 ? history_get(history_base + history_length - 1) : nullptr;
    if (!newest || line != newest->line) add_history(line.c_str());
    using_history();
}

int ReadlineEditor::RecallOlder(int, int) {
    return editing->Recall(true);
}

int ReadlineEditor::RecallNewer(int, int) {
    return editing->Recall(false);
}

// Those that begin as what was typed; with the cursor at the start of the line, all. Behind the newest one
// comes what was typed.
int ReadlineEditor::Recall(bool isOlder) {
    if (rl_last_func != RecallOlder && rl_last_func != RecallNewer) {
        typed = rl_line_buffer;
        position = history_length;
        if (rl_point == 0) typed.clear();
    }
    for (int next = position;;) {
        next += isOlder ? -1 : 1;
        if (next < 0 || next > history_length) return rl_ding();
        const HIST_ENTRY* const entry = next < history_length ? history_get(history_base + next) : nullptr;
        const std::string text = entry ? entry->line : typed;
        if (text.compare(0, typed.size(), typed) != 0 || (entry && text == rl_line_buffer)) continue;
        position = next;
        replaceLine(text);
        return 0;
    }
}

// --- Completion ---

// Readline's array: what all have in common, then each.
char** ReadlineEditor::Complete(const char* word, int, int) {
    rl_attempted_completion_over = 1; // no names of files
    rl_completion_suppress_append = 1;
    const std::string entry = rl_line_buffer;
    const size_t cursor = std::min(static_cast<size_t>(rl_point), entry.size()); // as in KeepText
    const std::vector<std::string> found = editing->host.CompletionsAt(entry, cursor).candidates;
    if (found.empty()) return nullptr;
    std::string common = found.front();
    for (const std::string& one : found) {
        const auto differs = std::mismatch(common.begin(), common.end(), one.begin(), one.end());
        common.erase(differs.first, common.end());
    }
    if (common.size() < std::strlen(word)) common = word; // they differ from it in upper and lower case
    std::vector<char*> list = {strdup(common.c_str())};
    if (found.size() > 1) {
        for (const std::string& one : found) list.push_back(strdup(one.c_str()));
    }
    list.push_back(nullptr);
    auto* const array = static_cast<char**>(std::malloc(list.size() * sizeof(char*)));
    if (array) std::copy(list.begin(), list.end(), array);
    return array;
}

// --- The screen ---

// The shell has written something meanwhile.
void ReadlineEditor::ShowAgain() {
    terminal.Forget(); // first: the next stop may come while this is shown
    row = PreviewRow();
    rl_reset_screen_size();
    std::fputs("\r\x1b[J", screen);
    rl_forced_update_display();
    DrawPreview();
}

// A lower window may have lost the row of the preview: what stands below the line is cleared, and no row that
// is counted from the cursor.
void ReadlineEditor::FollowSize() {
    terminal.Forget();
    row = PreviewRow();
    rl_resize_terminal();
    ScreenPlace cursor;
    ScreenPlace end;
    int width = 0;
    Places(cursor, end, width);
    std::fputs(PreviewRow::ClearBelow(cursor, end).c_str(), screen);
    DrawPreview();
    std::fflush(screen);
}

// --- The preview ---

void ReadlineEditor::Places(ScreenPlace& cursor, ScreenPlace& end, int& width) const {
    int height = 0;
    rl_get_screen_size(&height, &width);
    const std::string_view line(rl_line_buffer, static_cast<size_t>(rl_end));
    const auto point = static_cast<size_t>(rl_point);
    const ScreenPlace begin = placeBehind(modeText() + withoutMarkedParts(prompt), {}, width);
    cursor = placeBehind(line.substr(0, point), begin, width);
    end = placeBehind(line.substr(point), cursor, width);
}

// A search shows something else than the line, and a terminal may lack what drawing takes.
bool ReadlineEditor::IsPreviewPossible() const {
    const char* const clears = rl_get_termcap("ce");
    return !isDone && rl_end > 0 && rl_display_prompt == rl_prompt && clears &&
           std::strstr(clears, "\x1b[K") && !isOn("horizontal-scroll-mode");
}

// How long the keys have to rest until the preview is due; -1: nothing has changed.
long ReadlineEditor::RestLeft() {
    if (previewed == rl_line_buffer || !IsPreviewPossible()) return -1;
    const auto left = std::chrono::duration_cast<milliseconds>(lastKey + REST - Clock::now()).count();
    return std::max<long>(left + 1, 0);
}

void ReadlineEditor::RenewPreview() {
    if (previewed == rl_line_buffer || !IsPreviewPossible() || Clock::now() < lastKey + REST) return;
    previewed = rl_line_buffer;
    std::string text = host.PreviewOf(previewed);
    if (text == preview) return;
    ErasePreview();
    preview = std::move(text);
    DrawPreview();
}

void ReadlineEditor::DrawPreview() {
    if (rl_end == 0) {
        preview.clear();
        previewed.clear();
    }
    if (!preview.empty() && IsPreviewPossible()) {
        ScreenPlace cursor;
        ScreenPlace end;
        int width = 0;
        int height = 0;
        Places(cursor, end, width);
        rl_get_screen_size(&height, nullptr);
        if (end.row + 1 < height) std::fputs(row.Draw(preview, cursor, end, width).c_str(), screen);
    }
    std::fflush(screen);
}

void ReadlineEditor::ErasePreview() {
    std::fputs(row.Erase().c_str(), screen);
    std::fflush(screen);
}
