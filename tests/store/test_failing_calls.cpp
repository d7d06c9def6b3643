// SPDX-License-Identifier: MIT
//
// Every call of the system fails once while files are read and written: what was kept stays or what is new
// is there, the person is told, and the next try works.
#include "HistoryFile.h"
#include "Keeper.h"
#include "definitions_file_fixture.h"
#include "failing_system.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace {

const char* const OLD_DEFINITIONS = "### FUNCTIONS ###\ntwice(x)=2*x\n### VARIABLES ###\nans=0\nold=1\n"
                                    "### CUSTOM UNITS ###\nunit smoot=67 inch\n### HISTORY ###\n1+1\n";
const std::string OLD_SETTINGS = "the settings before";
const std::string NEW_SETTINGS = "the settings of now";

class FailingCalls : public DefinitionsFile {
protected:
    const std::string kept = folder.File("Tallyquill");
    const std::string definitions = kept + "/pelmo_functions.txt";
    const std::string settings = kept + "/pelmo_settings.plist";

    FailingSystem whole;

    // The files as another run left them, and what a killed one left.
    void BeginAnew() {
        StartAgain();
        std::filesystem::remove_all(kept);
        std::filesystem::create_directory(kept);
        putContent(definitions, OLD_DEFINITIONS);
        putContent(settings, OLD_SETTINGS);
        putContent(definitions + ".tallyquill-aB3dEf", "half");
    }

    // A run that defines a variable, while another program defines one, too. Returns what it says.
    std::string DefineAndSave(System& system, const std::string& name) {
        StartAgain();
        Keeper keeper(system);
        keeper.Open(kept);
        keeper.LeaveHistory();
        keeper.Settings();
        std::string news = keeper.ReadDefinitions(*calc);
        keeper.TakeForeignDefinitions(*calc);
        std::string theirs = contentOf(definitions);
        const size_t end = theirs.find("### CUSTOM");
        if (end != std::string::npos) putContent(definitions, theirs.insert(end, "by" + name + "=7\n"));
        Enter(name + "=42");
        keeper.SaveBoth(*calc, NEW_SETTINGS);
        keeper.Finish();
        return news + keeper.TakeFailures();
    }

    bool HasCopyOf(const std::string& text) const {
        return contentOf(definitions + ".unreadable").find(text.substr(0, text.find("### H"))) == 0;
    }

    bool HasLine(const std::string& where, const std::string& line) const {
        return contentOf(where).find("\n" + line + "\n") != std::string::npos;
    }
};

TEST_F(FailingCalls, LoseNoDefinitionAndAreTold) {
    const size_t count = failEveryCall([this](FailingSystem& system) {
        BeginAnew();
        const std::string news = DefineAndSave(system, "new");
        const std::string what = system.WhatFailed() + ": " + news;
        const bool isSaved = HasLine(definitions, "new=42");
        EXPECT_TRUE(isSaved || news.find("Not saved: pelmo_functions.txt") != std::string::npos) << what;
        for (const char* const line : {"twice(x)=2*x", "old=1", "unit smoot=67 inch", "bynew=7"})
            EXPECT_TRUE(HasLine(definitions, line)) << what << "\n" << contentOf(definitions);
        EXPECT_TRUE(DefinitionsText(contentOf(definitions)).isFramed) << what;
        const std::string now = contentOf(settings);
        EXPECT_TRUE(now == NEW_SETTINGS ||
                    (now == OLD_SETTINGS && news.find("pelmo_settings.plist") != std::string::npos))
            << what << "\n"
            << now;
        EXPECT_EQ("", DefineAndSave(whole, "next")) << what;
        for (const char* const line : {"twice(x)=2*x", "old=1", "unit smoot=67 inch", "bynew=7", "next=42"})
            EXPECT_TRUE(HasLine(definitions, line)) << what << "\n" << contentOf(definitions);
        for (const auto& entry : std::filesystem::directory_iterator(kept))
            EXPECT_EQ(std::string::npos, entry.path().string().find(".tallyquill-")) << what;
    });
    EXPECT_GT(count, 200U);
    RecordProperty("failures", static_cast<int>(count));
}

// What can only be kept beside is: of a damaged file nothing is lost.
TEST_F(FailingCalls, LeaveADamagedFileOrACopy) {
    const std::string damaged = "### FUNCTIONS ###\nf(x)=(((\na=1\n### HISTORY ###\n";
    const size_t count = failEveryCall([&](FailingSystem& system) {
        BeginAnew();
        putContent(definitions, damaged);
        const std::string news = DefineAndSave(system, "new");
        EXPECT_FALSE(news.empty()) << system.WhatFailed();
        const bool isKept = contentOf(definitions) == damaged || HasCopyOf(damaged);
        EXPECT_TRUE(isKept) << system.WhatFailed() << ": " << news;
        DefineAndSave(whole, "next");
        EXPECT_TRUE(HasLine(definitions, "next=42")) << system.WhatFailed();
        EXPECT_TRUE(HasCopyOf(damaged)) << system.WhatFailed();
    });
    EXPECT_GT(count, 200U);
}

TEST_F(FailingCalls, LeaveTheHistoryWholeAndAreTold) {
    const std::string where = folder.File("history");
    const size_t count = failEveryCall([&](FailingSystem& system) {
        putContent(where, "1+1\n2+2\n");
        HistoryFile file(where, system);
        std::error_code unread;
        std::error_code reason;
        const std::vector<std::string> before = file.Read(&unread);
        const std::vector<std::string> all = {"1+1", "2+2"};
        EXPECT_TRUE(before == all || unread) << system.WhatFailed();
        const bool isAppended = file.Append("3+3", reason);
        EXPECT_TRUE(isAppended || reason) << system.WhatFailed();
        EXPECT_TRUE(!isAppended || HasLine(where, "3+3")) << system.WhatFailed();
        file.Shorten();
        EXPECT_TRUE(file.Append("4+4", reason) || file.Append("4+4", reason)) << system.WhatFailed();
        EXPECT_EQ("1+1\n2+2\n", contentOf(where).substr(0, 8)) << system.WhatFailed();
        EXPECT_TRUE(HasLine(where, "4+4")) << system.WhatFailed() << "\n" << contentOf(where);
    });
    EXPECT_GT(count, 50U);
}

// What cannot be read is not replaced by the new line alone.
TEST_F(FailingCalls, LeaveALinkedHistoryWholeAndAreTold) {
    const std::string where = folder.File("history");
    const std::string real = folder.File("real");
    const std::string old = "1+1\n2+2\n";
    const size_t count = failEveryCall([&](FailingSystem& system) {
        std::filesystem::remove(where);
        putContent(real, old);
        std::filesystem::create_symlink("real", where);
        std::error_code reason;
        const bool isAppended = HistoryFile(where, system).Append("3+3", reason);
        const std::string what = system.WhatFailed() + "\n" + contentOf(where);
        EXPECT_TRUE(isAppended || reason) << what;
        EXPECT_EQ(isAppended ? old + "3+3\n" : old, contentOf(where)) << what;
        EXPECT_EQ(!isAppended, std::filesystem::is_symlink(where)) << what;
        EXPECT_TRUE(HistoryFile(where, whole).Append("4+4", reason)) << what;
        EXPECT_EQ(old + (isAppended ? "3+3\n4+4\n" : "4+4\n"), contentOf(where)) << what;
        EXPECT_EQ(old, contentOf(real)) << what;
    });
    EXPECT_GT(count, 50U);
}

TEST_F(FailingCalls, ShortenAHistoryWholeOrNotAtAll) {
    const std::string where = folder.File("history");
    std::string old;
    for (size_t i = 0; i < HistoryFile::LINES + 1; ++i) old += std::to_string(i) + "\n";
    failEveryCall([&](FailingSystem& system) {
        putContent(where, old);
        HistoryFile(where, system).Shorten();
        const std::string now = contentOf(where);
        EXPECT_TRUE(now == old || now == old.substr(2)) << system.WhatFailed();
        HistoryFile(where, whole).Shorten();
        EXPECT_EQ(old.substr(2), contentOf(where)) << system.WhatFailed();
    });
}

TEST_F(FailingCalls, KeepTheTranscriptThatIsThere) {
    const std::string where = kept + "/transcript.txt";
    failEveryCall([&](FailingSystem& system) {
        BeginAnew();
        putContent(where, "before\n");
        Keeper keeper(system);
        keeper.Open(kept);
        const std::string read = keeper.ReadTranscript();
        keeper.SetTranscript(read + "now\n");
        keeper.SaveSettings(NEW_SETTINGS);
        const std::string news = keeper.TakeFailures();
        const std::string now = contentOf(where);
        EXPECT_TRUE(now == "before\nnow\n" || (now == "before\n" && !news.empty()))
            << system.WhatFailed() << "\n"
            << now;
        Keeper next(whole);
        next.Open(kept);
        EXPECT_EQ(now, next.ReadTranscript()) << system.WhatFailed();
        next.SetTranscript(now + "later\n");
        next.SaveSettings(NEW_SETTINGS);
        EXPECT_EQ("", next.TakeFailures()) << system.WhatFailed();
        EXPECT_EQ(now + "later\n", contentOf(where)) << system.WhatFailed();
    });
}

} // namespace
