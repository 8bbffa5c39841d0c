#include "core/quoted_text.hpp"

#include <gtest/gtest.h>
#include <string>
#include <vector>

using namespace varo::core;

TEST(Quoted, EscapesControlBytesAndCutsLongText) {
    struct Case {
        std::string text;
        std::string expected;
    };
    const std::vector<Case> cases = {
        {"abc", "'abc'"},
        {"", "''"},
        {"a\tb\r\nc", "'a\\tb\\r\\nc'"},
        {std::string("\x00\x1b[2J", 5), "'\\x00\\x1B[2J'"},
        {"\x7f", "'\\x7F'"},
        {std::string(40, 'x'), "'" + std::string(40, 'x') + "'"},
        {std::string(41, 'x'), "'" + std::string(40, 'x') + "...'"},
        {std::string(64'000'000, '7'), "'" + std::string(40, '7') + "...'"},
        // A cut never splits a UTF-8 character: 39 bytes, then a two-byte character.
        {std::string(39, 'a') + "\xC3\xA9" + "zz", "'" + std::string(39, 'a') + "...'"},
        {"d\xC3\xA9j\xC3\xA0", "'d\xC3\xA9j\xC3\xA0'"},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(quotedInput(c.text), c.expected) << c.expected;
    }
    EXPECT_EQ(quotedInput("abcdef", 3), "'abc...'");
}
