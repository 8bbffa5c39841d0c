// Binds entry fields to the `TextField`s of a screen record: leaving a field runs its
// check, and a refused entry shows the last good value again.
#pragma once

#include "screens/text_field.hpp"

#include <QObject>
#include <functional>
#include <vector>

class QLineEdit;
class QWidget;

namespace varo::gui {

class FieldBinder : public QObject {
    Q_OBJECT
public:
    explicit FieldBinder(QObject* parent) : QObject(parent) {}

    // A new entry named `name` showing the field; `check` runs when the entry is left with
    // a text other than the last good one (without a check every text is good).
    QLineEdit* bind(QWidget* parent, const QString& name, screens::TextField& field,
                    const std::function<bool()>& check = {});
    // A key pressed while an entry has the focus leaves that entry first, as a click on a
    // control would: its check runs before the key acts.
    void finishEditing();
    // Copies every entry's text into its field, for keys that act without a field being left.
    void sync();
    // Shows every field's text in its entry.
    void show();

private:
    struct Binding {
        QLineEdit* edit;
        screens::TextField* field;
    };
    std::vector<Binding> bindings_;
    bool checking_ = false;
};

} // namespace varo::gui
