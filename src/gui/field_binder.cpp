#include "gui/field_binder.hpp"

#include <QApplication>
#include <QLineEdit>

namespace varo::gui {

QLineEdit* FieldBinder::bind(QWidget* parent, const QString& name, screens::TextField& field,
                             const std::function<bool()>& check) {
    auto* edit = new QLineEdit(QString::fromStdString(field.text), parent);
    edit->setObjectName(name);
    bindings_.push_back({edit, &field});
    connect(edit, &QLineEdit::editingFinished, this, [this, edit, &field, check] {
        // A message box takes the focus and so finishes the editing again: check once.
        if (checking_ || edit->text().toStdString() == field.lastGood) {
            return;
        }
        checking_ = true;
        field.text = edit->text().toStdString();
        if (check) {
            check();
        } else {
            field.lastGood = field.text;
        }
        edit->setText(QString::fromStdString(field.text));
        checking_ = false;
    });
    return edit;
}

void FieldBinder::finishEditing() {
    QWidget* focused = QApplication::focusWidget();
    for (const Binding& binding : bindings_) {
        if (binding.edit == focused) {
            emit binding.edit->editingFinished();
            return;
        }
    }
}

void FieldBinder::sync() {
    for (const Binding& binding : bindings_) {
        binding.field->text = binding.edit->text().toStdString();
    }
}

void FieldBinder::show() {
    for (const Binding& binding : bindings_) {
        binding.edit->setText(QString::fromStdString(binding.field->text));
    }
}

} // namespace varo::gui
