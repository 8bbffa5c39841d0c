#include "robustness/mutations.hpp"

#include <stdexcept>

namespace varo::robustness {

namespace {

std::string trimRight(const std::string& text) {
    const size_t last = text.find_last_not_of(' ');
    return last == std::string::npos ? std::string() : text.substr(0, last + 1);
}

} // namespace

std::string joinLines(const std::vector<std::string>& lines, const std::string& end) {
    std::string text;
    for (const std::string& line : lines) {
        text += line + end;
    }
    return text;
}

std::string replaceLine(const std::string& text, long line, const std::string& replacement) {
    auto lines = splitLines(text);
    if (line < 1 || line > static_cast<long>(lines.size())) {
        throw std::out_of_range("no line " + std::to_string(line) + " to replace");
    }
    lines[static_cast<size_t>(line - 1)] = replacement;
    return joinLines(lines);
}

std::string insertLine(const std::string& text, long line, const std::string& inserted) {
    auto lines = splitLines(text);
    lines.insert(lines.begin() + (line - 1), inserted);
    return joinLines(lines);
}

std::string firstLines(const std::string& text, long count) {
    auto lines = splitLines(text);
    lines.resize(static_cast<size_t>(count));
    return joinLines(lines);
}

std::string withLineEnds(const std::string& text, const std::string& end) {
    return joinLines(splitLines(text), end);
}

std::string withoutFinalLineEnd(const std::string& text) {
    std::string result = text;
    while (!result.empty() && (result.back() == '\n' || result.back() == '\r')) {
        result.pop_back();
    }
    return result;
}

std::string replaceZone(const std::string& text, long line, int k, const std::string& field) {
    auto lines = splitLines(text);
    std::string& target = lines.at(static_cast<size_t>(line - 1));
    const size_t start = static_cast<size_t>(14 * (k - 1));
    if (target.size() < start + 14) {
        target.resize(start + 14, ' ');
    }
    std::string padded = field;
    padded.resize(14, ' ');
    target.replace(start, 14, padded);
    return joinLines(lines);
}

std::string withZoneWidth(const std::string& text, int width) {
    auto lines = splitLines(text);
    for (std::string& line : lines) {
        std::string cut;
        for (size_t start = 0; start < line.size(); start += 14) {
            std::string field = trimRight(line.substr(start, 14));
            field.resize(static_cast<size_t>(width), ' ');
            cut += field;
        }
        line = cut;
    }
    return joinLines(lines);
}

long lineCount(const std::string& text) {
    return static_cast<long>(splitLines(text).size());
}

} // namespace varo::robustness
