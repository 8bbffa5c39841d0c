#include "gui/help_viewer.hpp"

#include <QAbstractTextDocumentLayout>
#include <QFile>
#include <QImage>
#include <QScrollBar>
#include <QTextBlock>
#include <QTextBrowser>
#include <QVBoxLayout>

// The guide is compiled into a static library, whose resources a program must ask for.
static void loadHelpResource() {
    Q_INIT_RESOURCE(help);
}

namespace varo::gui {

namespace {

// The guide's pictures are of the whole window; shown at that size they would not fit
// beside the text, so each is drawn at most `width` pixels wide.
void fitPictures(QTextDocument* document, int width) {
    for (QTextBlock block = document->begin(); block.isValid(); block = block.next()) {
        for (auto fragment = block.begin(); !fragment.atEnd(); ++fragment) {
            QTextImageFormat picture = fragment.fragment().charFormat().toImageFormat();
            if (!picture.isValid()) {
                continue;
            }
            const QImage image =
                document->resource(QTextDocument::ImageResource, picture.name()).value<QImage>();
            if (image.isNull() || image.width() <= width) {
                continue;
            }
            picture.setWidth(width);
            picture.setHeight(image.height() * width / image.width());
            QTextCursor cursor(document);
            cursor.setPosition(fragment.fragment().position());
            cursor.setPosition(fragment.fragment().position() + fragment.fragment().length(),
                               QTextCursor::KeepAnchor);
            cursor.setCharFormat(picture);
        }
    }
}

} // namespace

HelpViewer::HelpViewer(QWidget* parent, const QString& section)
    : QDialog(parent), section_(section) {
    loadHelpResource();
    setWindowTitle("VARO Help");
    setObjectName("HelpViewer");
    resize(900, 700);
    auto* layout = new QVBoxLayout(this);
    browser_ = new QTextBrowser(this);
    browser_->setOpenExternalLinks(true);
    browser_->setSearchPaths({":/help"});
    QFile guide(":/help/user-guide.md");
    if (guide.open(QIODevice::ReadOnly)) {
        browser_->setMarkdown(QString::fromUtf8(guide.readAll()));
        fitPictures(browser_->document(), 800);
    }
    layout->addWidget(browser_);
}

// The guide's headings carry no anchors, so the section is found by its heading's text.
bool HelpViewer::showSection(const QString& section) {
    QTextDocument* document = browser_->document();
    for (QTextBlock block = document->begin(); block.isValid(); block = block.next()) {
        if (block.blockFormat().headingLevel() > 0 && block.text() == section) {
            browser_->setTextCursor(QTextCursor(block));
            const QRectF place = document->documentLayout()->blockBoundingRect(block);
            browser_->verticalScrollBar()->setValue(qRound(place.top()));
            return true;
        }
    }
    return false;
}

// The section is found once the window has its size, when the guide's lines are laid out.
void HelpViewer::showEvent(QShowEvent* event) {
    QDialog::showEvent(event);
    if (!section_.isEmpty()) {
        showSection(section_);
        section_.clear(); // once: a window shown again keeps where the reader was
    }
}

} // namespace varo::gui
