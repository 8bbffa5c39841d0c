#include "charts/chart_export.hpp"
#include "core/failure.hpp"
#include "support/temp_dir.hpp"

#include <filesystem>
#include <gtest/gtest.h>

using namespace varo::charts;
using varo::testing::TempDir;

TEST(PictureFormat, ComesFromTheExtensionInAnyCase) {
    EXPECT_EQ(pictureFormatOf("chart.png"), PictureFormat::Png);
    EXPECT_EQ(pictureFormatOf("out/Chart.PNG"), PictureFormat::Png);
    EXPECT_EQ(pictureFormatOf("chart.Svg"), PictureFormat::Svg);
    EXPECT_EQ(pictureFormatOf("chart.jpg"), std::nullopt);
    EXPECT_EQ(pictureFormatOf("chart"), std::nullopt);
    EXPECT_EQ(pictureFormatOf("png"), std::nullopt);
    EXPECT_EQ(pictureFormatOf("chart.png.txt"), std::nullopt);
}

TEST(PicturePath, IsCheckedBeforeAnythingIsDrawn) {
    TempDir dir;
    std::filesystem::create_directories(dir.path("sub.png"));
    const std::string missing = dir.path("no-such-folder/chart.png");
    EXPECT_EQ(checkPicturePath(missing), "Cannot save the chart as '" + missing +
                                             "': the folder '" + dir.path("no-such-folder") +
                                             "' does not exist.");
    EXPECT_EQ(checkPicturePath(dir.path("chart.gif")),
              "Cannot save the chart as '" + dir.path("chart.gif") +
                  "': the file name must end in .png or .svg.");
    EXPECT_EQ(checkPicturePath(dir.path("sub.png")),
              "Cannot save the chart as '" + dir.path("sub.png") + "': it is a folder.");
    EXPECT_EQ(checkPicturePath(dir.path("chart.svg")), std::nullopt);
    EXPECT_EQ(checkPicturePath("relative-chart.png"), std::nullopt);
}

TEST(PictureSize, IsWidthByHeightWithinBounds) {
    struct Case {
        std::string text;
        std::optional<PictureSize> size;
    };
    const std::vector<Case> cases = {
        {"800x600", PictureSize{800, 600}},
        {"100X10000", PictureSize{100, 10000}},
        {"99x600", std::nullopt},
        {"800x10001", std::nullopt},
        {"800", std::nullopt},
        {"800x", std::nullopt},
        {"x600", std::nullopt},
        {"800x600px", std::nullopt},
        {"-800x600", std::nullopt},
        {"8.5x600", std::nullopt},
    };
    for (const Case& test : cases) {
        const auto parsed = parsePictureSize(test.text);
        if (test.size) {
            ASSERT_TRUE(std::holds_alternative<PictureSize>(parsed)) << test.text;
            EXPECT_EQ(std::get<PictureSize>(parsed), *test.size) << test.text;
        } else {
            ASSERT_TRUE(std::holds_alternative<std::string>(parsed)) << test.text;
            EXPECT_NE(std::get<std::string>(parsed).find("'" + test.text + "'"), std::string::npos);
        }
    }
}

TEST(PictureFiles, AppearWholeByRenameAndReplaceAnOlderOne) {
    TempDir dir;
    const std::string path = dir.write("chart.png", "old picture");
    const std::string temporary = temporaryPicturePath(path);
    EXPECT_EQ(std::filesystem::path(temporary).parent_path(), std::filesystem::path(dir.folder()));
    EXPECT_NE(temporary, path);
    dir.write(std::filesystem::path(temporary).filename().string(), "new picture");
    commitPicture(temporary, path);
    EXPECT_EQ(varo::testing::readFile(path), "new picture");
    EXPECT_FALSE(varo::testing::fileExists(temporary));

    dir.write(std::filesystem::path(temporary).filename().string(), "half");
    discardPicture(temporary);
    EXPECT_FALSE(varo::testing::fileExists(temporary));
    EXPECT_EQ(varo::testing::readFile(path), "new picture");
}

TEST(PictureFiles, AFailedRenameRemovesThePartAndNamesThePath) {
    TempDir dir;
    const std::string temporary = dir.write(".part", "picture");
    const std::string into = dir.path("missing/chart.png");
    try {
        commitPicture(temporary, into);
        FAIL() << "no failure";
    } catch (const varo::core::Failure& failure) {
        EXPECT_NE(failure.description().find(into), std::string::npos);
    }
    EXPECT_FALSE(varo::testing::fileExists(temporary));
}
