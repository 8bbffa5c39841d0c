// The corpus's own machinery must see what it claims to see: a child's signal, hang and
// output, every kind of change in a folder, and the edits that make hostile files.
#include "robustness/case_runner.hpp"
#include "robustness/child_process.hpp"
#include "robustness/folder_snapshot.hpp"
#include "robustness/mutations.hpp"

#include <algorithm>
#include <csignal>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <sys/stat.h>

using namespace varo::robustness;

namespace {

ChildResult shell(const std::string& script,
                  std::chrono::milliseconds limit = std::chrono::seconds(10)) {
    ChildRequest request;
    request.arguments = {"/bin/sh", "-c", script};
    request.environment = {"PATH=/usr/bin:/bin"};
    request.workingFolder = std::string("/");
    request.timeLimit = limit;
    return runChild(request);
}

} // namespace

TEST(RobustnessHarness, ChildEndings) {
    const ChildResult exited = shell("echo out; echo err >&2; exit 3");
    EXPECT_EQ(exited.exitCode, 3);
    EXPECT_EQ(exited.out, "out\n");
    EXPECT_EQ(exited.err, "err\n");

    const ChildResult killed = shell("kill -SEGV $$");
    EXPECT_EQ(killed.signal, SIGSEGV);
    EXPECT_EQ(killed.exitCode, -1);

    const ChildResult hung = shell("sleep 5", std::chrono::milliseconds(200));
    EXPECT_TRUE(hung.timedOut);

    // Output past the cap is counted, not kept.
    const ChildResult flood = shell("head -c 3000000 /dev/zero >&2");
    EXPECT_EQ(flood.errBytes, 3000000U);
    EXPECT_EQ(flood.err.size(), CaptureLimit);
}

TEST(RobustnessHarness, ChildInterruptedOnceItCatchesTheSignal) {
    ChildRequest request;
    request.arguments = {"/bin/sh", "-c", "trap 'exit 42' INT; while :; do sleep 0.01; done"};
    request.environment = {"PATH=/usr/bin:/bin"};
    request.workingFolder = std::string("/");
    request.whileRunning = [](pid_t pid) {
        if (!catchesSignal(pid, SIGINT)) {
            return true;
        }
        ::kill(pid, SIGINT);
        return false;
    };
    EXPECT_EQ(runChild(request).exitCode, 42);
}

TEST(RobustnessHarness, SnapshotSeesEveryChange) {
    const std::string root = makeTemporaryFolder("varo-harness-");
    const auto write = [&](const std::string& name, const std::string& text) {
        std::ofstream(root + "/" + name, std::ios::binary) << text;
    };
    write("same.txt", "same");
    write("changed.txt", "before");
    write("touched.txt", "touched");
    write("removed.txt", "removed");
    std::filesystem::create_symlink("same.txt", root + "/link");
    const FolderSnapshot before = snapshotFolder(root);

    write("changed.txt", "after!");
    // The same bytes written again leave a new modification time.
    struct stat info {};
    ::stat((root + "/touched.txt").c_str(), &info);
    const timespec times[2] = {info.st_atim, {info.st_mtim.tv_sec + 1, info.st_mtim.tv_nsec}};
    ::utimensat(AT_FDCWD, (root + "/touched.txt").c_str(), times, 0);
    std::filesystem::remove(root + "/removed.txt");
    write("added.txt", "");
    std::filesystem::remove(root + "/link");
    std::filesystem::create_symlink("changed.txt", root + "/link");

    auto found = differences(before, snapshotFolder(root));
    std::sort(found.begin(), found.end());
    EXPECT_EQ(found,
              (std::vector<std::string>{"added: added.txt", "changed: changed.txt", "changed: link",
                                        "removed: removed.txt", "touched: touched.txt"}));
    EXPECT_TRUE(differences(before, snapshotFolder(root),
                            {"added.txt", "changed.txt", "link", "removed.txt", "touched.txt"})
                    .empty());
    std::filesystem::remove_all(root);
}

TEST(RobustnessHarness, Edits) {
    const std::string text = "a\r\nb\r\nc\r\n";
    struct Row {
        std::string name;
        std::string edited;
        std::string expected;
    };
    const std::vector<Row> rows{
        {"replace a line", replaceLine(text, 2, "x"), "a\r\nx\r\nc\r\n"},
        {"insert a line", insertLine(text, 1, "x"), "x\r\na\r\nb\r\nc\r\n"},
        {"first lines", firstLines(text, 2), "a\r\nb\r\n"},
        {"CR line ends", withLineEnds("a\nb\r\nc", "\r"), "a\rb\rc\r"},
        {"no final line end", withoutFinalLineEnd(text), "a\r\nb\r\nc"},
        {"a zone", replaceZone("1.000         2.000         \r\n", 1, 2, "abc"),
         "1.000         abc           \r\n"},
        {"a zone past the end", replaceZone("1.000\r\n", 1, 2, "-"),
         "1.000         -             \r\n"},
        {"13-character zones", withZoneWidth("1.000         2.000         3.000\r\n", 13),
         "1.000        2.000        3.000        \r\n"},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(row.edited, row.expected) << row.name;
    }
    EXPECT_EQ(lineCount("a\rb\nc\r\nd"), 4);
    EXPECT_THROW(replaceLine(text, 4, "x"), std::out_of_range);
}

TEST(RobustnessHarness, ShownTextIsSafe) {
    EXPECT_EQ(shown("a\x01\n\x7f"
                    "b"),
              "a\\x01\\n\\x7fb");
    EXPECT_EQ(shown(std::string(10, 'x'), 4), "xxxx... (10 bytes)");
}
