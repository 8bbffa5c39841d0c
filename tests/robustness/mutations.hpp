// Edits that turn a valid text file into a hostile one: a line replaced, the file cut,
// its line ends changed, a byte-order mark put in front, a zone of a fixed-width line
// overwritten. Lines are numbered from 1; edited files end their lines with CR LF unless
// an edit says otherwise.
#pragma once

#include "core/series_file.hpp"

#include <string>
#include <vector>

namespace varo::robustness {

using core::splitLines;
std::string joinLines(const std::vector<std::string>& lines, const std::string& end = "\r\n");

std::string replaceLine(const std::string& text, long line, const std::string& replacement);
std::string insertLine(const std::string& text, long line, const std::string& inserted);
std::string firstLines(const std::string& text, long count);
// Every line end replaced by `end`.
std::string withLineEnds(const std::string& text, const std::string& end);
std::string withoutFinalLineEnd(const std::string& text);
inline const std::string ByteOrderMark = "\xEF\xBB\xBF";
// Characters 14k - 13 to 14k of the line replaced by the text, padded with blanks to 14.
std::string replaceZone(const std::string& text, long line, int k, const std::string& field);
// Every line's 14-character zones re-cut to `width` characters.
std::string withZoneWidth(const std::string& text, int width);
long lineCount(const std::string& text);

} // namespace varo::robustness
