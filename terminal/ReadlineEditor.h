// SPDX-License-Identifier: MIT
//
// Lines typed at a terminal with GNU Readline, which knows the keys, the person's .inputrc, undo, the kill
// ring and characters of any width. This class adds what a calculator's prompt has beside: the answer below
// the line, entries brought back by how they begin, pasted texts line by line, and signs copied from pages.
#pragma once

#include "LineSource.h"
#include "PreviewRow.h"
#include "TerminalModes.h"
#include "TypedSigns.h"

#include <chrono>
#include <cstdio>
#include <deque>
#include <string>
#include <vector>

class ReadlineEditor : public LineSource {
public:
    // Reads from the terminal `from` and draws on the terminal `to`. One object at a time. Sets the process's
    // locale for characters. Throws std::system_error when it cannot have a descriptor of its own.
    ReadlineEditor(PromptHost& theHost, int from, int to, System& calls = System::Real());
    ~ReadlineEditor() override;

    Status Next(std::string& line) override;
    int PromptIndent() const override { return promptIndent; }
    void SetHistory(const std::vector<std::string>& lines) override;
    void AddToHistory(const std::string& line) override;

private:
    using Clock = std::chrono::steady_clock;

    // What Readline calls.
    static void TakeLine(char* text);
    static int GiveByte(std::FILE*);
    static int HasBytes();
    static char** Complete(const char* word, int start, int end);
    static int RecallOlder(int, int);
    static int RecallNewer(int, int);
    static int TypeOperator(int count, int key);
    static int TakePaste(int, int);
    static int DoNothing(int, int);

    static void BindKeys();
    void Start();
    Status Finish(Status status);
    Status GiveLine(std::string& line);
    Status GivePasted(std::string& line);
    Status Cancel();
    bool ReadBytes(long patience);
    std::string ReadPaste();
    void RunKeys();
    void KeepText();
    void ShowAgain();
    void FollowSize();
    int Recall(bool isOlder);

    long RestLeft();
    void RenewPreview();
    void DrawPreview();
    void ErasePreview();
    void Places(ScreenPlace& cursor, ScreenPlace& end, int& width) const;
    bool IsPreviewPossible() const;

    PromptHost& host;
    TerminalModes terminal;
    std::FILE* screen;

    // Bytes from the terminal: the start of a character that is not complete yet, and those that Readline
    // gets.
    std::string piece;
    std::string bytes;
    size_t taken = 0;    // of `bytes`
    size_t lastRead = 0; // so many came together last
    bool isAtEnd = false;
    int failure = 0; // errno of a read that failed
    TypedSigns signs;

    std::string prompt;
    bool isDone = false; // a line was accepted, or the end
    bool isEnded = false;
    bool isPasted = false; // it is one of several that were pasted
    int promptIndent = 0;  // the columns of its mode
    std::string accepted;

    std::deque<std::string> pasted; // lines that wait to be run
    std::string kept;               // what goes into the next line, and where the cursor stands in it
    int keptCursor = 0;

    std::string typed; // what the person had typed when entries began to be brought back
    int position = 0;  // in the history

    PreviewRow row;
    std::string preview;   // the text that is drawn
    std::string previewed; // the line that it belongs to
    Clock::time_point lastKey;
};
