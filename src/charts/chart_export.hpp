// Saving a chart as a picture: the two formats, the checks of a picture's path and size
// made before anything is drawn, and the interface through which the command line asks
// for a picture without knowing how it is drawn (the desktop program's renderer provides
// it; a build without the desktop program has none).
#pragma once

#include "charts/chart_model.hpp"

#include <optional>
#include <string>
#include <variant>

namespace varo::charts {

enum class PictureFormat { Png, Svg };

struct PictureSize {
    int width = 800;
    int height = 600;
    friend bool operator==(const PictureSize&, const PictureSize&) = default;
};

inline constexpr int MinPictureSide = 100;
inline constexpr int MaxPictureSide = 10000;

// The format a path asks for by its extension (.png or .svg, in any case).
std::optional<PictureFormat> pictureFormatOf(const std::string& path);

// Why a chart cannot be saved to the path (an unknown extension, a folder that does not
// exist), or nothing when it can be tried.
std::optional<std::string> checkPicturePath(const std::string& path);

// "WIDTHxHEIGHT" with each side from 100 to 10000 pixels, or the message why not.
std::variant<PictureSize, std::string> parsePictureSize(const std::string& text);

// Draws a chart into a picture file. The file appears whole or not at all: the picture is
// written to a temporary file beside it and renamed. Failures are core::Failure naming
// the path.
class ChartExporter {
public:
    virtual ~ChartExporter() = default;
    virtual void save(const ChartModel& chart, const std::string& path, PictureSize size) = 0;
};

// A temporary name in the folder of `path` for a picture being written, and the rename
// that puts it in place (replacing an older file) or removes it on failure.
std::string temporaryPicturePath(const std::string& path);
void commitPicture(const std::string& temporary, const std::string& path);
void discardPicture(const std::string& temporary);

} // namespace varo::charts
