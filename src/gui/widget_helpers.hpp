// Small helpers every screen widget uses: text from the screen records, and controls
// created with the object names that tests and screenshots find them by.
#pragma once

#include <QBoxLayout>
#include <QCheckBox>
#include <QLabel>
#include <QPushButton>
#include <QString>
#include <string_view>

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

} // namespace varo::gui
