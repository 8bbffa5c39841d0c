#include "core/series_file.hpp"

#include "core/failure.hpp"
#include "core/number_format.hpp"
#include "core/numeric_text.hpp"
#include "core/quoted_text.hpp"

#include <cerrno>
#include <charconv>
#include <cstring>
#include <filesystem>
#include <sys/stat.h>

namespace varo::core {

namespace {

// A reader's buffer. Runs open up to a hundred files at once, and smaller buffers stay in
// the caches. Tokens and lines are bounded far below a chunk, so the buffer never grows.
constexpr size_t ReadChunk = 1 << 16;
constexpr size_t WriteChunk = 1 << 20;
static_assert(MaxTokenLength < ReadChunk);
constexpr size_t Zone = PrintZoneWidth;

bool isSeparator(char c) {
    return c == ' ' || c == '\t' || c == '\r' || c == '\n' || c == ',';
}
bool isBlank(char c) {
    return c == ' ' || c == '\t';
}

[[noreturn]] void failOpen(const std::string& path, int error, bool forWriting) {
    if (error == ENOENT && !forWriting) {
        throw Failure(failure::FileNotFound, "Cannot open '" + path + "': no such file.");
    }
    if (error == EACCES || error == EPERM) {
        throw Failure(failure::PermissionDenied, "Cannot open '" + path + "': permission denied.");
    }
    if (error == EISDIR) {
        throw Failure(forWriting ? failure::PathAccessError : failure::FileNotFound,
                      "Cannot open '" + path + "': it is a folder.");
    }
    throw Failure(forWriting ? failure::PathAccessError : failure::PathNotFound,
                  "Cannot open '" + path + "': " + std::strerror(error) + ".");
}

bool isFolder(const std::string& path) {
    struct stat info {};
    return ::stat(path.c_str(), &info) == 0 && S_ISDIR(info.st_mode);
}

std::string_view decimalProblem(DecimalParse parse) {
    return parse == DecimalParse::OutOfRange ? "is a number beyond the range this program holds"
                                             : "is not a number";
}

} // namespace

SeriesReader::SeriesReader(const std::string& path) : path_(path), buffer_(ReadChunk) {
    if (isFolder(path)) {
        failOpen(path, EISDIR, false);
    }
    file_ = std::fopen(path.c_str(), "rb");
    if (file_ == nullptr) {
        failOpen(path, errno, false);
    }
    skipByteOrderMark();
}

SeriesReader::~SeriesReader() {
    if (file_ != nullptr) {
        std::fclose(file_);
    }
}

SeriesReader::SeriesReader(SeriesReader&& other) noexcept
    : path_(std::move(other.path_)), file_(other.file_), buffer_(std::move(other.buffer_)),
      pos_(other.pos_), end_(other.end_), dropped_(other.dropped_), lineStart_(other.lineStart_),
      eof_(other.eof_), line_(other.line_), previousCR_(other.previousCR_) {
    other.file_ = nullptr;
}

SeriesReader& SeriesReader::operator=(SeriesReader&& other) noexcept {
    if (this != &other) {
        if (file_ != nullptr) {
            std::fclose(file_);
        }
        path_ = std::move(other.path_);
        file_ = other.file_;
        buffer_ = std::move(other.buffer_);
        pos_ = other.pos_;
        end_ = other.end_;
        dropped_ = other.dropped_;
        lineStart_ = other.lineStart_;
        eof_ = other.eof_;
        line_ = other.line_;
        previousCR_ = other.previousCR_;
        other.file_ = nullptr;
    }
    return *this;
}

// Moves the unread tail to the front and reads more; false when nothing more came.
bool SeriesReader::fill() {
    if (eof_) {
        return false;
    }
    if (pos_ > 0) {
        std::memmove(buffer_.data(), buffer_.data() + pos_, end_ - pos_);
        end_ -= pos_;
        dropped_ += pos_;
        pos_ = 0;
    }
    if (end_ == buffer_.size()) {
        buffer_.resize(buffer_.size() * 2);
    }
    const size_t got = std::fread(buffer_.data() + end_, 1, buffer_.size() - end_, file_);
    if (got == 0) {
        if (std::ferror(file_)) {
            throw Failure(failure::PermissionDenied, "Cannot read '" + path_ + "'.");
        }
        eof_ = true;
        return false;
    }
    end_ += got;
    return true;
}

// Editors on some systems start a UTF-8 file with a byte-order mark; it is not data.
void SeriesReader::skipByteOrderMark() {
    while (end_ < Utf8ByteOrderMark.size() && fill()) {
    }
    if (std::string_view(buffer_.data(), end_).substr(0, Utf8ByteOrderMark.size()) ==
        Utf8ByteOrderMark) {
        pos_ = Utf8ByteOrderMark.size();
        lineStart_ = pos_;
    }
}

void SeriesReader::countLineEnd(char c, size_t next) {
    if (c == '\r' || (c == '\n' && !previousCR_)) {
        ++line_;
    }
    previousCR_ = c == '\r';
    lineStart_ = dropped_ + next;
}

void SeriesReader::skipSeparators() {
    for (;;) {
        const char* data = buffer_.data();
        size_t i = pos_;
        // Blanks are by far the most common separators in zoned files: skip them in bulk.
        while (i < end_) {
            const char c = data[i];
            if (c == ' ' || c == '\t' || c == ',') {
                previousCR_ = false;
            } else if (c == '\n' || c == '\r') {
                countLineEnd(c, i + 1);
            } else {
                break;
            }
            ++i;
        }
        pos_ = i;
        if (pos_ < end_) {
            previousCR_ = false;
            return;
        }
        if (!fill()) {
            return;
        }
    }
}

void SeriesReader::consumeLineEnd() {
    while ((pos_ < end_ || fill()) && isBlank(buffer_[pos_])) {
        ++pos_;
    }
    if (pos_ >= end_) {
        return;
    }
    const char c = buffer_[pos_];
    if (c == ',') {
        ++pos_;
    } else if (c == '\r' || c == '\n') {
        ++pos_;
        countLineEnd(c, pos_);
        if (c == '\r' && (pos_ < end_ || fill()) && buffer_[pos_] == '\n') {
            ++pos_;
            countLineEnd('\n', pos_);
        }
    }
}

void SeriesReader::failPastEnd() const {
    throw PastEndFailure(path_, lastValueLine_);
}

void SeriesReader::failToken(std::string_view token, std::string_view problem) const {
    const size_t column = dropped_ + pos_ - lineStart_ + 1;
    throw Failure(failure::TypeMismatch, quotedInput(token) + " on line " + std::to_string(line_) +
                                             ", column " + std::to_string(column) + " of '" +
                                             path_ + "' " + std::string(problem) + ".");
}

// The buffer index just past the token at `pos_`, reading more of the file as needed; a
// token longer than the bound is refused without reading the rest of it.
size_t SeriesReader::scanToken() {
    size_t tokenEnd = pos_;
    for (;;) {
        while (tokenEnd < end_ && !isSeparator(buffer_[tokenEnd])) {
            ++tokenEnd;
        }
        if (tokenEnd - pos_ > MaxTokenLength) {
            failToken(std::string_view(buffer_.data() + pos_, tokenEnd - pos_),
                      "is longer than " + std::to_string(MaxTokenLength) +
                          " characters, so it is not a number");
        }
        if (tokenEnd < end_) {
            return tokenEnd;
        }
        const size_t offset = tokenEnd - pos_;
        if (!fill()) {
            return end_;
        }
        tokenEnd = pos_ + offset;
    }
}

double SeriesReader::readNumber() {
    skipSeparators();
    if (pos_ >= end_) {
        failPastEnd();
    }
    const size_t tokenEnd = scanToken();
    const std::string_view token(buffer_.data() + pos_, tokenEnd - pos_);
    double value = 0.0;
    if (const DecimalParse parse = parseDecimal(token, value); parse != DecimalParse::Number) {
        failToken(token, decimalProblem(parse));
    }
    pos_ = tokenEnd;
    lastValueLine_ = line_;
    consumeLineEnd();
    return value;
}

std::string SeriesReader::readLine() {
    if (pos_ >= end_ && !fill()) {
        failPastEnd();
    }
    std::string text;
    lastValueLine_ = line_;
    for (;;) {
        size_t i = pos_;
        while (i < end_ && buffer_[i] != '\r' && buffer_[i] != '\n') {
            ++i;
        }
        text.append(buffer_.data() + pos_, i - pos_);
        pos_ = i;
        if (text.size() > MaxLineLength) {
            throw Failure(failure::TypeMismatch,
                          "Line " + std::to_string(line_) + " of '" + path_ + "' is longer than " +
                              std::to_string(MaxLineLength) + " characters; it starts " +
                              quotedInput(text) + ".");
        }
        if (pos_ < end_ || !fill()) {
            break;
        }
    }
    if (pos_ < end_) {
        const char c = buffer_[pos_++];
        countLineEnd(c, pos_);
        if (c == '\r' && (pos_ < end_ || fill()) && buffer_[pos_] == '\n') {
            ++pos_;
            countLineEnd('\n', pos_);
        }
    }
    previousCR_ = false;
    return text;
}

bool SeriesReader::atEnd() {
    skipSeparators();
    return pos_ >= end_;
}

std::string zoneProblem(std::string_view line, int k, double& value) {
    const size_t start = static_cast<size_t>(Zone * static_cast<size_t>(k - 1));
    const std::string_view zone =
        start < line.size() ? line.substr(start, Zone) : std::string_view();
    const std::string_view text = trimBlanks(zone);
    if (text.empty()) {
        return "is empty where a number must stand";
    }
    const auto filled = [&](size_t from) {
        return line.substr(from, Zone).find_first_of(" \t") == std::string_view::npos &&
               from + Zone <= line.size();
    };
    if (start > 0 && !isBlank(line[start - 1]) && !isBlank(zone.front()) && !filled(start - Zone)) {
        return "holds " + quotedInput(text) + ", part of a number that runs over from column " +
               std::to_string(k - 1);
    }
    const size_t next = start + Zone;
    if (next < line.size() && !isBlank(line[next]) && !isBlank(line[next - 1]) && !filled(start)) {
        return "holds " + quotedInput(text) + ", part of a number that runs over into column " +
               std::to_string(k + 1);
    }
    const DecimalParse parse = parseDecimal(text, value);
    if (parse == DecimalParse::Number) {
        return {};
    }
    return "holds " + quotedInput(text) + ", which " + std::string(decimalProblem(parse));
}

double zoneNumber(std::string_view line, int k, long lineNumber, const std::string& path) {
    double value = 0.0;
    const std::string problem = zoneProblem(line, k, value);
    if (!problem.empty()) {
        const size_t start = static_cast<size_t>(Zone * static_cast<size_t>(k - 1));
        throw Failure(failure::TypeMismatch,
                      "Column " + std::to_string(k) + " (characters " + std::to_string(start + 1) +
                          " to " + std::to_string(start + Zone) + ") of line " +
                          std::to_string(lineNumber) + " of '" + path + "' " + problem + ".");
    }
    return value;
}

TextFileWriter::TextFileWriter(const std::string& path) : path_(path) {
    if (isFolder(path)) {
        failOpen(path, EISDIR, true);
    }
    file_ = std::fopen(path.c_str(), "wb");
    if (file_ == nullptr) {
        failOpen(path, errno, true);
    }
    buffer_.reserve(WriteChunk + 4096);
}

TextFileWriter::~TextFileWriter() {
    if (file_ != nullptr) {
        std::fwrite(buffer_.data(), 1, buffer_.size(), file_);
        std::fclose(file_);
    }
}

void TextFileWriter::flushBuffer() {
    if (buffer_.empty()) {
        return;
    }
    if (std::fwrite(buffer_.data(), 1, buffer_.size(), file_) != buffer_.size()) {
        throw Failure(failure::DiskFull, "Cannot write to '" + path_ + "'.");
    }
    lineStart_ = lineStart_ >= buffer_.size() ? lineStart_ - buffer_.size() : 0;
    buffer_.clear();
}

void TextFileWriter::write(std::string_view text) {
    buffer_ += text;
}

void TextFileWriter::writeZoned(std::string_view text) {
    buffer_ += text;
    padToNextZone(buffer_, lineStart_);
}

void TextFileWriter::endLine() {
    buffer_ += "\r\n";
    if (buffer_.size() >= WriteChunk) {
        flushBuffer();
        lineStart_ = 0;
    } else {
        lineStart_ = buffer_.size();
    }
}

void TextFileWriter::close() {
    if (file_ == nullptr) {
        return;
    }
    flushBuffer();
    const bool failed = std::fclose(file_) != 0;
    file_ = nullptr;
    if (failed) {
        throw Failure(failure::DiskFull, "Cannot finish writing '" + path_ + "'.");
    }
}

void writeTextFile(const std::string& path, std::string_view text) {
    auto file = std::make_unique<TextFileWriter>(path);
    try {
        file->write(text);
        file->close();
    } catch (const Failure&) {
        file.reset();
        std::remove(path.c_str());
        throw;
    }
}

std::optional<std::string> readFirstLine(const std::string& path, size_t maxLength) {
    std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::fopen(path.c_str(), "rb"),
                                                         &std::fclose);
    if (!file) {
        return std::nullopt;
    }
    std::string line;
    for (int c = std::fgetc(file.get()); c != EOF && c != '\r' && c != '\n';
         c = std::fgetc(file.get())) {
        if (line.size() == maxLength) {
            break;
        }
        line += static_cast<char>(c);
    }
    return line;
}

void refuseFolder(const std::string& path) {
    if (isFolder(path)) {
        failOpen(path, EISDIR, true);
    }
}

std::vector<std::string> splitLines(std::string_view text) {
    std::vector<std::string> lines;
    std::string line;
    for (size_t i = 0; i < text.size(); ++i) {
        const char c = text[i];
        if (c == '\r' || c == '\n') {
            lines.push_back(line);
            line.clear();
            if (c == '\r' && i + 1 < text.size() && text[i + 1] == '\n') {
                ++i;
            }
        } else {
            line += c;
        }
    }
    if (!line.empty()) {
        lines.push_back(line);
    }
    return lines;
}

std::string bareFileName(std::string_view path) {
    const size_t slash = path.find_last_of("/\\");
    return std::string(slash == std::string_view::npos ? path : path.substr(slash + 1));
}

std::string folderOf(std::string_view path) {
    const size_t slash = path.find_last_of("/\\");
    return slash == std::string_view::npos ? std::string() : std::string(path.substr(0, slash));
}

std::string absolutePath(std::string_view path) {
    if (path.empty()) {
        return {};
    }
    std::error_code error;
    const std::filesystem::path absolute = std::filesystem::absolute(path, error);
    // Without a working folder the path can only stay as it was given.
    return error ? std::string(path) : absolute.lexically_normal().string();
}

} // namespace varo::core
