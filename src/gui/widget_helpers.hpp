// Small helpers every screen widget uses: text from the screen records, and controls
// created with the object names that tests and screenshots find them by.
#pragma once

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

} // namespace varo::gui
