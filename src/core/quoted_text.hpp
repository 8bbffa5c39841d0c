// Text from a user's file as a message shows it.
//
// A message quotes what it found so that the person can find it in the file, but the file
// may hold anything: a token of sixty million characters, a line of control bytes. The
// quote is cut after a few dozen characters (never inside a UTF-8 character) and marked
// with "...", and control bytes are shown escaped (\t, \r, \n, \x01), so that a message
// stays one short line whatever the input.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace varo::core {

// Characters a quote keeps before it is cut.
inline constexpr size_t QuotedLength = 40;

// The text between single quotes, escaped and cut as above.
std::string quotedInput(std::string_view text, size_t limit = QuotedLength);

// The same without the quotes, for a message whose wording stands around the text.
std::string escapedInput(std::string_view text, size_t limit = QuotedLength);

} // namespace varo::core
