#include "screening/report_text.hpp"

#include <gtest/gtest.h>

using namespace varo::screening;

TEST(TabbedText, TabsPadToColumnsAndAPassedColumnGoesToTheNextLine) {
    TabbedText text;
    text.print("ab");
    text.tab(6);
    text.print("c");
    text.tab(6); // already past column 6
    text.printMarked("d");
    text.tab(1);
    text.print("e");
    text.emptyLines(1);
    text.line("f");
    const auto report = text.finish();
    EXPECT_EQ(report.lines, (std::vector<std::string>{"ab   c", "     d", "e", "f"}));
    EXPECT_EQ(report.highlights, (std::vector<Highlight>{{1, 5, 1}}));
    EXPECT_EQ(report.joined(), "ab   c\n     d\ne\nf\n");
}
