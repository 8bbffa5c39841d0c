#include "gui/charts/chart_settings_dialog.hpp"

#include "gui/field_binder.hpp"
#include "gui/widget_helpers.hpp"

#include <QColorDialog>
#include <QComboBox>
#include <QFontDialog>
#include <QFormLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

namespace varo::gui {

namespace {

QColor qtColour(const core::Rgb& rgb) {
    return QColor(rgb.red, rgb.green, rgb.blue);
}

// What the colour picker returns, split into red, green and blue.
core::Rgb rgbOf(const QColor& colour) {
    return core::Rgb{colour.red(), colour.green(), colour.blue()};
}

QString fontText(const charts::ChartFont& font) {
    QString text = qt(font.family) + ", " + QString::number(font.pointSize) + " pt";
    if (font.bold) {
        text += ", bold";
    }
    if (font.italic) {
        text += ", italic";
    }
    return text;
}

} // namespace

QFont qtFont(const charts::ChartFont& font) {
    QFont made(qt(font.family));
    made.setPointSizeF(font.pointSize);
    made.setBold(font.bold);
    made.setItalic(font.italic);
    return made;
}

charts::ChartFont chartFont(const QFont& font) {
    return charts::ChartFont{font.family().toStdString(), font.pointSizeF(), font.bold(),
                             font.italic()};
}

ChartSettingsDialog::ChartSettingsDialog(screens::Dialogs& dialogs,
                                         screens::ChartScreenRecord& chartScreen, QWidget* parent)
    : QDialog(parent), dialogs_(dialogs), record_(chartScreen), fields_(new FieldBinder(this)) {
    setObjectName(qt(charts::settingsScreenName(chartScreen.screen())));
    setWindowTitle("Chart Settings");
    setAttribute(Qt::WA_DeleteOnClose);
    colourPicker = [](const QColor& current, QWidget* owner) -> std::optional<QColor> {
        const QColor picked = QColorDialog::getColor(current, owner, "Series Colour");
        return picked.isValid() ? std::optional<QColor>(picked) : std::nullopt;
    };
    fontPicker = [](const QFont& current, QWidget* owner) -> std::optional<QFont> {
        bool ok = false;
        const QFont picked = QFontDialog::getFont(&ok, current, owner, "Chart Font");
        return ok ? std::optional<QFont>(picked) : std::nullopt;
    };
    auto* layout = new QVBoxLayout(this);
    auto* columns = new QHBoxLayout();
    auto* left = new QVBoxLayout();
    left->addWidget(buildTitles());
    left->addWidget(buildScale());
    left->addStretch(1);
    auto* right = new QVBoxLayout();
    if (record_.fields().legends || record_.fields().penWidths) {
        right->addWidget(buildLegends());
    }
    right->addWidget(buildLooks());
    right->addStretch(1);
    columns->addLayout(left, 1);
    columns->addLayout(right, 1);
    layout->addLayout(columns, 1);
    layout->addLayout(buildButtons());
    setMinimumWidth(800); // room for a long title, such as a frequency fit's
    showLooks();
}

QLineEdit* ChartSettingsDialog::field(QFormLayout* form, const QString& caption,
                                      const QString& name, screens::TextField& text,
                                      const std::function<bool()>& check) {
    QLineEdit* edit = fields_->bind(this, name, text, check);
    form->addRow(caption, edit);
    return edit;
}

QPushButton* ChartSettingsDialog::button(QLayout* row, const QString& caption, const QString& name,
                                         const std::function<void()>& action) {
    QPushButton* made = namedButton(caption, name, this);
    made->setAutoDefault(false);
    row->addWidget(made);
    connect(made, &QPushButton::clicked, this, [this, action] {
        fields_->finishEditing();
        fields_->sync();
        action();
    });
    return made;
}

QWidget* ChartSettingsDialog::buildTitles() {
    auto* box = new QGroupBox("Titles", this);
    auto* form = new QFormLayout(box);
    field(form, "Chart title", "TitleText", record_.titleText);
    field(form, "X axis title", "XTitleText", record_.xTitleText);
    field(form, "Y axis title", "YTitleText", record_.yTitleText);
    return box;
}

QWidget* ChartSettingsDialog::buildScale() {
    auto* box = new QGroupBox("Axes", this);
    auto* form = new QFormLayout(box);
    const charts::SettingsFields& offered = record_.fields();
    if (offered.minMaxY) {
        field(form, "Minimum Y", "MinYText", record_.minYText,
              [this] { return record_.checkMinY(dialogs_); });
        field(form, "Maximum Y", "MaxYText", record_.maxYText,
              [this] { return record_.checkMaxY(dialogs_); });
        field(form, "Ticks", "TickText", record_.tickText,
              [this] { return record_.checkTicks(dialogs_); });
    }
    if (offered.yMinMaxDivision) {
        field(form, "Y axis minimum", "YMinText", record_.yMinText,
              [this] { return record_.checkYMin(dialogs_); });
        field(form, "Y axis maximum", "YMaxText", record_.yMaxText,
              [this] { return record_.checkYMax(dialogs_); });
        field(form, "Y axis divisions", "YAxisDivision", record_.yAxisDivision,
              [this] { return record_.checkYAxisDivision(dialogs_); });
    }
    if (offered.xLabelGap) {
        QLineEdit* gap = field(form, "Gap between x labels", "XLabelGapText", record_.xLabelGapText,
                               [this] { return record_.checkXLabelGap(dialogs_); });
        gap->setToolTip(QString("0 (no labels) to %1").arg(record_.labelGapLimit()));
    }
    if (offered.dotAndLineSize) {
        field(form, "Dot size", "DotSizeText", record_.dotSizeText,
              [this] { return record_.checkDotSize(dialogs_); });
        field(form, "Line width", "LineSizeText", record_.lineSizeText,
              [this] { return record_.checkLineSize(dialogs_); });
    }
    return box;
}

QWidget* ChartSettingsDialog::buildLegends() {
    auto* box =
        new QGroupBox(record_.fields().penWidths ? "Series: legend and pen width" : "Legend", this);
    auto* form = new QFormLayout(box);
    for (size_t i = 0; i < record_.legendText.size(); ++i) {
        const QString number = QString::number(i + 1);
        QLineEdit* legend = fields_->bind(this, "Legend" + number + "Text", record_.legendText[i]);
        if (i < record_.widthText.size()) {
            auto* row = new QHBoxLayout();
            row->addWidget(legend, 1);
            row->addWidget(new QLabel("Width", this));
            QLineEdit* width = fields_->bind(this, "WidthText" + number, record_.widthText[i],
                                             [this, i] { return record_.checkWidth(dialogs_, i); });
            width->setMaximumWidth(60);
            row->addWidget(width);
            form->addRow("Series " + number, row);
        } else {
            form->addRow("Series " + number, legend);
        }
    }
    return box;
}

QWidget* ChartSettingsDialog::buildLooks() {
    auto* box = new QGroupBox("Colours and font", this);
    auto* form = new QFormLayout(box);
    auto* colourRow = new QHBoxLayout();
    seriesChoice_ = new QComboBox(this);
    seriesChoice_->setObjectName("SeriesCombo");
    for (const charts::Series& series : record_.chartSeries()) {
        seriesChoice_->addItem(qt(series.name));
    }
    colourSwatch_ = namedLabel("ColourSwatch", this);
    colourSwatch_->setFixedSize(36, 20);
    colourRow->addWidget(seriesChoice_, 1);
    colourRow->addWidget(colourSwatch_);
    button(colourRow, "Colour...", "ColourButton", [this] { pickColour(); });
    form->addRow("Series colour", colourRow);
    auto* fontRow = new QHBoxLayout();
    fontLabel_ = namedLabel("FontLabel", this);
    fontRow->addWidget(fontLabel_, 1);
    button(fontRow, "Font...", "FontButton", [this] { pickFont(); });
    form->addRow("Font", fontRow);
    connect(seriesChoice_, &QComboBox::currentIndexChanged, this, [this] { showLooks(); });
    return box;
}

QLayout* ChartSettingsDialog::buildButtons() {
    auto* row = new QHBoxLayout();
    QPushButton* change = button(row, "Change", "ChangeButton", [this] {
        if (record_.change(dialogs_)) {
            changed();
            accept();
        } else {
            fields_->show();
        }
    });
    change->setDefault(true);
    const charts::SettingsFields& offered = record_.fields();
    if (offered.legendToggle) {
        legendButton_ = button(row, qt(record_.legendButtonCaption()), "LegendButton", [this] {
            record_.toggleLegend(dialogs_);
            legendButton_->setText(qt(record_.legendButtonCaption()));
            changed();
        });
    } else if (offered.legends) {
        button(row, "Clear Legend", "ClearLegendButton", [this] {
            record_.clearLegend();
            changed();
        });
        button(row, "Show Legend", "ShowLegendButton", [this] {
            record_.showLegend(dialogs_);
            changed();
        });
    }
    button(row, "Clear Ticks", "ClearTicksButton", [this] {
        record_.clearTicks();
        changed();
    });
    button(row, "Apply Ticks", "ApplyTicksButton", [this] {
        if (record_.applyTicks(dialogs_)) {
            changed();
        }
        fields_->show();
    });
    button(row, "Clear X Labels", "ClearXButton", [this] {
        record_.clearX();
        fields_->show();
        changed();
    });
    row->addStretch(1);
    button(row, "Reset", "ResetButton", [this] {
        record_.reset();
        fields_->show();
        if (legendButton_ != nullptr) {
            legendButton_->setText(qt(record_.legendButtonCaption()));
        }
        changed();
    });
    button(row, "Back", "BackButton", [this] { reject(); });
    return row;
}

void ChartSettingsDialog::pickColour() {
    const auto index = static_cast<size_t>(std::max(0, seriesChoice_->currentIndex()));
    if (record_.chartSeries().empty()) {
        return;
    }
    if (const auto picked = colourPicker(qtColour(record_.colour(index)), this)) {
        record_.setColour(index, rgbOf(*picked));
        changed();
    }
}

void ChartSettingsDialog::pickFont() {
    if (const auto picked = fontPicker(qtFont(record_.font()), this)) {
        record_.setFont(chartFont(*picked));
        changed();
    }
}

void ChartSettingsDialog::showLooks() {
    const int index = seriesChoice_->currentIndex();
    if (index >= 0 && static_cast<size_t>(index) < record_.chartSeries().size()) {
        const QColor colour = qtColour(record_.colour(static_cast<size_t>(index)));
        colourSwatch_->setStyleSheet("background: " + colour.name() + "; border: 1px solid gray;");
    }
    fontLabel_->setText(fontText(record_.font()));
}

void ChartSettingsDialog::changed() {
    showLooks();
    emit chartChanged();
}

} // namespace varo::gui
