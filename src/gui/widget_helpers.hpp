// Small helpers every screen widget uses: text from the screen records, and controls
// created with the object names that tests and screenshots find them by: buttons, labels,
// tick boxes, the keys of a screen's key row, a file or folder key with its label, and a
// group of options.
#pragma once

#include <QBoxLayout>
#include <QCheckBox>
#include <QLabel>
#include <QPushButton>
#include <QString>
#include <QStringList>
#include <functional>
#include <string_view>

class QButtonGroup;

namespace varo::gui {

inline QString qt(std::string_view text) {
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

inline QPushButton* namedButton(const QString& caption, const QString& name, QWidget* parent) {
    auto* made = new QPushButton(caption, parent);
    made->setObjectName(name);
    return made;
}

inline QLabel* namedLabel(const QString& name, QWidget* parent) {
    auto* made = new QLabel(parent);
    made->setObjectName(name);
    return made;
}

inline QCheckBox* tickBox(const QString& caption, const QString& name, QWidget* parent) {
    auto* made = new QCheckBox(caption, parent);
    made->setObjectName(name);
    return made;
}

// A key that picks a file or folder, with the label beside it that shows the choice.
struct PickRow {
    QPushButton* button;
    QLabel* label;
};

inline PickRow addPickRow(QBoxLayout* layout, const QString& caption, const QString& buttonName,
                          const QString& labelName, QWidget* parent) {
    auto* row = new QHBoxLayout();
    PickRow made{namedButton(caption, buttonName, parent), namedLabel(labelName, parent)};
    row->addWidget(made.button);
    row->addWidget(made.label, 1);
    layout->addLayout(row);
    return made;
}

// A key of a screen's key row. It takes no focus, so an entry being typed in is still the
// focus when the key is pressed and is left (its check run) before the key acts.
QPushButton* keyButton(const QString& caption, const QString& name, QWidget* parent);

// Radio buttons for a choice of options, with ids 0, 1, ... in the order of the captions,
// each named "<name><id>" and laid out in `into`; `picked` runs with the id clicked.
QButtonGroup* optionGroup(QWidget* parent, QLayout* into, const QString& name,
                          const QStringList& captions, const std::function<void(int)>& picked);
// Checks the option of an id; an id that names no option leaves every option clear.
void selectOption(QButtonGroup* group, int id);

} // namespace varo::gui
