#include "gui/settings_widget.hpp"
#include "gui/widget_helpers.hpp"

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
#include <QVBoxLayout>

namespace varo::gui {

namespace {

// A group box of options (`optionGroup`) under a title.
QButtonGroup* optionBox(QWidget* owner, QBoxLayout* into, const QString& title, const QString& name,
                        const QStringList& captions, const std::function<void(int)>& picked) {
    auto* box = new QGroupBox(title, owner);
    auto* layout = new QVBoxLayout(box);
    into->addWidget(box);
    return optionGroup(box, layout, name, captions, picked);
}

} // namespace

SettingsWidget::SettingsWidget(ScreenContext& context, std::function<void()> back, QWidget* parent)
    : ScreenWidget(context, "Settings", parent), record_(context.state), back_(std::move(back)) {
    screens::Dialogs& dialogs = context_.dialogs;
    addKey("Back", "menuBack", [this] {
        if (record_.apply(context_.dialogs)) {
            back_();
        } else {
            showRecord();
        }
    });
    addKey("Reset", "menuReset", [this] {
        record_.reset();
        showRecord();
    });
    addKey("Load", "menuOpen", [this] {
        record_.load(context_.dialogs);
        showRecord();
    });
    addKey("Save", "menuSave", [this] {
        record_.save(context_.dialogs);
        showRecord();
    });
    addKey("Advanced", "menuAdvanced", [this] { openAdvanced(); });
    addKey("Help", "menuHelp", [this] { context_.openHelp(); });

    auto* columns = new QHBoxLayout();
    auto* left = new QVBoxLayout();
    auto* right = new QVBoxLayout();
    columns->addLayout(left, 1);
    columns->addLayout(right, 1);
    content()->addLayout(columns);

    auto* period = new QGroupBox("Standard Period", this);
    auto* periodForm = new QFormLayout(period);
    periodForm->addRow("Standard start date:",
                       bindField("SDateText", record_.sDateText,
                                 [this, &dialogs] { return record_.checkStartDate(dialogs); }));
    periodForm->addRow("Standard end date:",
                       bindField("EDateText", record_.eDateText,
                                 [this, &dialogs] { return record_.checkEndDate(dialogs); }));
    left->addWidget(period);

    yearDays_ = optionBox(this, left, "Year Length", "YearDays",
                          {"Calendar (366)", "365 (GCM)", "360 (GCM)"},
                          [this](int id) { record_.selectYearDays(id); });

    auto* data = new QGroupBox("Data", this);
    auto* dataForm = new QFormLayout(data);
    dataForm->addRow("Event threshold:",
                     bindField("RainThreshText", record_.rainThreshText,
                               [this, &dialogs] { return record_.checkThreshold(dialogs); }));
    dataForm->addRow("Missing data identifier:",
                     bindField("MissingCodeText", record_.missingCodeText,
                               [this, &dialogs] { return record_.checkMissingCode(dialogs); }));
    right->addWidget(data);

    auto* model = new QGroupBox("Generation", this);
    auto* modelLayout = new QVBoxLayout(model);
    allowNeg_ = new QCheckBox("Allow negative values", model);
    allowNeg_->setObjectName("AllowNegCheck");
    randomSeed_ = new QCheckBox("Seed random numbers from the clock", model);
    randomSeed_->setObjectName("RandomSeedCheck");
    modelLayout->addWidget(allowNeg_);
    modelLayout->addWidget(randomSeed_);
    right->addWidget(model);
    connect(allowNeg_, &QCheckBox::clicked, this, [this](bool on) { record_.setAllowNeg(on); });
    connect(randomSeed_, &QCheckBox::clicked, this, [this](bool on) { record_.setRandomSeed(on); });

    auto* folderBox = new QGroupBox("Default Directory", this);
    auto* folderRow = new QHBoxLayout(folderBox);
    folder_ = new QLineEdit(folderBox);
    folder_->setObjectName("Dir1");
    folder_->setReadOnly(true);
    auto* browse = new QPushButton("Browse...", folderBox);
    browse->setObjectName("Drive1");
    folderRow->addWidget(folder_, 1);
    folderRow->addWidget(browse);
    content()->addWidget(folderBox);
    connect(browse, &QPushButton::clicked, this, [this] {
        if (const auto folder = context_.dialogs.pickFolder(record_.defaultDir)) {
            record_.setDefaultDir(*folder);
            showRecord();
        }
    });
    left->addStretch(1);
    right->addStretch(1);
    content()->addStretch(1);
    showRecord();
}

void SettingsWidget::showRecord() {
    showFields();
    selectOption(yearDays_, record_.yearDays);
    allowNeg_->setChecked(record_.allowNegCheck);
    randomSeed_->setChecked(record_.randomSeedCheck);
    folder_->setText(qt(record_.defaultDir));
}

void SettingsWidget::openAdvanced() {
    if (!record_.apply(context_.dialogs)) {
        showRecord();
        return;
    }
    AdvSettingsDialog dialog(context_, this);
    dialog.exec();
}

AdvSettingsDialog::AdvSettingsDialog(ScreenContext& context, QWidget* parent)
    : QDialog(parent), context_(context), fields_(new FieldBinder(this)), record_(context.state) {
    setWindowTitle("Advanced Settings");
    setMinimumWidth(640);
    setObjectName("AdvSettings");
    screens::Dialogs& dialogs = context_.dialogs;
    auto* outer = new QVBoxLayout(this);

    auto* keys = new QHBoxLayout();
    const auto addKey = [this, keys](const QString& text, const QString& name,
                                     const std::function<void()>& action) {
        QPushButton* button = keyButton(text, name, this);
        keys->addWidget(button);
        connect(button, &QPushButton::clicked, this, [this, action] {
            fields_->finishEditing();
            fields_->sync();
            action();
            showRecord();
        });
    };
    addKey("Back", "menuBack", [this] {
        if (record_.apply(context_.dialogs)) {
            accept();
        }
    });
    addKey("Reset", "menuReset", [this] { record_.reset(); });
    addKey("Load", "menuOpen", [this] { record_.load(context_.dialogs); });
    addKey("Save", "menuSave", [this] { record_.save(context_.dialogs); });
    addKey("Help", "menuHelp", [this] { context_.openHelp(); });
    keys->addStretch(1);
    outer->addLayout(keys);

    auto* fileRow = new QHBoxLayout();
    fileRow->addWidget(new QLabel("Settings file:", this));
    settingsFile_ = new QLineEdit(this);
    settingsFile_->setObjectName("SettingsFileText");
    auto* pick = new QPushButton("Browse...", this);
    pick->setObjectName("SettingsFileButton");
    pick->setAutoDefault(false);
    fileRow->addWidget(settingsFile_, 1);
    fileRow->addWidget(pick);
    outer->addLayout(fileRow);
    connect(settingsFile_, &QLineEdit::editingFinished, this,
            [this] { record_.setSettingsFile(settingsFile_->text().toStdString()); });
    connect(pick, &QPushButton::clicked, this, [this] {
        if (const auto path = context_.dialogs.pickOpenFile(screens::filter::Settings,
                                                            record_.settingsFileText)) {
            record_.setSettingsFile(*path);
            showRecord();
        }
    });

    auto* columns = new QHBoxLayout();
    auto* left = new QVBoxLayout();
    auto* right = new QVBoxLayout();
    columns->addLayout(left);
    columns->addLayout(right);
    outer->addLayout(columns);

    auto* numbers = new QGroupBox("Generator", this);
    auto* numbersForm = new QFormLayout(numbers);
    QLineEdit* bias = fields_->bind(numbers, "BiasText", record_.biasText,
                                    [this, &dialogs] { return record_.checkBias(dialogs); });
    bias->setToolTip("Enter real number between 0 and 2.0");
    numbersForm->addRow("Bias Correction", bias);
    numbersForm->addRow(" Variance Inflation ",
                        fields_->bind(numbers, "PrecRndText", record_.precRndText,
                                      [this, &dialogs] { return record_.checkPrecRnd(dialogs); }));
    left->addWidget(numbers);

    conditional_ = optionBox(this, left, " Conditional Selection ", "ConditionalOption",
                             {"Stochastic", "Fixed threshold:"},
                             [this](int id) { record_.selectConditional(id); });
    QLineEdit* threshold =
        fields_->bind(this, "ConditionalThreshText", record_.conditionalThreshText,
                      [this, &dialogs] { return record_.checkConditionalThresh(dialogs); });
    threshold->setMaximumWidth(90);
    // The threshold stands beside its option.
    QAbstractButton* fixedOption = conditional_->button(1);
    auto* conditionalLayout = static_cast<QVBoxLayout*>(fixedOption->parentWidget()->layout());
    conditionalLayout->removeWidget(fixedOption);
    auto* fixedRow = new QHBoxLayout();
    fixedRow->addWidget(fixedOption);
    fixedRow->addWidget(threshold);
    fixedRow->addStretch(1);
    conditionalLayout->addLayout(fixedRow);
    left->addStretch(1);

    transformation_ = optionBox(this, right, " Model Transformation ", "TransOption",
                                {"None", "Fourth root", "Natural log", "Inverse Normal", "Box Cox"},
                                [this](int id) { record_.selectTransformation(id); });
    optimisation_ = optionBox(this, right, "Optimisation Algorithm ", "OptimisationOption",
                              {"Ordinary Least Squares", "Dual simplex"}, [this](int id) {
                                  record_.selectOptimisation(id);
                                  showRecord();
                              });
    stepwise_ = new QCheckBox("Stepwise Regression", this);
    stepwise_->setObjectName("StepwiseCheck");
    right->addWidget(stepwise_);
    connect(stepwise_, &QCheckBox::clicked, this, [this](bool on) {
        record_.setStepwise(on);
        showRecord();
    });
    aic_ = optionBox(this, right, "Stepwise criterion", "AICOption",
                     {"AIC criteria", "BIC criteria"}, [this](int id) { record_.selectAic(id); });

    auto* profile = new QGroupBox(" Wet Day Percentage Profile", this);
    auto* grid = new QGridLayout(profile);
    static const char* const months[12] = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                           "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
    grid->addWidget(new QLabel("Percentage Wet", profile), 0, 0, 1, 12);
    for (int m = 0; m < 12; ++m) {
        grid->addWidget(new QLabel(months[m], profile), 1, m);
        QLineEdit* edit = fields_->bind(
            profile, "ZoMText" + QString::number(m + 1), record_.zomText[static_cast<size_t>(m)],
            [this, &dialogs, m] { return record_.checkMonthModification(dialogs, m); });
        edit->setMaximumWidth(60);
        grid->addWidget(edit, 2, m);
    }
    outer->addWidget(profile);
    showRecord();
}

// Deleted while shown, the dialog is hidden only after its record is gone, and the field
// that loses the focus then would finish its edit on that record: the fields fall silent.
AdvSettingsDialog::~AdvSettingsDialog() {
    for (QLineEdit* field : findChildren<QLineEdit*>()) {
        field->blockSignals(true);
    }
}

void AdvSettingsDialog::showRecord() {
    fields_->show();
    settingsFile_->setText(qt(record_.settingsFileText));
    selectOption(conditional_, record_.conditionalOption);
    selectOption(transformation_, record_.transOption);
    selectOption(optimisation_, record_.optimisationOption);
    selectOption(aic_, record_.aicOption);
    stepwise_->setChecked(record_.stepwiseCheck);
}

} // namespace varo::gui
