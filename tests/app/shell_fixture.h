// SPDX-License-Identifier: MIT
//
// The console with what stands around it: the controller that fades the window and, if asked for, the menu
// bar.
#pragma once

#include "console_fixture.h"
#include "replacement.h"

#import "PelmoAppDelegate.h"

#include <map>

class ShellTest : public ConsoleTest {
protected:
    void SetUp() override;
    void TearDown() override;

    // The regular end of the program and its next start over the same files.
    void StartAgain();

    void SetSetting(const char* key, int value);
    int SettingOf(const char* key) const;
    std::map<std::string, int> StoredSettings() const; // the numbers in the settings' file

    id Outlet(const char* name) const; // an instance variable of the console
    PrefController* Preferences() const;
    double Alpha() const { return [window alphaValue]; }

    // The delegate's own clickedAppStatusItem:, which the tests' delegate only counts.
    void ClickStatusItem();
};
