// SPDX-License-Identifier: MIT
#include "Transcript.h"

#include "Completion.h"
#include "TypedSigns.h"

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <iterator>

ZqCalculator calc;
int32_t g_linestart = 0;
char prompt[PROMPT_SIZE] = "";
bool scriptInterrupted = false;
char matchstr[MATCH_SIZE] = "";
uint8_t matching_enable = 0;
uint8_t update_match_str = 0;
uint32_t keyCode = 0;
uint32_t prevKey = 0;

using Edit = KeyEffect::Edit;
using Then = KeyEffect::Then;

namespace {

KeyEffect only(Then then) {
    KeyEffect effect;
    effect.then = then;
    return effect;
}

} // namespace

bool Transcript::FetchPrompt() const {
    const size_t length = std::min(entry.size(), PROMPT_SIZE - 1);
    bool isWhole = length == entry.size();
    for (size_t i = 0; i < length; ++i) {
        if (entry[i] == 0 || entry[i] > 0xff) isWhole = false; // no NUL in an 8-bit string
        prompt[i] = entry[i] > 0xff ? '?' : static_cast<char>(entry[i]);
    }
    prompt[length] = '\0';
    return isWhole;
}

EntryRange Transcript::SelectedInEntry() const {
    const size_t from = std::max(selection.location, Start());
    return {from, selection.end() > from ? selection.end() - from : 0};
}

EntryRange Transcript::PartialWord() const {
    size_t from = selection.location;
    while (from > Start()) {
        const char16_t c = entry[from - 1 - Start()];
        if (c >= 0x80 || (!isalnum(c) && c != '_')) break;
        --from;
    }
    return {from, selection.location - from};
}

bool Transcript::HasRoomFor(size_t characters) const {
    return entry.size() - SelectedInEntry().length + characters < PROMPT_SIZE;
}

KeyEffect Transcript::Press(const KeyPress& key, bool minusIsSign) const {
    prevKey = keyCode;
    keyCode = key.code & 0xffffU;
    // Control-A goes to the start of the entry, as Control with the left arrow does.
    if (keyCode == KEY_A && (key.held & CONTROL_KEY)) keyCode = KEY_LEFT;
    return Act(actionOf(key), key, minusIsSign);
}

KeyEffect Transcript::Act(KeyAction action, const KeyPress& key, bool minusIsSign) const {
    const bool extends = (key.held & SHIFT_KEY) != 0;
    switch (action) {
    case KeyAction::Commit: update_match_str = 0; return only(Then::Commit);
    case KeyAction::Complete: return Complete();
    case KeyAction::Find: return only(Then::Find);
    case KeyAction::FindEarlier: return only(Then::FindEarlier);
    case KeyAction::Controls: return only(Then::Controls);
    case KeyAction::MenuBar: return only(Then::MenuBar);
    case KeyAction::Escape: return Escape();
    case KeyAction::Backspace: return Erase(false);
    case KeyAction::Delete: return Erase(true);
    case KeyAction::Home: return GoHome(extends);
    case KeyAction::HomeOrSelect: return GoHomeOrSelect(extends);
    case KeyAction::End: return GoToEnd(extends);
    case KeyAction::Left: return GoLeft();
    case KeyAction::Right: return only(Then::Pass);
    case KeyAction::Up: return WalkHistory(true);
    case KeyAction::Down: return WalkHistory(false);
    default: return Type(action, key, minusIsSign);
    }
}

// The rest of the next proposal goes in place of the selection and is selected, so that the next Tab replaces
// it.
KeyEffect Transcript::Complete() const {
    KeyEffect effect;
    const size_t place = selection.location;
    if (place <= Start()) return effect;
    effect.edit = Edit::Replace;
    effect.text = NextProposal();
    effect.selectAfter = EntryRange{place, effect.text.size()};
    return effect;
}

// A cycle: the functions that begin with the word before the cursor, then whatever else fits there, then
// nothing. What is selected tells how far it has come. The functions do not fit behind an arrow, for one.
std::string Transcript::NextProposal() const {
    if (prevKey != KEY_TAB) funcs.TabCompleteReset();
    const EntryRange word = PartialWord();
    const std::string typed = EightBit(0, selection.location - Start());
    Completion others = completionsAt(typed, typed.size(), calc);
    if (others.start != word.location - Start()) others.candidates.clear();
    std::vector<std::string>& rest = others.candidates;
    const bool isElsewhere = !rest.empty();
    const auto end =
        std::remove_if(rest.begin(), rest.end(), [](const std::string& s) { return s.back() == '('; });
    const bool hasFunctions = end != rest.end() || !isElsewhere;
    rest.erase(end, rest.end());
    for (std::string& one : rest) one.erase(0, word.length);
    const std::string shown = prevKey == KEY_TAB ? EightBit(typed.size(), selection.length) : "";
    const auto present = shown.empty() ? rest.end() : std::find(rest.begin(), rest.end(), shown);
    if (present != rest.end()) return std::next(present) == rest.end() ? "" : *std::next(present);
    snprintf(prompt, sizeof prompt, "%s", EightBit(word.location - Start(), word.length).c_str());
    const Function* const function = hasFunctions ? funcs.FindTabComplete(prompt) : nullptr;
    if (function) return std::string(function->name).erase(0, word.length) + "()";
    return rest.empty() ? "" : rest.front();
}

std::string Transcript::EightBit(size_t from, size_t length) const {
    std::string bytes;
    for (const char16_t c : entry.substr(std::min(from, entry.size()), length))
        bytes += c > 0xff ? '?' : static_cast<char>(c);
    return bytes;
}

KeyEffect Transcript::Escape() const {
    FetchPrompt();
    if (entry.empty() && selection.length == 0) return only(Then::Hide);
    KeyEffect effect;
    effect.edit = Edit::Clear;
    calc.history.HistLocReset();
    update_match_str = 0;
    return effect;
}

// The guard of the prompt. With nothing to delete the cursor goes into the entry; forwards there may then be
// something.
KeyEffect Transcript::Erase(bool isForward) const {
    KeyEffect effect = only(Then::Pass);
    const bool isInEntry =
        selection.location > Start() || (selection.location == Start() && selection.length > 0);
    if (isInEntry) return effect;
    if (selection.end() > Start()) {
        effect.select = SelectedInEntry();
        return effect;
    }
    effect.goesToEnd = selection.location != Start();
    const bool passes = isForward && (!effect.goesToEnd || !entry.empty());
    if (!passes) effect.then = Then::Preview;
    return effect;
}

KeyEffect Transcript::GoHome(bool extends) const {
    KeyEffect effect = only(Then::Nothing);
    const bool selects = extends && selection.end() > Start();
    effect.select = EntryRange{Start(), selects ? selection.end() - Start() : 0};
    return effect;
}

// Where it would do nothing any more it selects, as other programs do: the entry, then everything.
KeyEffect Transcript::GoHomeOrSelect(bool extends) const {
    const bool isAtStart = selection.location == Start();
    if (extends || !isAtStart || (selection.length > 0 && selection.end() < end())) return GoHome(extends);
    KeyEffect effect = only(Then::Nothing);
    effect.select =
        selection.length < entry.size() ? EntryRange{Start(), entry.size()} : EntryRange{0, end()};
    return effect;
}

KeyEffect Transcript::GoToEnd(bool extends) const {
    KeyEffect effect = only(Then::Nothing);
    if (extends)
        effect.select = EntryRange{selection.location, end() - selection.location};
    else
        effect.goesToEnd = true;
    return effect;
}

// The cursor does not enter the prompt.
KeyEffect Transcript::GoLeft() const {
    const size_t place = selection.location;
    const bool isAtPrompt = place + 2 >= Start() && place <= Start();
    return only(isAtPrompt ? Then::Preview : Then::Pass);
}

// With the cursor at the start of the entry the arrows walk through the whole history, behind it through the
// lines that begin with what was typed.
KeyEffect Transcript::WalkHistory(bool isUp) const {
    KeyEffect effect;
    CHistory& history = calc.history;
    if (selection.location <= Start()) {
        matching_enable = 0;
    } else if (matching_enable && !update_match_str) {
        FetchPrompt();
        snprintf(matchstr, sizeof matchstr, "%s", prompt);
        history.HistLocReset();
        update_match_str = 1;
    }
    bool isFound = false;
    if (matching_enable)
        isFound = isUp ? history.HistLocUpWithMatch(matchstr) : history.HistLocDownWithMatch(matchstr);
    else
        isFound = isUp ? history.HistLocUp() : history.HistLocDown();
    if (isFound)
        effect.edit = Edit::Recall;
    else if (!isUp && !matching_enable)
        effect.edit = Edit::Clear; // past the newest
    return effect;
}

KeyEffect Transcript::Type(KeyAction action, const KeyPress& key, bool minusIsSign) const {
    update_match_str = 0;
    matching_enable = 1;
    KeyEffect effect;
    if (action == KeyAction::Copy && selection.length == 0) return only(Then::Copy);
    // No menu item has the key, and GNUstep would type its character.
    if ((key.held & COMMAND_KEY) && !(key.held & FUNCTION_KEY)) return effect;
    effect.then = Then::Pass;
    effect.goesToEnd =
        selection.location < Start() && !(key.held & (COMMAND_KEY | CONTROL_KEY | FUNCTION_KEY));
    ApplyAnsRules(effect, action, minusIsSign);
    return effect;
}

// See TypedSigns.h.
void Transcript::ApplyAnsRules(KeyEffect& effect, KeyAction action, bool minusIsSign) const {
    const bool isMinus = action == KeyAction::Minus;
    if (!isMinus && action != KeyAction::Operator) return;
    if (selection.length > 0 && !effect.goesToEnd) return;
    if (selection.location < Start() && !effect.goesToEnd) return;
    const size_t place = effect.goesToEnd ? entry.size() : selection.location - Start();
    FetchPrompt();
    const auto change = changeByOperator(prompt, place, isMinus ? '-' : '+', minusIsSign);
    if (!change) return;
    effect.text = change->text;
    effect.edit = change->length == 0 ? Edit::Type : Edit::Replace;
    if (change->length == 0) return;
    effect.select = EntryRange{Start(), change->length};
    effect.selectAfter = EntryRange{Start() + effect.text.size(), 0};
}
