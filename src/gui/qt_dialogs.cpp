#include "gui/qt_dialogs.hpp"
#include "gui/widget_helpers.hpp"

#include <QApplication>
#include <QFileDialog>
#include <QMessageBox>
#include <QStringList>

namespace varo::gui {

namespace {

// Line ends of the system's texts are CR LF; a message box wants LF.
QString boxText(std::string_view text) {
    return qt(text).replace("\r\n", "\n");
}

QMessageBox::Icon boxIcon(screens::Icon icon) {
    switch (icon) {
    case screens::Icon::Error:
        return QMessageBox::Critical;
    case screens::Icon::Warning:
    case screens::Icon::Exclamation:
        return QMessageBox::Warning;
    case screens::Icon::Question:
        return QMessageBox::Question;
    case screens::Icon::Information:
        break;
    }
    return QMessageBox::Information;
}

QString patternsFor(const QString& pattern) {
    if (pattern == "*.*") {
        return "*";
    }
    QStringList patterns;
    for (const QString& one : pattern.split(';', Qt::SkipEmptyParts)) {
        patterns << one;
        if (one.toLower() != one) {
            patterns << one.toLower();
        }
    }
    return patterns.join(' ');
}

// A box during a run shows the normal pointer over the busy one.
class NormalCursor {
public:
    NormalCursor() : busy_(QApplication::overrideCursor() != nullptr) {
        if (busy_) {
            QApplication::setOverrideCursor(Qt::ArrowCursor);
        }
    }
    ~NormalCursor() {
        if (busy_) {
            QApplication::restoreOverrideCursor();
        }
    }

private:
    bool busy_;
};

} // namespace

QString qtFileFilter(std::string_view filter) {
    const QStringList parts = qt(filter).split('|');
    QStringList filters;
    for (qsizetype i = 0; i + 1 < parts.size(); i += 2) {
        QString caption = parts[i];
        caption = caption.left(caption.indexOf('(')).trimmed();
        const QString patterns = patternsFor(parts[i + 1]);
        filters << caption + " (" + patterns + ")";
    }
    return filters.join(";;");
}

void QtDialogs::message(std::string_view title, std::string_view text, screens::Icon icon) {
    const NormalCursor cursor;
    QMessageBox box(boxIcon(icon), qt(title), boxText(text), QMessageBox::Ok, parent_);
    box.exec();
}

bool QtDialogs::askYesNo(std::string_view title, std::string_view text, screens::Icon icon) {
    const NormalCursor cursor;
    QMessageBox box(boxIcon(icon), qt(title), boxText(text), QMessageBox::Yes | QMessageBox::No,
                    parent_);
    box.setDefaultButton(QMessageBox::No);
    return box.exec() == QMessageBox::Yes;
}

std::optional<std::string> QtDialogs::pickOpenFile(std::string_view filter,
                                                   std::string_view startFolder) {
    const QString path =
        QFileDialog::getOpenFileName(parent_, "Open", qt(startFolder), qtFileFilter(filter));
    if (path.isEmpty()) {
        return std::nullopt;
    }
    return path.toStdString();
}

std::optional<std::string> QtDialogs::pickSaveFile(std::string_view filter,
                                                   std::string_view startFolder,
                                                   std::string_view defaultExtension) {
    QFileDialog dialog(parent_, "Save As", qt(startFolder), qtFileFilter(filter));
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    if (!defaultExtension.empty()) {
        dialog.setDefaultSuffix(qt(defaultExtension));
    }
    if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty()) {
        return std::nullopt;
    }
    return dialog.selectedFiles().front().toStdString();
}

std::optional<std::string> QtDialogs::pickFolder(std::string_view startFolder) {
    const QString path =
        QFileDialog::getExistingDirectory(parent_, "Choose Folder", qt(startFolder));
    if (path.isEmpty()) {
        return std::nullopt;
    }
    return path.toStdString();
}

} // namespace varo::gui
