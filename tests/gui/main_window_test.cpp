#include "gui_test_support.hpp"

#include "core/failure.hpp"
#include "gui/help_viewer.hpp"
#include "gui/progress_bar.hpp"
#include "gui/quality_widget.hpp"
#include "gui/screen_registry.hpp"

#include <QAction>
#include <QKeyEvent>
#include <QTextBlock>
#include <QTextBrowser>
#include <QThread>
#include <filesystem>

using namespace varo;
using varo::testing::GuiFixture;

TEST_F(GuiFixture, ToolbarKeysWithoutAScreenAreDisabled) {
    window->showHome();
    EXPECT_TRUE(window->toolbarAction(screens::ScreenKey::Quality)->isEnabled());
    for (const auto& key : screens::hubToolbar()) {
        EXPECT_EQ(window->toolbarAction(key.key)->isEnabled(),
                  key.key == screens::ScreenKey::Home || window->screenAvailable(key.key))
            << key.name;
    }
}

TEST_F(GuiFixture, GoingToAScreenBuildsItAfresh) {
    window->showHome();
    window->goTo(screens::ScreenKey::Quality);
    auto* first = qobject_cast<gui::QualityWidget*>(window->currentScreen());
    ASSERT_NE(first, nullptr);
    first->record().file.choose("/some/file.dat");
    window->goTo(screens::ScreenKey::Quality); // the key of the screen showing does nothing
    EXPECT_EQ(window->currentScreen(), first);
    window->goTo(screens::ScreenKey::Home);
    window->goTo(screens::ScreenKey::Quality);
    auto* second = qobject_cast<gui::QualityWidget*>(window->currentScreen());
    ASSERT_NE(second, nullptr);
    EXPECT_EQ(second->record().file.text, "Not selected");
}

TEST_F(GuiFixture, ExitAsksAndNoKeepsTheWindow) {
    window->showHome();
    dialogs.answers = {false};
    EXPECT_FALSE(window->close());
    ASSERT_EQ(dialogs.questions.size(), 1u);
    EXPECT_EQ(dialogs.questions[0], "Do you really want to exit VARO?");
    dialogs.answers = {true};
    EXPECT_TRUE(window->close());
}

TEST_F(GuiFixture, IntroStartWritesSplashFalseWhenTickedAndExitAsksNothing) {
    window->showStart();
    find<QAbstractButton>("SplashCheck")->setChecked(true);
    click("StartButton");
    EXPECT_EQ(varo::testing::readFile(dir.path("VARO.INI")), "[VARO]\r\nSplash=False\r\n");
    EXPECT_EQ(window->currentPage()->objectName(), "Home");

    window->showStart();
    click("ExitButton");
    EXPECT_TRUE(dialogs.questions.empty());
    EXPECT_FALSE(window->isVisible());
}

TEST_F(GuiFixture, EscapeDuringARunAsksAndAYesStopsIt) {
    window->showHome();
    window->goTo(screens::ScreenKey::Quality);
    gui::ScreenWidget* screen = window->currentScreen();
    dialogs.answers = {true};
    bool cancelled = false;
    window->runs().run(screen->progressBar(), [&](core::Progress& progress) {
        EXPECT_TRUE(screen->progressBar()->isVisible());
        QApplication::postEvent(screen,
                                new QKeyEvent(QEvent::KeyPress, Qt::Key_Escape, Qt::NoModifier));
        QThread::msleep(40); // past the progress throttle, so the next report yields
        progress.report(1, 2, "Working");
        try {
            progress.throwIfStopped();
        } catch (const core::Cancelled&) {
            cancelled = true;
        }
        // One confirmation cancels one operation.
        EXPECT_FALSE(progress.stopRequested());
    });
    EXPECT_TRUE(cancelled);
    ASSERT_EQ(dialogs.questions.size(), 1u);
    EXPECT_EQ(dialogs.questions[0], "Do you really want to cancel processing?");
    EXPECT_FALSE(screen->progressBar()->isVisible());
}

TEST_F(GuiFixture, SettingsBackRefreshesTheScreenBelow) {
    window->showHome();
    window->goTo(screens::ScreenKey::Quality);
    window->openSettings();
    type("MissingCodeText", "-99");
    click("menuBack");
    EXPECT_EQ(window->currentPage(), window->currentScreen());
    EXPECT_EQ(text("MissingCode"), "-99");
}

TEST_F(GuiFixture, HelpViewerShowsTheBuiltInGuide) {
    gui::HelpViewer viewer(window.get());
    auto* browser = viewer.findChild<QTextBrowser*>();
    ASSERT_NE(browser, nullptr);
    EXPECT_NE(browser->toPlainText().indexOf("VARO user guide"), -1);
    EXPECT_NE(browser->toPlainText().indexOf("A first run: the sample data"), -1);
}

// Every work screen's Help key opens the guide at the screen's own section, and the
// settings screen's at "Settings".
TEST_F(GuiFixture, HelpKeysOpenTheGuideAtTheScreensSection) {
    window->showHome();
    const auto helpShown = [&](const QString& key) -> QString {
        click(key);
        auto* viewer = window->findChild<gui::HelpViewer*>();
        if (viewer == nullptr || !viewer->isVisible()) {
            return "no viewer";
        }
        const QString heading = viewer->browser()->textCursor().block().text();
        const QRect seen = viewer->browser()->viewport()->rect();
        const QRect place = viewer->browser()->cursorRect(viewer->browser()->textCursor());
        EXPECT_TRUE(seen.contains(place)) << heading.toStdString();
        delete viewer;
        return heading;
    };
    int screens = 0;
    for (const auto& key : screens::hubToolbar()) {
        if (key.key == screens::ScreenKey::Home || !window->screenAvailable(key.key)) {
            continue;
        }
        goTo(key.key);
        EXPECT_EQ(helpShown("tb1Help"), gui::helpSection(key.key)) << key.name;
        EXPECT_FALSE(gui::helpSection(key.key).isEmpty()) << key.name;
        ++screens;
    }
    EXPECT_EQ(screens, 8);
    window->openSettings();
    EXPECT_EQ(helpShown("menuHelp"), "Settings");
}

// Pickers open where the screen last picked, on a later visit too; the predictor folder
// chosen on the screening screen is where the calibration screen's folder picker opens.
TEST_F(GuiFixture, PickersOpenInTheFolderLastUsedOnTheScreen) {
    std::filesystem::create_directories(dir.path("data"));
    const std::string data = dir.write("data/rain.dat", "1\r\n");
    window->showHome();
    goTo(screens::ScreenKey::Quality);
    dialogs.pickedFiles = {data};
    click("SelectFileButton");
    goTo(screens::ScreenKey::Transform); // a screen of its own
    click("SelectFileButton");
    goTo(screens::ScreenKey::Quality);
    click("SelectFileButton");
    EXPECT_EQ(dialogs.startFolders,
              (std::vector<std::string>{state.defaultDir, state.defaultDir, dir.path("data")}));

    goTo(screens::ScreenKey::Screen);
    dialogs.pickedFiles = {dir.path("data")};
    click("Dir2");
    goTo(screens::ScreenKey::Calibrate);
    click("Dir2");
    EXPECT_EQ(dialogs.startFolders.back(), dir.path("data"));
}
