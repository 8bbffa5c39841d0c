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

// A read-only text field for a result.
QLineEdit* resultField(const QString& name, QWidget* parent = nullptr);

} // namespace varo::gui
