#include "cli_test_support.hpp"

#include "sampledata/sample_data.hpp"

#include <atomic>
#include <chrono>
#include <csignal>
#include <gtest/gtest.h>
#include <thread>

using namespace varo;
using varo::testing::readFile;
using varo::testing::TempDir;

namespace {
extern "C" void ignoreInterrupt(int) {}
} // namespace

// Ctrl-C during a long run stops it: exit status 130, the OUT file as far as written and
// an empty SIM file beside it.
TEST(CliCancel, InterruptStopsAGenerationWithExitStatus130) {
    TempDir dir;
    sampledata::SampleOptions options;
    options.lastYear = 1962;
    const auto files = sampledata::writeSampleData(dir.path("sample"), options);
    const auto calibrated =
        varo::testing::runVaro(dir, {"--set", "GlobalEDate=31/12/2099", "calibrate",
                                     files.maximumTemperature, files.predictorFolder + "/temp.dat",
                                     "-o", dir.path("tmax.PAR"), "--end", "31/12/1962"});
    ASSERT_EQ(calibrated.exitCode, 0) << calibrated.err;

    // Once the OUT file is there, interrupts keep coming until the run returns; outside the
    // run they are ignored.
    const auto previous = std::signal(SIGINT, ignoreInterrupt);
    std::atomic<bool> running{true};
    std::thread interrupter([&] {
        while (running && !varo::testing::fileExists(dir.path("run.OUT"))) {
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
        while (running) {
            std::this_thread::sleep_for(std::chrono::milliseconds(5));
            std::raise(SIGINT);
        }
    });
    const auto run = varo::testing::runVaro(
        dir, {"--set", "GlobalEDate=31/12/2099", "--set", "YearIndicator=360", "generate",
              dir.path("tmax.PAR"), "--predictors", files.futureFolder, "-o", dir.path("run.OUT"),
              "--days", "50040", "--ensemble", "100"});
    running = false;
    interrupter.join();
    std::signal(SIGINT, previous);

    EXPECT_EQ(run.exitCode, 130) << run.err;
    const std::string out = readFile(dir.path("run.OUT"));
    EXPECT_LT(std::count(out.begin(), out.end(), '\n'), 50040);
    EXPECT_TRUE(varo::testing::fileExists(dir.path("run.SIM")));
    EXPECT_EQ(readFile(dir.path("run.SIM")), "");
    EXPECT_EQ(run.err, "Cancelled: '" + dir.path("run.OUT") +
                           "' is incomplete: it holds only the days written before the cancel, "
                           "and '" +
                           dir.path("run.SIM") + "' is empty.\n");
}
