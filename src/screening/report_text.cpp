#include "screening/report_text.hpp"

namespace varo::screening {

std::string ReportText::joined() const {
    std::string text;
    for (const std::string& line : lines) {
        text += line;
        text += '\n';
    }
    return text;
}

void TabbedText::tab(int column) {
    const size_t target = column > 1 ? static_cast<size_t>(column - 1) : 0;
    if (current_.size() > target) {
        endLine();
    }
    current_.append(target - current_.size(), ' ');
}

void TabbedText::print(std::string_view text) {
    current_ += text;
}

void TabbedText::printMarked(std::string_view text) {
    report_.highlights.push_back({report_.lines.size(), current_.size(), text.size()});
    current_ += text;
}

void TabbedText::endLine() {
    report_.lines.push_back(std::move(current_));
    current_.clear();
}

void TabbedText::emptyLines(int count) {
    for (int i = 0; i < count; ++i) {
        endLine();
    }
}

ReportText TabbedText::finish() {
    if (!current_.empty()) {
        endLine();
    }
    return report_;
}

} // namespace varo::screening
