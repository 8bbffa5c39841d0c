// Offscreen tests of the desktop program: a window with scripted message boxes, its own
// settings file, and helpers to find, type into and click the named controls.
#pragma once

#include "gui/main_window.hpp"
#include "screens/navigation.hpp"
#include "support/scripted_dialogs.hpp"
#include "support/temp_dir.hpp"

#include <QAbstractButton>
#include <QApplication>
#include <QLineEdit>
#include <QTest>
#include <gtest/gtest.h>

namespace varo::testing {

class GuiFixture : public ::testing::Test {
protected:
    TempDir dir;
    core::ProgramState state;
    ScriptedDialogs dialogs;
    std::unique_ptr<gui::MainWindow> window;

    GuiFixture() {
        screens::startProgram(state, dir.path("VARO.INI"));
        window = std::make_unique<gui::MainWindow>(state, &dialogs);
        window->show();
        QApplication::setActiveWindow(window.get());
        EXPECT_TRUE(QTest::qWaitForWindowActive(window.get()));
    }

    // Goes to a screen and deletes the page left at once, so that names find the new one.
    void goTo(screens::ScreenKey key) const {
        window->goTo(key);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }

    template <typename T = QWidget>
    T* find(const QString& name) const {
        T* found = window->findChild<T*>(name);
        EXPECT_NE(found, nullptr) << name.toStdString();
        return found;
    }

    // Clicks near the left edge, where a radio button or tick box has its indicator.
    void click(const QString& name) const {
        QAbstractButton* button = find<QAbstractButton>(name);
        QTest::mouseClick(button, Qt::LeftButton, {}, QPoint(8, button->height() / 2));
    }

    // Types a text into an entry and leaves it, as a person does.
    void type(const QString& name, const QString& text) const {
        QLineEdit* edit = find<QLineEdit>(name);
        edit->setFocus();
        edit->selectAll();
        QTest::keyClicks(edit, text);
        emit edit->editingFinished();
    }

    QString text(const QString& name) const { return find<QLineEdit>(name)->text(); }
};

} // namespace varo::testing
