// The frame every screen of the desktop program shares: a title, a row of the screen's
// own keys, the content, and a progress bar; entry fields bound to the screen record.
#pragma once

#include "gui/field_binder.hpp"
#include "gui/screen_context.hpp"

#include <QWidget>
#include <functional>
#include <vector>

class QBoxLayout;
class QHBoxLayout;
class QLineEdit;
class QPushButton;
class QVBoxLayout;

namespace varo::gui {

class ProgressBar;

class ScreenWidget : public QWidget {
    Q_OBJECT
public:
    ScreenWidget(ScreenContext& context, const QString& title, QWidget* parent = nullptr);

    // Shows the global values afresh after the settings changed.
    virtual void refreshGlobals() {}
    ProgressBar* progressBar() const { return progress_; }

protected:
    // A key of the screen's own toolbar, named like "tb1Check" for tests to find.
    QPushButton* addKey(const QString& text, const QString& name,
                        const std::function<void()>& action);
    // The keys that close a work screen's toolbar: Reset (when the screen has one), Settings
    // and Help.
    void addClosingKeys(const std::function<void()>& reset);
    // Binds an entry field to a record field and its check, run on leaving the field.
    QLineEdit* bindField(const QString& name, screens::TextField& field,
                         const std::function<bool()>& check = {}) {
        return fields_->bind(this, name, field, check);
    }
    // Before a key acts every entry's text goes into the record (the keys take no focus,
    // so no field has been left).
    void syncFields() {
        fields_->finishEditing();
        fields_->sync();
    }
    void showFields() { fields_->show(); }
    // Runs a long computation under the run host with this screen's progress bar.
    void runLong(const std::function<void(core::Progress&)>& body);

    QVBoxLayout* content() const { return content_; }
    ScreenContext& context_;

private:
    FieldBinder* fields_;
    QHBoxLayout* keys_;
    QVBoxLayout* content_;
    ProgressBar* progress_;
};

// Passes everything on to the screen's dialogs, but first lets the screen show what its
// record holds, so that what a run found stands on the screen behind the box that reports
// it rather than after the box is closed.
class ShowFirstDialogs final : public screens::Dialogs {
public:
    ShowFirstDialogs(screens::Dialogs& inner, std::function<void()> show)
        : inner_(inner), show_(std::move(show)) {}

    void message(std::string_view title, std::string_view text, screens::Icon icon) override {
        show_();
        inner_.message(title, text, icon);
    }
    bool askYesNo(std::string_view title, std::string_view text, screens::Icon icon) override {
        show_();
        return inner_.askYesNo(title, text, icon);
    }
    std::optional<std::string> pickOpenFile(std::string_view filter,
                                            std::string_view startFolder) override {
        return inner_.pickOpenFile(filter, startFolder);
    }
    std::optional<std::string> pickSaveFile(std::string_view filter, std::string_view startFolder,
                                            std::string_view defaultExtension) override {
        return inner_.pickSaveFile(filter, startFolder, defaultExtension);
    }
    std::optional<std::string> pickFolder(std::string_view startFolder) override {
        return inner_.pickFolder(startFolder);
    }

private:
    screens::Dialogs& inner_;
    std::function<void()> show_;
};

// A read-only text field for a result.
QLineEdit* resultField(const QString& name, QWidget* parent = nullptr);

} // namespace varo::gui
