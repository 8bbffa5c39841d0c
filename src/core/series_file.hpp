// Daily data files: streaming free-format reading and row-by-row writing.
//
// A data file holds decimal numbers, one row a day, with no header and no dates.
// `SeriesReader::readNumber` takes the next number wherever it stands: blanks, tabs, line
// ends and commas separate numbers, so the reader knows nothing of lines. Reading past
// the last number fails with failure 62; a token that is not a number, or a number beyond
// the range of doubles, fails with 13 and a description naming the file, the line, the
// column and the token. Ensemble rows can also be read a line at a time and cut into
// 14-character fields. A UTF-8 byte-order mark at the start of a file is skipped.
//
// No token or line is held whole beyond a bound: a token longer than `MaxTokenLength`
// characters cannot be a number, and a line longer than `MaxLineLength` belongs to no
// file this program reads by lines; both fail with 13 without reading the rest of them.
//
// `TextFileWriter` writes text with carriage return and line feed line ends and keeps the
// print-zone column of the line in hand.
#pragma once

#include <cstdio>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace varo::core {

inline constexpr size_t MaxTokenLength = 4096;
inline constexpr size_t MaxLineLength = 65536;
inline constexpr std::string_view Utf8ByteOrderMark = "\xEF\xBB\xBF";

class SeriesReader {
public:
    // Opens the file; a missing file fails with 53, one that cannot be read with 70.
    explicit SeriesReader(const std::string& path);
    ~SeriesReader();
    SeriesReader(const SeriesReader&) = delete;
    SeriesReader& operator=(const SeriesReader&) = delete;
    SeriesReader(SeriesReader&&) noexcept;
    SeriesReader& operator=(SeriesReader&&) noexcept;

    // The next number. After it, blanks and one separator (a comma or a line end) are
    // consumed, so that a following `readLine` starts on the next line.
    double readNumber();
    // The rest of the current line without its line end; fails with 62 at the end of file
    // and with 13 for a line longer than `MaxLineLength`.
    std::string readLine();
    // True when nothing but separators remains.
    bool atEnd();
    // Line number (from 1) of the reading position.
    long lineNumber() const { return line_; }
    const std::string& path() const { return path_; }

private:
    bool fill();
    void skipByteOrderMark();
    void skipSeparators();
    void consumeLineEnd();
    // Counts the line end `c` that stands just before buffer index `next`.
    void countLineEnd(char c, size_t next);
    size_t scanToken();
    [[noreturn]] void failPastEnd() const;
    [[noreturn]] void failToken(std::string_view token, std::string_view problem) const;

    std::string path_;
    std::FILE* file_ = nullptr;
    std::vector<char> buffer_;
    size_t pos_ = 0;
    size_t end_ = 0;
    size_t dropped_ = 0;   // bytes of the file before the buffer's start
    size_t lineStart_ = 0; // file offset of the current line's first byte
    bool eof_ = false;
    long line_ = 1;
    long lastValueLine_ = 0; // the line of the last number or line read
    bool previousCR_ = false;
};

// The number in the 14-character zone k (1-based) of a line of an OUT or parameter file,
// characters 14k - 13 to 14k. The zone, blanks trimmed, must hold one whole number within
// the range of doubles, and no number may run over a zone boundary (a value that fills
// all 14 characters may be followed directly by the next zone). Returns an empty text and
// sets `value`, or says what the zone holds instead ("holds '1.2abc', which is not a
// number").
std::string zoneProblem(std::string_view line, int k, double& value);

// The number of zone k, or failure 13 naming the file, the line, the column and what the
// zone holds.
double zoneNumber(std::string_view line, int k, long lineNumber, const std::string& path);

class TextFileWriter {
public:
    // Creates or replaces the file; failures are 75 (cannot create) or 70 (permission).
    explicit TextFileWriter(const std::string& path);
    ~TextFileWriter();
    TextFileWriter(const TextFileWriter&) = delete;
    TextFileWriter& operator=(const TextFileWriter&) = delete;

    void write(std::string_view text);
    // Writes the text and pads the line to the next print zone.
    void writeZoned(std::string_view text);
    // Carriage return and line feed.
    void endLine();
    void writeLine(std::string_view text) {
        write(text);
        endLine();
    }
    // Flushes and closes; a write failure (disk full) fails with 61.
    void close();
    const std::string& path() const { return path_; }

private:
    void flushBuffer();

    std::string path_;
    std::FILE* file_ = nullptr;
    std::string buffer_;
    size_t lineStart_ = 0;
};

// Writes a whole text file at once. A write that fails removes what it had written, so
// that no half-written file is left looking complete; failures are core::Failure.
void writeTextFile(const std::string& path, std::string_view text);
// The first line of a file as text: everything before the first line end, whichever of
// CR LF, LF or CR it is, cut to `maxLength` characters so that a file without line ends is
// never read whole. Empty when the file cannot be opened (the reading that follows reports
// why).
std::optional<std::string> readFirstLine(const std::string& path, size_t maxLength = 4096);
// Fails with 75 when `path` names a folder, as creating the file would: a run checks all
// its outputs so before it creates the first of them.
void refuseFolder(const std::string& path);

// The lines of a text, whatever their ends (CR LF, LF or CR), without them; a last line
// without an end counts, and an empty text has no lines.
std::vector<std::string> splitLines(std::string_view text);

// The bare name of a path: what follows the last '/' (or '\').
std::string bareFileName(std::string_view path);
// The folder of a path, without a trailing separator; empty for a bare name.
std::string folderOf(std::string_view path);
// The path made absolute against the working folder and tidied ("a/./b/../c" to "a/c"), so
// that a path kept in a file still names the same file from another folder. Empty stays
// empty.
std::string absolutePath(std::string_view path);

} // namespace varo::core
