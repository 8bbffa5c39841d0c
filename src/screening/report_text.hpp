// Text reports laid out in character columns, as on a result screen where the print
// position is moved to a column before each item. Moving to a column that the line has
// already passed continues on the next line at that column, so no item ever overwrites
// another. Stretches of text can be marked to be set apart on the screen.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace varo::screening {

// A marked stretch: line index, 0-based column and length.
struct Highlight {
    size_t line = 0;
    size_t column = 0;
    size_t length = 0;
    friend bool operator==(const Highlight&, const Highlight&) = default;
};

struct ReportText {
    std::vector<std::string> lines;
    std::vector<Highlight> highlights;

    // The lines joined by line feeds, each line ended.
    std::string joined() const;
};

class TabbedText {
public:
    // Moves the print position to a 1-based column.
    void tab(int column);
    void print(std::string_view text);
    // Prints the text and marks it.
    void printMarked(std::string_view text);
    void endLine();
    void line(std::string_view text) {
        print(text);
        endLine();
    }
    void emptyLines(int count);

    // The report so far; an unfinished line is ended first.
    ReportText finish();

private:
    ReportText report_;
    std::string current_;
};

} // namespace varo::screening
