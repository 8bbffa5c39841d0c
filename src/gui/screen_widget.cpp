#include "gui/screen_widget.hpp"

#include "gui/progress_bar.hpp"
#include "gui/widget_helpers.hpp"

#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

namespace varo::gui {

ScreenWidget::ScreenWidget(ScreenContext& context, const QString& title, QWidget* parent)
    : QWidget(parent), context_(context), fields_(new FieldBinder(this)) {
    auto* outer = new QVBoxLayout(this);
    auto* heading = new QLabel(title, this);
    QFont font = heading->font();
    font.setPointSizeF(font.pointSizeF() * 1.5);
    font.setBold(true);
    heading->setFont(font);
    heading->setObjectName("screenTitle");
    outer->addWidget(heading);
    keys_ = new QHBoxLayout();
    keys_->addStretch(1);
    outer->addLayout(keys_);
    content_ = new QVBoxLayout();
    outer->addLayout(content_, 1);
    progress_ = new ProgressBar(this);
    progress_->setObjectName("ProgressPicture");
    progress_->hide();
    outer->addWidget(progress_);
}

QPushButton* ScreenWidget::addKey(const QString& text, const QString& name,
                                  const std::function<void()>& action) {
    QPushButton* button = keyButton(text, name, this);
    keys_->insertWidget(keys_->count() - 1, button);
    connect(button, &QPushButton::clicked, this, [this, action] {
        if (context_.runs.running()) {
            return;
        }
        syncFields();
        action();
    });
    return button;
}

void ScreenWidget::addClosingKeys(const std::function<void()>& reset) {
    if (reset) {
        addKey("Reset", "tb1Reset", reset);
    }
    addKey("Settings", "tb1Settings", [this] { context_.openSettings(); });
    addKey("Help", "tb1Help", [this] { context_.openHelp(); });
}

void ScreenWidget::runLong(const std::function<void(core::Progress&)>& body) {
    context_.runs.run(progress_, body);
}

QLineEdit* resultField(const QString& name, QWidget* parent) {
    auto* field = new QLineEdit(parent);
    field->setObjectName(name);
    field->setReadOnly(true);
    field->setFocusPolicy(Qt::NoFocus);
    return field;
}

} // namespace varo::gui
