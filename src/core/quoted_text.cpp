#include "core/quoted_text.hpp"

#include <cstdio>

namespace varo::core {

namespace {

bool isContinuationByte(char c) {
    return (static_cast<unsigned char>(c) & 0xC0) == 0x80;
}

void appendEscaped(std::string& out, char c) {
    switch (c) {
    case '\t':
        out += "\\t";
        return;
    case '\r':
        out += "\\r";
        return;
    case '\n':
        out += "\\n";
        return;
    default:
        break;
    }
    const auto byte = static_cast<unsigned char>(c);
    if (byte < 0x20 || byte == 0x7F) {
        char escaped[8];
        std::snprintf(escaped, sizeof escaped, "\\x%02X", byte);
        out += escaped;
        return;
    }
    out += c;
}

} // namespace

std::string escapedInput(std::string_view text, size_t limit) {
    bool cut = false;
    if (text.size() > limit) {
        size_t end = limit;
        while (end > 0 && isContinuationByte(text[end])) {
            --end;
        }
        text = text.substr(0, end);
        cut = true;
    }
    std::string out;
    for (const char c : text) {
        appendEscaped(out, c);
    }
    return cut ? out + "..." : out;
}

std::string quotedInput(std::string_view text, size_t limit) {
    // Appended to a fresh string: GCC 12 sees a false overlap in a literal put before one.
    std::string quoted(1, '\'');
    quoted += escapedInput(text, limit);
    quoted += '\'';
    return quoted;
}

} // namespace varo::core
