#include "core/series_file.hpp"

#include "core/failure.hpp"
#include "core/number_format.hpp"

#include <cerrno>
#include <charconv>
#include <cstring>
#include <filesystem>
#include <sys/stat.h>

namespace varo::core {

namespace {

// A reader's buffer. Runs open up to a hundred files at once, and smaller buffers stay in
// the caches; lines longer than a chunk make the buffer grow.
constexpr size_t ReadChunk = 1 << 16;
constexpr size_t WriteChunk = 1 << 20;

bool isSeparator(char c) {
    return c == ' ' || c == '\t' || c == '\r' || c == '\n' || c == ',';
}
bool isBlank(char c) {
    return c == ' ' || c == '\t';
}
bool isDigitOrPoint(char c) {
    return (c >= '0' && c <= '9') || c == '.';
}

// A whole token as a decimal number: optional sign, digits with a point, optional exponent.
// Words such as "inf" and "nan" are not numbers here.
bool parseNumberToken(const char* first, const char* last, double& value) {
    const char* start = first;
    if (start < last && *start == '+') {
        ++start;
    }
    const char* digits = start < last && *start == '-' ? start + 1 : start;
    if (digits >= last || !isDigitOrPoint(*digits)) {
        return false;
    }
    const auto result = std::from_chars(start, last, value);
    return result.ptr == last &&
           (result.ec == std::errc() || result.ec == std::errc::result_out_of_range);
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

} // namespace

SeriesReader::SeriesReader(const std::string& path) : path_(path), buffer_(ReadChunk) {
    if (isFolder(path)) {
        failOpen(path, EISDIR, false);
    }
    file_ = std::fopen(path.c_str(), "rb");
    if (file_ == nullptr) {
        failOpen(path, errno, false);
    }
}

SeriesReader::~SeriesReader() {
    if (file_ != nullptr) {
        std::fclose(file_);
    }
}

SeriesReader::SeriesReader(SeriesReader&& other) noexcept
    : path_(std::move(other.path_)), file_(other.file_), buffer_(std::move(other.buffer_)),
      pos_(other.pos_), end_(other.end_), eof_(other.eof_), line_(other.line_),
      previousCR_(other.previousCR_) {
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

void SeriesReader::countLineEnd(char c) {
    if (c == '\r' || (c == '\n' && !previousCR_)) {
        ++line_;
    }
    previousCR_ = c == '\r';
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
                countLineEnd(c);
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
        countLineEnd(c);
        if (c == '\r' && (pos_ < end_ || fill()) && buffer_[pos_] == '\n') {
            ++pos_;
            countLineEnd('\n');
        }
    }
}

void SeriesReader::failPastEnd() const {
    throw PastEndFailure(path_, lastValueLine_);
}

double SeriesReader::readNumber() {
    skipSeparators();
    if (pos_ >= end_) {
        failPastEnd();
    }
    size_t tokenEnd = pos_;
    for (;;) {
        while (tokenEnd < end_ && !isSeparator(buffer_[tokenEnd])) {
            ++tokenEnd;
        }
        if (tokenEnd < end_) {
            break;
        }
        const size_t offset = tokenEnd - pos_;
        if (!fill()) {
            tokenEnd = end_;
            break;
        }
        tokenEnd = pos_ + offset;
    }
    const char* first = buffer_.data() + pos_;
    const char* last = buffer_.data() + tokenEnd;
    double value = 0.0;
    if (!parseNumberToken(first, last, value)) {
        throw Failure(failure::TypeMismatch, "'" + std::string(first, last) + "' on line " +
                                                 std::to_string(line_) + " of '" + path_ +
                                                 "' is not a number.");
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
        if (pos_ < end_ || !fill()) {
            break;
        }
    }
    if (pos_ < end_) {
        const char c = buffer_[pos_++];
        countLineEnd(c);
        if (c == '\r' && (pos_ < end_ || fill()) && buffer_[pos_] == '\n') {
            ++pos_;
            countLineEnd('\n');
        }
    }
    previousCR_ = false;
    return text;
}

bool SeriesReader::atEnd() {
    skipSeparators();
    return pos_ >= end_;
}

double zoneField(std::string_view line, int k) {
    const size_t start = static_cast<size_t>(14 * (k - 1));
    if (start >= line.size()) {
        return 0.0;
    }
    std::string_view field = line.substr(start, 14);
    while (!field.empty() && isBlank(field.front())) {
        field.remove_prefix(1);
    }
    size_t length = 0;
    // The leading number: sign, digits, point, exponent.
    if (length < field.size() && (field[length] == '-' || field[length] == '+')) {
        ++length;
    }
    while (length < field.size() &&
           ((field[length] >= '0' && field[length] <= '9') || field[length] == '.' ||
            field[length] == 'e' || field[length] == 'E' ||
            ((field[length] == '-' || field[length] == '+') &&
             (field[length - 1] == 'e' || field[length - 1] == 'E')))) {
        ++length;
    }
    std::string_view number = field.substr(0, length);
    if (!number.empty() && number.front() == '+') {
        number.remove_prefix(1);
    }
    double value = 0.0;
    const auto result = std::from_chars(number.data(), number.data() + number.size(), value);
    if (result.ec != std::errc()) {
        return 0.0;
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
