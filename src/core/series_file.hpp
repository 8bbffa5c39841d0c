// Daily data files: streaming free-format reading and row-by-row writing.
//
// A data file holds decimal numbers, one row a day, with no header and no dates.
// `SeriesReader::readNumber` takes the next number wherever it stands: blanks, tabs, line
// ends and commas separate numbers, so the reader knows nothing of lines. Reading past
// the last number fails with failure 62; a token that is not a number fails with 13 and
// a description naming the file, the line and the token. Ensemble rows can also be read
// a line at a time and cut into 14-character fields.
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
    // The rest of the current line without its line end; fails with 62 at the end of file.
    std::string readLine();
    // True when nothing but separators remains.
    bool atEnd();
    // Line number (from 1) of the reading position.
    long lineNumber() const { return line_; }
    const std::string& path() const { return path_; }

private:
    bool fill();
    void skipSeparators();
    void consumeLineEnd();
    void countLineEnd(char c);
    [[noreturn]] void failPastEnd() const;

    std::string path_;
    std::FILE* file_ = nullptr;
    std::vector<char> buffer_;
    size_t pos_ = 0;
    size_t end_ = 0;
    bool eof_ = false;
    long line_ = 1;
    long lastValueLine_ = 0; // the line of the last number or line read
    bool previousCR_ = false;
};

// The leading number of the 14-character field k (1-based) of a line: characters
// 14k - 13 to 14k, blanks skipped, 0 when the field holds no number or lies past the end.
double zoneField(std::string_view line, int k);

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

// The bare name of a path: what follows the last '/' (or '\').
std::string bareFileName(std::string_view path);
// The folder of a path, without a trailing separator; empty for a bare name.
std::string folderOf(std::string_view path);
// The path made absolute against the working folder and tidied ("a/./b/../c" to "a/c"), so
// that a path kept in a file still names the same file from another folder. Empty stays
// empty.
std::string absolutePath(std::string_view path);

} // namespace varo::core
