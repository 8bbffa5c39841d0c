#include "charts/chart_export.hpp"

#include "core/failure.hpp"

#include <algorithm>
#include <cctype>
#include <charconv>
#include <filesystem>
#include <system_error>
#include <unistd.h>

namespace varo::charts {

namespace {

std::string lowerCase(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return text;
}

std::optional<int> wholeNumber(std::string_view text) {
    int value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc() || end != text.data() + text.size() || text.empty()) {
        return std::nullopt;
    }
    return value;
}

} // namespace

std::optional<PictureFormat> pictureFormatOf(const std::string& path) {
    const std::string extension = lowerCase(std::filesystem::path(path).extension().string());
    if (extension == ".png") {
        return PictureFormat::Png;
    }
    if (extension == ".svg") {
        return PictureFormat::Svg;
    }
    return std::nullopt;
}

std::optional<std::string> checkPicturePath(const std::string& path) {
    if (!pictureFormatOf(path)) {
        return "Cannot save the chart as '" + path + "': the file name must end in .png or .svg.";
    }
    const std::filesystem::path target(path);
    const std::filesystem::path folder =
        target.has_parent_path() ? target.parent_path() : std::filesystem::path(".");
    std::error_code error;
    if (!std::filesystem::is_directory(folder, error)) {
        return "Cannot save the chart as '" + path + "': the folder '" + folder.string() +
               "' does not exist.";
    }
    if (std::filesystem::is_directory(target, error)) {
        return "Cannot save the chart as '" + path + "': it is a folder.";
    }
    return std::nullopt;
}

std::variant<PictureSize, std::string> parsePictureSize(const std::string& text) {
    const std::string message =
        "A picture size is WIDTHxHEIGHT in pixels, each from " + std::to_string(MinPictureSide) +
        " to " + std::to_string(MaxPictureSide) + ", such as 800x600, not '" + text + "'.";
    const size_t cross = lowerCase(text).find('x');
    if (cross == std::string::npos) {
        return message;
    }
    const auto width = wholeNumber(std::string_view(text).substr(0, cross));
    const auto height = wholeNumber(std::string_view(text).substr(cross + 1));
    const auto inRange = [](int side) { return side >= MinPictureSide && side <= MaxPictureSide; };
    if (!width || !height || !inRange(*width) || !inRange(*height)) {
        return message;
    }
    return PictureSize{*width, *height};
}

std::string temporaryPicturePath(const std::string& path) {
    const std::filesystem::path target(path);
    std::string name = ".";
    name.append(target.filename().string()).append(".").append(std::to_string(::getpid()));
    name.append(".part");
    return (target.parent_path() / name).string();
}

void commitPicture(const std::string& temporary, const std::string& path) {
    std::error_code error;
    std::filesystem::rename(temporary, path, error);
    if (error) {
        discardPicture(temporary);
        throw core::Failure(core::failure::PathAccessError,
                            "Cannot save the chart as '" + path + "': " + error.message() + ".");
    }
}

void discardPicture(const std::string& temporary) {
    std::error_code error;
    std::filesystem::remove(temporary, error);
}

} // namespace varo::charts
