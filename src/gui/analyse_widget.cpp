#include "gui/analyse_widget.hpp"
#include "gui/widget_helpers.hpp"

#include "gui/results_table_view.hpp"
#include "gui/stats_select_widget.hpp"
#include "screens/file_choice.hpp"
#include "statistics/statistic_columns.hpp"

#include <QButtonGroup>
#include <QCheckBox>
#include <QFormLayout>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>

namespace varo::gui {

namespace {

// A row of a button that picks a file and a label that shows it.
QLabel* fileRow(QWidget* owner, QGridLayout* grid, int row, const QString& caption,
                const QString& buttonName, const QString& labelName,
                const std::function<void()>& pick) {
    auto* button = new QPushButton(caption, owner);
    button->setObjectName(buttonName);
    auto* label = new QLabel(owner);
    label->setObjectName(labelName);
    label->setTextInteractionFlags(Qt::TextSelectableByMouse);
    grid->addWidget(button, row, 0);
    grid->addWidget(label, row, 1);
    QObject::connect(button, &QPushButton::clicked, owner, pick);
    return label;
}

} // namespace

AnalyseWidget::AnalyseWidget(ScreenContext& context, QWidget* parent)
    : ScreenWidget(context, "Summary Statistics", parent), record_(context.state) {
    screens::Dialogs& dialogs = context_.dialogs;
    addKey("Analyse", "tb1Analyse", [this] { analyse(); });
    addKey("Statistics...", "tb1StatsSelect", [this] { selectStatistics(); });
    addKey("View Details", "tb1Details", [this] {
        record_.showFileDetails(context_.dialogs);
        showRecord();
    });
    addClosingKeys({});

    auto* files = new QGroupBox("Files", this);
    auto* fileGrid = new QGridLayout(files);
    auto* sourceRow = new QHBoxLayout();
    source_ =
        optionGroup(files, sourceRow, "SourceButton", {"Observed", "Modelled"}, [this](int id) {
            record_.sourceButton = id == 0 ? screens::AnalyseScreen::Source::Observed
                                           : screens::AnalyseScreen::Source::Modelled;
        });
    fileGrid->addLayout(sourceRow, 0, 2);
    inputFile_ =
        fileRow(this, fileGrid, 0, "Select Data File", "SelectInputFile", "InputFileText", [this] {
            record_.pickInputFile(context_.dialogs);
            showRecord();
        });
    saveFile_ =
        fileRow(this, fileGrid, 1, "Save Summary File", "SaveButton", "SaveFileText", [this] {
            record_.pickSaveFile(context_.dialogs);
            showRecord();
        });
    fileGrid->setColumnStretch(1, 1);
    content()->addWidget(files);

    auto* middle = new QHBoxLayout();
    auto* period = new QGroupBox("Analysis Period", this);
    auto* periodGrid = new QGridLayout(period);
    periodGrid->addWidget(new QLabel("Start date:", period), 0, 0);
    periodGrid->addWidget(bindField("StartDateText", record_.startDateText,
                                    [this, &dialogs] {
                                        const bool ok = record_.checkStartDate(dialogs);
                                        showRecord();
                                        return ok;
                                    }),
                          0, 1);
    periodGrid->addWidget(new QLabel("End date:", period), 0, 2);
    periodGrid->addWidget(bindField("EndDateText", record_.endDateText,
                                    [this, &dialogs] {
                                        const bool ok = record_.checkEndDate(dialogs);
                                        showRecord();
                                        return ok;
                                    }),
                          0, 3);
    QLineEdit* days = resultField("NoOfDaysText", period);
    periodGrid->addWidget(new QLabel("Days:", period), 1, 0);
    periodGrid->addWidget(days, 1, 1);
    shown_.emplace_back(days, &record_.noOfDaysText);
    delta_ = new QCheckBox("Delta statistics for the base period and Periods A, B and C", period);
    delta_->setObjectName("DeltaCheck");
    periodGrid->addWidget(delta_, 2, 0, 1, 4);
    periodGrid->setRowStretch(3, 1);
    connect(delta_, &QCheckBox::toggled, this, [this](bool on) { record_.deltaCheck = on; });
    middle->addWidget(period);

    auto* ensemble = new QGroupBox("Ensemble", this);
    auto* ensembleForm = new QFormLayout(ensemble);
    ensembleForm->addRow("Ensemble member:",
                         bindField("EnsembleNumber", record_.ensembleNumber, [this, &dialogs] {
                             return record_.checkEnsembleNumber(dialogs);
                         }));
    ensembleMean_ = new QCheckBox("Ensemble mean", ensemble);
    ensembleMean_->setObjectName("EnsembleMeanCheck");
    ensembleForm->addRow(ensembleMean_);
    ensembleForm->setFormAlignment(Qt::AlignTop);
    connect(ensembleMean_, &QCheckBox::toggled, this,
            [this](bool on) { record_.ensembleMeanCheck = on; });
    middle->addWidget(ensemble);

    // Two columns of three, so that the choices leave the results most of the height.
    auto* details = new QGroupBox("Scenario File Details", this);
    auto* detailsGrid = new QGridLayout(details);
    const std::pair<const char*, std::pair<const char*, std::string*>> rows[] = {
        {"Predictors:", {"FileNPredictors", &record_.fileNPredictors}},
        {"Season code:", {"FileSeasonCode", &record_.fileSeasonCode}},
        {"Year length:", {"FileYearLength", &record_.fileYearLength}},
        {"Days:", {"FileNDays", &record_.fileNDays}},
        {"Ensemble size:", {"FileEnsembleSize", &record_.fileEnsembleSize}},
        {"Start date:", {"FileStartDate", &record_.fileStartDate}},
    };
    int place = 0;
    for (const auto& [caption, field] : rows) {
        QLineEdit* edit = resultField(field.first, details);
        const int row = place % 3;
        const int column = place / 3 * 2;
        detailsGrid->addWidget(new QLabel(caption, details), row, column);
        detailsGrid->addWidget(edit, row, column + 1);
        shown_.emplace_back(edit, field.second);
        ++place;
    }
    detailsGrid->setRowStretch(3, 1);
    middle->addWidget(details);
    content()->addLayout(middle);

    selection_ = new QLabel(this);
    selection_->setObjectName("SelectedStatistics");
    selection_->setWordWrap(true);
    content()->addWidget(selection_);

    results_ = new ResultsTabs(this);
    results_->setObjectName("ResultsTables");
    resultsFile_ = new QLabel(results_);
    resultsFile_->setObjectName("ResultsFile");
    resultsFile_->setTextInteractionFlags(Qt::TextSelectableByMouse);
    results_->setCornerWidget(resultsFile_, Qt::TopRightCorner);
    content()->addWidget(results_, 1);
    noResults_ = new QLabel("No results yet. Choose the data file and the results file and "
                            "press Analyse: the tables of the results file will show here.",
                            this);
    noResults_->setObjectName("NoResults");
    noResults_->setAlignment(Qt::AlignLeft | Qt::AlignTop);
    content()->addWidget(noResults_, 1);
    showRecord();
}

void AnalyseWidget::showSelection() {
    QStringList names;
    for (int c = 1; c <= statistics::StatisticCount; ++c) {
        if (core::statisticSelected(context_.state, c)) {
            names << qt(context_.state.statisticTable[static_cast<size_t>(c - 1)].name);
        }
    }
    selection_->setText("Statistics: " + (names.isEmpty() ? QString("none") : names.join(", ")));
}

void AnalyseWidget::showRecord() {
    selectOption(source_, record_.sourceButton == screens::AnalyseScreen::Source::Observed ? 0 : 1);
    const auto shown = [](const std::string& path) {
        return qt(path.empty() ? screens::NotSelected : path);
    };
    inputFile_->setText(shown(record_.inputFileText));
    saveFile_->setText(shown(record_.saveFileText));
    ensembleMean_->setChecked(record_.ensembleMeanCheck);
    delta_->setChecked(record_.deltaCheck);
    for (const auto& [edit, text] : shown_) {
        edit->setText(qt(*text));
    }
    showFields();
    showSelection();
    showResults();
}

// The tables of the results file the last run wrote; a failed or refused run leaves none.
void AnalyseWidget::showResults() {
    const auto tables = record_.resultTables();
    results_->clearTables();
    for (const auto& shown : tables) {
        results_->addTable(qt(shown.name), shown.table);
    }
    resultsFile_->setText("As saved in " + qt(record_.resultsPath));
    results_->setVisible(!tables.empty());
    noResults_->setVisible(tables.empty());
}

void AnalyseWidget::selectStatistics() {
    StatsSelectDialog dialog(context_, this);
    dialog.exec();
    showSelection();
}

void AnalyseWidget::analyse() {
    runLong([this](core::Progress& progress) {
        ShowFirstDialogs dialogs(context_.dialogs, [this] { showRecord(); });
        record_.run(dialogs, progress);
        showRecord();
    });
}

} // namespace varo::gui
