// SPDX-License-Identifier: MIT
//
// What is kept, when it is written, and what could not be written.
#include "keeper_fixture.h"

#include <cstring>
#include <fstream>

namespace {

TEST_F(Kept, IsInTwoFilesOfAFolderThatIsMade) {
    Enter("a=1");
    keeper.SaveSettings("settings");
    keeper.SaveDefinitions(*calc);
    EXPECT_EQ("settings", SettingsFile());
    EXPECT_EQ("settings", keeper.Settings());
    EXPECT_EQ(Text(), Definitions());
    EXPECT_EQ("", keeper.TakeNews());
}

TEST_F(Kept, IsThereAgainInTheNextRun) {
    Enter("a=1");
    SaveBoth();
    StartAgain();
    EXPECT_EQ("", keeper.ReadDefinitions(*calc));
    EXPECT_EQ("ans = 1\n", Answer("a"));
}

TEST_F(Kept, IsNotWrittenBeforeTheFolderIsKnownAndAfterTheEnd) {
    Keeper unopened(system);
    for (Keeper* const closed : {&unopened, &keeper}) {
        closed->Close();
        closed->SaveSettings("settings");
        closed->SaveDefinitions(*calc);
        closed->SaveBoth(*calc, "settings");
        closed->KeepSettingsBeside();
        EXPECT_EQ("", closed->ReadDefinitions(*calc));
        EXPECT_EQ("", closed->Settings());
        EXPECT_EQ("", closed->TakeFailures());
    }
    EXPECT_TRUE(std::filesystem::is_empty(folder.File("Tallyquill")));
}

TEST_F(Kept, IsDueASecondAfterTheFirstChange) {
    EXPECT_FALSE(keeper.IsDue());
    EXPECT_TRUE(keeper.NoteChange());
    EXPECT_FALSE(keeper.IsDue());
    system.Wait(0.5);
    EXPECT_FALSE(keeper.NoteChange()); // a timer runs already
    system.Wait(0.5);
    EXPECT_TRUE(keeper.IsDue());
    SaveBoth();
    EXPECT_FALSE(keeper.IsDue());
    EXPECT_TRUE(keeper.NoteChange());
}

TEST_F(Kept, IsDueLaterAmongEntriesWithoutARest) {
    keeper.NoteChange();
    system.Wait(1);
    EXPECT_FALSE(keeper.IsDue(Keeper::DELAY_WITHOUT_REST));
    EXPECT_TRUE(keeper.IsDue());
    system.Wait(0.75);
    EXPECT_TRUE(keeper.IsDue(Keeper::DELAY_WITHOUT_REST));
}

TEST_F(Kept, OfARunningEntryIsWhatWasThereBeforeItOnce) {
    EnterAndNote("a=1");
    system.Wait(1);
    EXPECT_FALSE(keeper.IsEntryRunning());
    keeper.EntryWillRun(*calc, false);
    EXPECT_TRUE(keeper.IsEntryRunning());
    Enter("b=2");
    EXPECT_TRUE(keeper.IsDue());
    SaveBoth();
    EXPECT_TRUE(Holds("\na=1\n"));
    EXPECT_FALSE(Holds("\nb=2\n"));
    EXPECT_FALSE(keeper.IsDue());
    keeper.EntryDidRun();
    EXPECT_TRUE(keeper.IsDue());
    SaveBoth();
    EXPECT_TRUE(Holds("\nb=2\n"));
    EXPECT_FALSE(keeper.IsDue());
}

TEST_F(Kept, OfARunningEntryIsNothingWhenAllWasWrittenBeforeIt) {
    Enter("a=1");
    keeper.SaveDefinitions(*calc);
    keeper.EntryWillRun(*calc, false);
    Enter("b=2");
    system.Wait(10);
    EXPECT_FALSE(keeper.IsDue());
    SaveBoth();
    EXPECT_FALSE(Holds("\nb=2\n"));
    EXPECT_EQ("settings", SettingsFile());
}

TEST_F(Kept, TakesItsFolderBeingTakenAway) {
    std::filesystem::remove_all(folder.File("Tallyquill"));
    SaveBoth();
    EXPECT_EQ("settings", SettingsFile());
    EXPECT_EQ("", keeper.TakeNews());
}

TEST_F(Kept, RemovesWhatKilledProgramsLeft) {
    putContent(File("pelmo_functions.txt.tallyquill-aB3dEf"), "half");
    putContent(File("pelmo_settings.plist.tallyquill-aB3dEf"), "half");
    keeper.Open(folder.File("Tallyquill"));
    EXPECT_TRUE(std::filesystem::is_empty(folder.File("Tallyquill")));
}

// --- What could not be written ---

TEST_F(Kept, NamesBothFilesThatCannotBeWrittenOnce) {
    system.writingError = ENOSPC;
    SaveBoth();
    EXPECT_EQ("Not saved: pelmo_functions.txt, pelmo_settings.plist" + Reason(ENOSPC), keeper.TakeNews());
    SaveBoth();
    EXPECT_EQ("", keeper.TakeNews());
    system.writingError = EROFS; // another reason
    keeper.SaveDefinitions(*calc);
    EXPECT_EQ("Not saved: pelmo_functions.txt" + Reason(EROFS), keeper.TakeNews());
    const std::string functions = "pelmo_functions.txt" + Reason(EROFS);
    const std::string settings = "pelmo_settings.plist" + Reason(ENOSPC);
    const std::string all = keeper.TakeFailures();
    EXPECT_TRUE(all == "Not saved: " + functions + ", " + settings ||
                all == "Not saved: " + settings + ", " + functions)
        << all;
    EXPECT_EQ("", keeper.TakeFailures());
}

TEST_F(Kept, IsWrittenWithTheNextChangeWhenItCouldNotBeWritten) {
    system.writingError = ENOSPC;
    EnterAndNote("a=1");
    SaveBoth();
    system.writingError = 0;
    EnterAndNote("b=2");
    SaveBoth();
    EXPECT_TRUE(Holds("\na=1\n") && Holds("\nb=2\n"));
    EXPECT_EQ("", keeper.TakeNews());
}

TEST_F(Kept, IsTheLastOfManyTexts) {
    for (int i = 0; i < 50; i++) keeper.SaveBoth(*calc, std::to_string(i));
    keeper.Finish();
    EXPECT_EQ("49", SettingsFile());
}

TEST_F(Kept, IsWrittenWhenTheKeeperGoesAway) {
    {
        Keeper another;
        another.Open(folder.File("Tallyquill"));
        another.SaveBoth(*calc, std::string(1000000, 'x'));
    }
    EXPECT_EQ(1000000U, SettingsFile().size());
}

TEST_F(Kept, IsWrittenAtOnceWhereThereIsNoOtherThread) {
    class NoThread : public System {
    public:
        std::thread StartThread(std::function<void()> /*action*/) override {
            throw std::system_error(EAGAIN, std::generic_category());
        }
    } busy;
    Keeper alone(busy);
    alone.Open(folder.File("Alone"));
    alone.SaveBoth(*calc, "settings");
    EXPECT_EQ("settings", contentOf(folder.File("Alone/pelmo_settings.plist")));
    EXPECT_NE("", contentOf(folder.File("Alone/pelmo_functions.txt")));
    EXPECT_EQ("", alone.TakeFailures());
}

TEST_F(Kept, IsInTheOtherFileWhenOneCannotBeWritten) {
    std::filesystem::create_directory(File("pelmo_settings.plist"));
    Enter("a=1");
    SaveBoth();
    keeper.Finish();
    EXPECT_TRUE(Holds("\na=1\n"));
    EXPECT_EQ("Not saved: pelmo_settings.plist" + Reason(EISDIR), keeper.TakeFailures());
    EXPECT_EQ("", keeper.TakeFailures());
}

TEST_F(Kept, IsToldOfAgainWhenItCouldBeWrittenMeanwhile) {
    const auto hasNews = [this](int error) {
        system.writingError = error;
        SaveBoth();
        return !keeper.TakeNews().empty();
    };
    EXPECT_TRUE(hasNews(ENOSPC));
    EXPECT_FALSE(hasNews(ENOSPC));
    EXPECT_FALSE(hasNews(0));
    EXPECT_TRUE(hasNews(ENOSPC));
    EXPECT_FALSE(hasNews(ENOSPC));
}

// --- What is damaged ---

TEST_F(Kept, IsSaidToBeDamagedAndIsKeptBeside) {
    const std::string damaged = "### FUNCTIONS ###\nf(x)=(((\na=1\n### HISTORY ###\n";
    putContent(File("pelmo_functions.txt"), damaged);
    EXPECT_EQ("Not all of pelmo_functions.txt could be read: see pelmo_functions.txt.unreadable",
              keeper.ReadDefinitions(*calc));
    EXPECT_EQ(damaged, contentOf(File("pelmo_functions.txt.unreadable")));
    putContent(File("pelmo_settings.plist"), "damaged");
    keeper.KeepSettingsBeside();
    SaveBoth();
    EXPECT_EQ("damaged", contentOf(File("pelmo_settings.plist.unreadable")));
    EXPECT_EQ("settings", SettingsFile());
    EXPECT_TRUE(Holds("\na=1\n"));
}

TEST_F(Kept, IsNotOverwrittenBeforeThereIsACopyOfWhatIsDamaged) {
    putContent(File("pelmo_functions.txt"), "damaged definitions");
    putContent(File("pelmo_settings.plist"), "damaged settings");
    system.renamingError = EACCES; // no copy gets its name
    keeper.ReadDefinitions(*calc);
    keeper.KeepSettingsBeside();
    system.renamingError = 0;
    system.writingError = ENOSPC;
    SaveBoth();
    EXPECT_EQ("damaged definitions", Definitions());
    EXPECT_EQ("damaged settings", SettingsFile());
    EXPECT_EQ("Not saved: pelmo_functions.txt, pelmo_settings.plist" + Reason(ENOSPC), keeper.TakeNews());
    system.writingError = 0;
    SaveBoth();
    EXPECT_EQ("damaged definitions", contentOf(File("pelmo_functions.txt.unreadable")));
    EXPECT_EQ("damaged settings", contentOf(File("pelmo_settings.plist.unreadable")));
    EXPECT_EQ(Text(), Definitions());
    EXPECT_EQ("settings", SettingsFile());
    EXPECT_EQ("", keeper.TakeNews());
}

// Ten copies are enough: a program that never saved again would lose more.
TEST_F(Kept, IsOverwrittenWhenThereAreTenCopiesAlready) {
    putContent(File("pelmo_settings.plist"), "damaged");
    putContent(File("pelmo_settings.plist.unreadable"), "0");
    for (char i = '1'; i <= '9'; i++)
        putContent(File("pelmo_settings.plist.unreadable.") + i, std::string(1, i));
    keeper.KeepSettingsBeside();
    keeper.SaveSettings("settings");
    EXPECT_EQ("settings", SettingsFile());
}

TEST_F(Kept, IsNotOverwrittenWhenOnlyTheLastOfTheCopiesIsThere) {
    putContent(File("pelmo_settings.plist"), "damaged");
    putContent(File("pelmo_settings.plist.unreadable.9"), "older");
    system.writingError = ENOSPC;
    keeper.KeepSettingsBeside();
    system.writingError = 0;
    keeper.SaveSettings("settings");
    EXPECT_EQ("damaged", contentOf(File("pelmo_settings.plist.unreadable")));
    EXPECT_EQ("settings", SettingsFile());
}

TEST_F(Kept, WhatAnotherProgramDefinesIsTakenIntoTheCalculator) {
    keeper.ReadDefinitions(*calc);
    EnterAndNote("mine=1");
    SaveBoth();
    std::string text = Definitions();
    text.insert(text.find("### VARIABLES"), "yours(x)=x*3\n");
    putContent(File("pelmo_functions.txt"), text);
    keeper.TakeForeignDefinitions(*calc);
    Enter("yours(14)");
    EXPECT_STREQ("ans = 42\n", calc->resultLine);
    Enter("del yours");
    keeper.TakeForeignDefinitions(*calc); // the file is as it was seen
    SaveBoth();
    EXPECT_FALSE(Holds("yours(x)=x*3"));
    EXPECT_TRUE(Holds("mine=1"));
}

// --- Two programs ---

// Another program, as the file sees it: it reads the file, changes its text and writes it.
// --- The transcript ---

TEST_F(Kept, TheTranscriptIsWrittenBesideTheOtherFilesWhenItHasChanged) {
    EXPECT_EQ("", keeper.ReadTranscript());
    keeper.SetTranscript("> 1+1\nans = 2\n");
    SaveBoth();
    EXPECT_EQ("> 1+1\nans = 2\n", contentOf(File("transcript.txt")));
    struct stat info = {};
    ASSERT_EQ(0, stat(File("transcript.txt").c_str(), &info));
    EXPECT_EQ(0600U, info.st_mode & 07777U);
    putContent(File("transcript.txt"), "of another window\n");
    keeper.SetTranscript("> 1+1\nans = 2\n");
    keeper.SaveSettings("settings");
    EXPECT_EQ("of another window\n", contentOf(File("transcript.txt"))) << "nothing has changed here";
    keeper.SetTranscript("3\n");
    keeper.SaveSettings("settings");
    EXPECT_EQ("3\n", keeper.ReadTranscript());
}

TEST_F(Kept, AnEmptyTranscriptHasNoFile) {
    putContent(File("transcript.txt"), "x\x1b\n");
    EXPECT_EQ("x?\n", keeper.ReadTranscript());
    keeper.SetTranscript("");
    SaveBoth();
    struct stat info = {};
    EXPECT_NE(0, stat(File("transcript.txt").c_str(), &info));
    EXPECT_EQ("", keeper.ReadTranscript());
    keeper.SetTranscript("");
    SaveBoth();
    EXPECT_EQ("", keeper.TakeNews());
}

TEST_F(Kept, ATranscriptThatCouldNotBeRemovedIsToldOfAndRemovedLater) {
    putContent(File("transcript.txt"), "x\n");
    EXPECT_EQ("x\n", keeper.ReadTranscript());
    system.removingError = EACCES;
    keeper.SetTranscript("");
    SaveBoth();
    EXPECT_NE("", keeper.TakeNews());
    system.removingError = 0;
    keeper.SetTranscript("");
    SaveBoth();
    struct stat info = {};
    EXPECT_NE(0, stat(File("transcript.txt").c_str(), &info));
}

TEST_F(Kept, ATranscriptComesBackBehindAnEmptyOne) {
    putContent(File("transcript.txt"), "x\n");
    EXPECT_EQ("x\n", keeper.ReadTranscript());
    for (const char* const text : {"", "x\n", ""}) {
        keeper.SetTranscript(text);
        SaveBoth();
        EXPECT_EQ(text, contentOf(File("transcript.txt")));
    }
    EXPECT_FALSE(keeper.IsAnyUnsaved());
}

TEST_F(Kept, ATranscriptThatWasNotReadIsNotTouched) {
    putContent(File("transcript.txt"), "x\n");
    keeper.SetTranscript("");
    SaveBoth();
    EXPECT_EQ("x\n", contentOf(File("transcript.txt")));
}

TEST_F(Kept, ATranscriptThatCouldNotBeWrittenIsToldOfAndWrittenLater) {
    keeper.ReadTranscript();
    ASSERT_EQ(0, mkdir(File("transcript.txt").c_str(), 0700));
    keeper.SetTranscript("x\n");
    SaveBoth();
    EXPECT_EQ("Not saved: transcript.txt" + Reason(EISDIR), keeper.TakeNews());
    ASSERT_EQ(0, rmdir(File("transcript.txt").c_str()));
    keeper.SetTranscript("x\n");
    SaveBoth();
    EXPECT_EQ("x\n", contentOf(File("transcript.txt")));
    EXPECT_EQ("", keeper.TakeFailures());
}

} // namespace
