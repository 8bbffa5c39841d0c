#include "core/ini_file.hpp"

#include "core/series_file.hpp"

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <optional>
#include <sstream>
#include <unistd.h>
#include <vector>

namespace varo::core {

namespace {

std::string_view trim(std::string_view text) {
    const auto isSpace = [](char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n'; };
    while (!text.empty() && isSpace(text.front())) {
        text.remove_prefix(1);
    }
    while (!text.empty() && isSpace(text.back())) {
        text.remove_suffix(1);
    }
    return text;
}

// A file read for its lines: whether it could be read, and why not.
struct IniText {
    std::vector<std::string> lines; // without their line ends (CR LF, LF or CR)
    bool byteOrderMark = false;     // the file started with one; a rewrite keeps it
    std::optional<std::string> problem;
};

// An absent file reads as no lines and no problem. A file larger than the bound is not
// read at all: no settings file is that large, and nothing of it is held.
IniText readIniText(const std::string& path) {
    namespace fs = std::filesystem;
    IniText result;
    std::error_code error;
    const fs::file_status status = fs::status(path, error);
    if (!fs::exists(status)) {
        return result;
    }
    if (fs::is_directory(status)) {
        result.problem = "it is a folder";
        return result;
    }
    // A pipe or a device could make the read wait, or never end.
    if (!fs::is_regular_file(status)) {
        result.problem = "it is not a regular file";
        return result;
    }
    const auto size = fs::file_size(path, error);
    if (!error && size > MaxIniFileSize) {
        result.problem = "it is larger than " + std::to_string(MaxIniFileSize / 1024) +
                         " KiB, far larger than a settings file";
        return result;
    }
    std::ifstream in(path, std::ios::binary);
    std::string text;
    if (in) {
        std::stringstream content;
        content << in.rdbuf();
        text = content.str();
    }
    if (!in && !in.eof()) {
        result.problem = "it cannot be read";
        return result;
    }
    if (text.compare(0, Utf8ByteOrderMark.size(), Utf8ByteOrderMark) == 0) {
        result.byteOrderMark = true;
        text.erase(0, Utf8ByteOrderMark.size());
    }
    result.lines = splitLines(text);
    return result;
}

// The section name of a header line, empty view when the line is no header.
std::optional<std::string_view> sectionName(std::string_view line) {
    line = trim(line);
    if (line.size() < 2 || line.front() != '[') {
        return std::nullopt;
    }
    const size_t close = line.find(']');
    if (close == std::string_view::npos) {
        return std::nullopt;
    }
    return trim(line.substr(1, close - 1));
}

// A file with lines other than blank ones holds the section, or it is some other file.
std::optional<std::string> notIniProblem(const IniText& text, std::string_view section) {
    bool blank = true;
    for (const std::string& line : text.lines) {
        if (const auto name = sectionName(line); name && equalNoCase(*name, section)) {
            return std::nullopt;
        }
        blank = blank && trim(line).empty();
    }
    if (blank) {
        return std::nullopt;
    }
    return "it has no [" + std::string(section) + "] section, so it is not a settings file";
}

bool isKeyLine(std::string_view line, std::string_view key, std::string_view& value) {
    const size_t equals = line.find('=');
    if (equals == std::string_view::npos) {
        return false;
    }
    if (!equalNoCase(trim(line.substr(0, equals)), key)) {
        return false;
    }
    value = trim(line.substr(equals + 1));
    return true;
}

std::string_view unquote(std::string_view value) {
    if (value.size() >= 2 && (value.front() == '"' || value.front() == '\'') &&
        value.back() == value.front()) {
        return value.substr(1, value.size() - 2);
    }
    return value;
}

} // namespace

bool equalNoCase(std::string_view a, std::string_view b) {
    return a.size() == b.size() && std::equal(a.begin(), a.end(), b.begin(), [](char x, char y) {
               return std::tolower(static_cast<unsigned char>(x)) ==
                      std::tolower(static_cast<unsigned char>(y));
           });
}

std::string readProfileString(const std::string& path, std::string_view section,
                              std::string_view key, std::string_view defaultText,
                              size_t bufferSize) {
    const size_t limit = bufferSize > 0 ? bufferSize - 1 : 0;
    const auto fit = [limit](std::string_view text) { return std::string(text.substr(0, limit)); };
    bool inSection = false;
    for (const std::string& line : readIniText(path).lines) {
        if (const auto name = sectionName(line)) {
            inSection = equalNoCase(*name, section);
            continue;
        }
        std::string_view value;
        if (inSection && isKeyLine(line, key, value)) {
            return fit(unquote(value));
        }
    }
    return fit(defaultText);
}

std::optional<std::string> iniFileProblem(const std::string& path, std::string_view section) {
    const IniText text = readIniText(path);
    return text.problem ? text.problem : notIniProblem(text, section);
}

bool writeProfileString(const std::string& path, std::string_view section, std::string_view key,
                        std::string_view value) {
    const IniText text = readIniText(path);
    if (text.problem || notIniProblem(text, section)) {
        return false;
    }
    std::vector<std::string> lines = text.lines;
    const std::string keyLine = std::string(key) + "=" + std::string(value);

    bool inSection = false;
    bool sectionFound = false;
    size_t insertAt = lines.size();
    bool replaced = false;
    for (size_t i = 0; i < lines.size() && !replaced; ++i) {
        if (const auto name = sectionName(lines[i])) {
            if (inSection) {
                break;
            }
            inSection = equalNoCase(*name, section);
            if (inSection) {
                sectionFound = true;
                insertAt = i + 1;
            }
            continue;
        }
        std::string_view old;
        if (inSection && isKeyLine(lines[i], key, old)) {
            lines[i] = keyLine;
            replaced = true;
        } else if (inSection && !trim(lines[i]).empty()) {
            insertAt = i + 1;
        }
    }
    if (!replaced) {
        if (sectionFound) {
            lines.insert(lines.begin() + static_cast<long>(insertAt), keyLine);
        } else {
            std::string header(1, '[');
            header.append(section).push_back(']');
            lines.push_back(header);
            lines.push_back(keyLine);
        }
    }

    std::error_code error;
    const std::filesystem::path target(path);
    if (target.has_parent_path()) {
        std::filesystem::create_directories(target.parent_path(), error);
    }
    const std::string temporary = path + ".tmp" + std::to_string(::getpid());
    {
        std::ofstream out(temporary, std::ios::binary | std::ios::trunc);
        if (!out) {
            return false;
        }
        if (text.byteOrderMark) {
            out << Utf8ByteOrderMark;
        }
        for (const std::string& line : lines) {
            out << line << "\r\n";
        }
        out.flush();
        if (!out) {
            out.close();
            std::filesystem::remove(temporary, error);
            return false;
        }
    }
    std::filesystem::rename(temporary, target, error);
    if (error) {
        std::filesystem::remove(temporary, error);
        return false;
    }
    return true;
}

} // namespace varo::core
