// SPDX-License-Identifier: MIT
//
// A locale in which the capital of i is another letter than I changes nothing.
#include "Search.h"

#include <gtest/gtest.h>

#include <clocale>
#include <cstdlib>
#include <string>

namespace {

// Made in a folder of its own: few machines have one.
class TurkishLocale : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_NE(mkdtemp(folder.data()), nullptr);
        const std::string make = "localedef -i tr_TR -f UTF-8 " + folder + "/tr_TR.UTF-8 2>/dev/null";
        ASSERT_NE(std::system(make.c_str()), -1); // it warns of details by its status
        setenv("LOCPATH", folder.c_str(), 1);
        ASSERT_NE(std::setlocale(LC_ALL, "tr_TR.UTF-8"), nullptr) << "the package locales is missing";
    }
    void TearDown() override {
        std::setlocale(LC_ALL, "C");
        unsetenv("LOCPATH");
        EXPECT_EQ(std::system(("rm -r " + folder).c_str()), 0);
    }

    static Search Looking(Search::In where, const std::u16string& wanted) {
        Search search;
        search.Begin(where, "", {});
        for (const char16_t c : wanted) search.Press({KEY_OTHER, c, c, 0});
        return search;
    }

private:
    std::string folder = "/tmp/tallyquill-locale-XXXXXX";
};

TEST_F(TurkishLocale, SmallLettersAreFoundAsCapitalsAndCapitalsAsSmallLetters) {
    CHistory history;
    history.InsertNewEntry("SIN(30)");
    const std::u16string capitals = u"SIN(30)", small = u"sin(30)";
    for (const char16_t* const wanted : {u"sin", u"SIN", u"i", u"I"}) {
        EXPECT_TRUE(Looking(Search::In::Transcript, wanted).FindIn(capitals));
        EXPECT_TRUE(Looking(Search::In::Transcript, wanted).FindIn(small));
        EXPECT_EQ(Looking(Search::In::History, wanted).FindIn(history), 1);
    }
}

} // namespace
