// SPDX-License-Identifier: MIT
//
// Messages of the unit library as an entry shows them.
#include "functions_fixture.h"

namespace {

// "invalid unit name '%s' in '%s'" has 30 characters, and each of its two texts is the name: 112 letters make
// 254 characters, which are formatted. With one letter more the format stands alone.
TEST_F(Functions, ALongUnitMessageIsItsFormatAlone) {
    const std::string name(112, 'w');
    EXPECT_EQ("** ERROR 13: invalid unit name '" + name + "' in '" + name + "' **\n",
              Answer("5 " + name + "->m"));
    EXPECT_EQ("** ERROR 13: invalid unit name '%s' in '%s' **\n", Answer("5 w" + name + "->m"));
    EXPECT_EQ("ans = 5\n", Answer("5"));
}

} // namespace
