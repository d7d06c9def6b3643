// SPDX-License-Identifier: MIT
#include "PromptFiles.h"

#include "Calculator.h"
#include "Folder.h"

namespace {

// Every setting has a value; a file of an older version may lack some.
KeptSettings completed(const KeptSettings& read) {
    KeptSettings all = defaultSettings();
    for (const Setting& setting : SETTINGS) {
        if (setting.IsNumber()) all.numbers[setting.key] = setting.WhenMissing();
    }
    for (const auto& [key, number] : read.numbers) all.numbers[key] = number;
    for (const auto& [key, text] : read.texts) all.texts[key] = text;
    return all;
}

void addNews(std::string& news, const std::string& more) {
    news += (news.empty() || more.empty() ? "" : "; ") + more;
}

} // namespace

PromptFiles::PromptFiles(ZqCalculator& theCalculator, System& calls)
    : calc(theCalculator), keeper(calls), settings(defaultSettings()), historyFile(historyPath(), calls) {}

std::string PromptFiles::Open() {
    isOpen = true;
    keeper.Open(ownFolder());
    keeper.LeaveHistory();
    std::string news;
    KeptSettings read;
    if (readSettings(keeper.Settings(), read)) {
        settings = completed(read);
        for (const Setting& setting : SETTINGS) Apply(setting);
    } else {
        news = keeper.KeepSettingsBeside();
    }
    written = settings;
    addNews(news, keeper.ReadDefinitions(calc));
    calc.history.Clear(); // the window's
    std::error_code unread;
    history = historyFile.Read(&unread);
    if (unread) addNews(news, "history could not be read (" + unread.message() + ")");
    historyFile.Shorten();
    return news;
}

void PromptFiles::Apply(const Setting& setting) {
    if (setting.IsNumber()) setting.Apply(ValueOf(setting.key), calc);
    if (setting.key == std::string_view("histsz")) calc.history.SetMaxEntries(ValueOf(setting.key));
}

PromptFiles::Numbers PromptFiles::SettingsOfEntries() const {
    Numbers numbers;
    for (const Setting& setting : SETTINGS) {
        if (setting.command.word) numbers[setting.key] = setting.ValueIn(calc);
    }
    return numbers;
}

bool PromptFiles::AddToHistory(const std::string& entry) {
    const bool isLeftOut = entry.empty() || entry[0] == ' ' || entry[0] == '\t' || entry == "exit";
    if (isLeftOut || (!history.empty() && history.back() == entry)) return false;
    // As many as the next start will find, or more: rarely enough that it takes no time.
    constexpr auto LINES = static_cast<long>(HistoryFile::LINES);
    if (history.size() >= 2 * HistoryFile::LINES) history.erase(history.begin(), history.begin() + LINES);
    history.push_back(entry);
    std::error_code reason;
    if (!isOpen) return true;
    const bool isWritten = historyFile.Append(entry, reason);
    const std::string failure = isWritten ? "" : "Not saved: history (" + reason.message() + ")";
    isHistoryFailureNew = !isWritten && failure != historyFailure;
    historyFailure = failure;
    return true;
}

void PromptFiles::EntryWillRun(bool isPasted) {
    ofEntries = SettingsOfEntries();
    if (!isOpen) return;
    if (!isPasted) keeper.TakeForeignDefinitions(calc);
    keeper.EntryWillRun(calc, isPasted);
}

// What a command has changed is the setting of now.
void PromptFiles::EntryDidRun() {
    for (const auto& [key, value] : SettingsOfEntries()) {
        if (value != ofEntries[key]) settings.numbers[key] = value;
    }
    if (!isOpen) return;
    keeper.EntryDidRun();
    NoteChange();
}

void PromptFiles::NoteChange() {
    keeper.NoteChange();
    isDue = true;
}

long PromptFiles::DoDue(bool isResting) {
    constexpr long LOOK = static_cast<long>(Keeper::DELAY * 250);
    if (!isOpen || !isDue) return -1;
    if (!keeper.IsDue(isResting ? Keeper::DELAY : Keeper::DELAY_WITHOUT_REST)) return LOOK;
    Save();
    return -1;
}

void PromptFiles::Save() {
    isDue = false;
    keeper.SaveBoth(calc, SettingsToWrite());
}

// Of each setting the value that was changed here, or else what another program has written meanwhile.
// Nothing when none was changed here, or when it is not known what others have written.
std::string PromptFiles::SettingsToWrite() {
    std::error_code unread;
    const std::string present = keeper.Settings(&unread);
    if (unread) {
        keeper.NoteUnsavedSettings(unread);
        return "";
    }
    KeptSettings theirs;
    theirs = readSettings(present, theirs) ? completed(theirs) : written;
    bool isChanged = keeper.AreSettingsUnsaved();
    const auto takeOver = [&isChanged](auto& ours, const auto& before, const auto& others) {
        if (ours != before)
            isChanged = true;
        else
            ours = others;
        return ours != before && ours == others;
    };
    for (const Setting& setting : SETTINGS) {
        const std::string key = setting.key;
        if (!setting.IsNumber())
            takeOver(settings.texts[key], written.texts[key], theirs.texts[key]);
        else if (takeOver(settings.numbers[key], written.numbers[key], theirs.numbers[key]))
            Apply(setting);
    }
    written = settings;
    return isChanged ? settingsText(settings, present) : "";
}

std::string PromptFiles::TakeNews() {
    if (!isOpen || keeper.IsBusy()) return "";
    if (isHistoryFailureNew) {
        isHistoryFailureNew = false;
        return historyFailure;
    }
    return keeper.TakeNews();
}

std::string PromptFiles::Close() {
    if (!isOpen) return "";
    isOpen = false;
    if (isDue || keeper.IsAnyUnsaved()) Save();
    std::string failures = keeper.TakeFailures();
    keeper.Close();
    historyFile.Shorten();
    addNews(failures, historyFailure);
    return failures;
}
