#include "core/output_paths.hpp"
#include "support/temp_dir.hpp"

#include <filesystem>
#include <gtest/gtest.h>

using namespace varo::core;
using varo::testing::TempDir;

TEST(SameFile, SpellingsAndLinksOfOneFileAreTheSameFile) {
    TempDir dir;
    const auto data = dir.write("p.dat", "1\r\n");
    const auto other = dir.write("q.dat", "1\r\n");
    std::filesystem::create_symlink(data, dir.path("link.dat"));
    std::filesystem::create_hard_link(data, dir.path("hard.dat"));
    std::filesystem::create_directories(dir.path("sub"));
    struct Case {
        std::string a;
        std::string b;
        bool same;
    };
    const std::vector<Case> cases = {
        {data, data, true},
        {data, dir.path("sub/../p.dat"), true},
        {data, dir.path("./p.dat"), true},
        {data, dir.path("link.dat"), true},
        {dir.path("link.dat"), data, true},
        {data, dir.path("hard.dat"), true},
        {data, other, false},
        {data, dir.path("new.dat"), false},
        {dir.path("new.dat"), dir.path("sub/../new.dat"), true},
        {dir.path("new.dat"), dir.path("new2.dat"), false},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(sameFile(c.a, c.b), c.same) << c.a << " / " << c.b;
    }
}

TEST(OutputOverInput, NamesTheFirstOutputThatIsAnInputAndTheInput) {
    TempDir dir;
    const auto model = dir.write("model.PAR", "x");
    const auto predictor = dir.write("p1.dat", "1");
    std::filesystem::create_symlink(predictor, dir.path("run.OUT"));
    EXPECT_FALSE(outputOverInput({dir.path("new.OUT"), dir.path("new.SIM")}, {model, predictor}));
    EXPECT_EQ(outputOverInput({dir.path("run.OUT"), dir.path("run.SIM")}, {model, predictor}),
              "The output file '" + dir.path("run.OUT") + "' is the same file as the input file '" +
                  predictor + "': writing it would destroy the input. Choose another output file.");
    EXPECT_TRUE(outputOverInput({dir.path("x.OUT"), model}, {predictor, model}));
    EXPECT_FALSE(outputOverInput({""}, {""}));
}
