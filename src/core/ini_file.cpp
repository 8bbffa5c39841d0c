#include "core/ini_file.hpp"

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

bool equalNoCase(std::string_view a, std::string_view b) {
    return a.size() == b.size() && std::equal(a.begin(), a.end(), b.begin(), [](char x, char y) {
               return std::tolower(static_cast<unsigned char>(x)) ==
                      std::tolower(static_cast<unsigned char>(y));
           });
}

// Lines of a file without their line ends (CR LF, LF or CR); empty when it cannot be read.
std::vector<std::string> readLines(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    std::vector<std::string> lines;
    if (!in) {
        return lines;
    }
    std::stringstream content;
    content << in.rdbuf();
    const std::string text = content.str();
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

std::string readProfileString(const std::string& path, std::string_view section,
                              std::string_view key, std::string_view defaultText,
                              size_t bufferSize) {
    const size_t limit = bufferSize > 0 ? bufferSize - 1 : 0;
    const auto fit = [limit](std::string_view text) { return std::string(text.substr(0, limit)); };
    bool inSection = false;
    for (const std::string& line : readLines(path)) {
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

bool writeProfileString(const std::string& path, std::string_view section, std::string_view key,
                        std::string_view value) {
    std::vector<std::string> lines = readLines(path);
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
