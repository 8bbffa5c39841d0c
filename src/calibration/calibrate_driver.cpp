#include "calibration/calibrate_driver.hpp"

#include "calibration/cross_validation.hpp"
#include "calibration/model_transforms.hpp"
#include "calibration/stepwise.hpp"
#include "core/failure.hpp"
#include "core/record_calendar.hpp"
#include "core/series_file.hpp"

namespace varo::calibration {

namespace {

class Calibration {
public:
    Calibration(const core::ProgramState& state, const CalibrationRequest& request,
                std::array<double, 12>& meanRatio, core::Progress& progress,
                core::Notifier& notifier)
        : state_(state), request_(request), meanRatio_(meanRatio), environment_{progress, notifier},
          method_(fitMethodOf(state.optimisationChoice)),
          code_(state.modelTransformation.codeInForce()), missing_(state.globalMissingCode) {
        for (const std::string& path : request.data.predictorPaths) {
            fileList_.push_back(core::bareFileName(path));
        }
    }

    CalibrationResults run() {
        checkParameterColumns();
        const DayCube cube = readDayCube(state_, request_.data, environment_.progress);
        for (int group = 1; group <= cube.groups(); ++group) {
            if (cube.count(group) < MinimumGroupDays) {
                throw core::RunStopped(InsufficientDataText);
            }
        }
        if (request_.crossValidationFolds > 0) {
            crossValidation_.emplace(request_.crossValidationFolds, missing_,
                                     environment_.notifier);
        }
        for (int group = 1; group <= cube.groups(); ++group) {
            fitGroup(cube, group);
        }
        fillHeader();
        if (crossValidation_) {
            results_.crossValidation = crossValidation_->table();
        }
        results_.dependencyWarned = environment_.dependencyWarned;
        return std::move(results_);
    }

private:
    bool annual() const { return request_.data.modelType == ModelType::Annual; }

    void checkParameterColumns() const {
        const int columns =
            static_cast<int>(fileList_.size()) + (request_.autoregression ? 1 : 0) + 3;
        if (columns > MaxParameterColumns) {
            throw core::Failure(core::failure::FileTooLarge,
                                "A month of the model holds at most " +
                                    std::to_string(MaxParameterColumns) +
                                    " parameters (constant, coefficients, standard error and R "
                                    "squared); this model needs " +
                                    std::to_string(columns) + ".");
        }
    }

    void showProgress(long percent) {
        environment_.setProgress(percent, 100, CalibratingCaption);
        environment_.progress.report(percent, 100, CalibratingCaption);
    }

    void fitGroup(const DayCube& cube, int group) {
        const std::vector<int> months = monthsOfGroup(request_.data.modelType, group);
        if (annual()) {
            showProgress(request_.conditional ? 25 : 50);
        } else {
            showProgress(group * 100L / cube.groups());
        }
        GroupDesign design = buildGroupDesign(cube, group, request_.autoregression,
                                              request_.conditional, state_.thresh);
        MatrixObject xCopy = design.x.clone();
        MatrixObject yCopy = design.y.clone();
        if (request_.conditional) {
            makeOccurrence(design.y, state_.thresh);
        }
        if (crossValidation_) {
            crossValidation_->validate(design.x, design.y, request_.conditional, months);
        }
        if (state_.applyStepwise) {
            chooseStepwise(design.x, design.y);
        }
        ScoreOptions options;
        options.missingCode = missing_;
        options.includeChow = request_.includeChow;
        options.conditional = request_.conditional;
        options.keepResidualPairs = !request_.conditional;
        const FitScore score = fitAndScore(design.x, design.y, method_, options, environment_, {},
                                           results_.residualPairs);
        const double third =
            request_.conditional ? score.propCorrect : durbinWatson(score.fit.residuals, missing_);
        for (int month : months) {
            series::MonthParameters& row =
                results_.parameters.months[static_cast<size_t>(month - 1)];
            row.coefficients.assign(score.fit.beta.cells().data(),
                                    score.fit.beta.cells().data() + score.fit.beta.rows());
            row.standardError = score.standardError;
            row.rSquared = score.rSquared;
            results_.statistics[static_cast<size_t>(month - 1)] = {
                score.rSquared, score.standardError, third,
                score.chow,     design.y.rows(),     design.x.columns() - 1};
        }
        if (request_.conditional) {
            fitAmounts(std::move(xCopy), std::move(yCopy), group, months);
        }
    }

    // The lag column, when there is one, is the last candidate: the model keeps the lag
    // term only if the search chose it.
    void chooseStepwise(MatrixObject& x, const MatrixObject& y) {
        const StepwiseSelection selection =
            selectPredictors(x, y, method_, state_.aicWanted, environment_);
        x = subsetColumns(x, selection.positions);
        StepwiseChoice choice;
        choice.aic = state_.aicWanted;
        choice.criterion = selection.criterion;
        choice.subsetsTried = selection.subsetsTried;
        choice.candidates = fileList_;
        if (request_.autoregression) {
            choice.candidates.emplace_back(AutoregressionName);
        }
        std::vector<std::string> names;
        modelHasLag_ = false;
        for (int position : selection.positions) {
            const auto index = static_cast<size_t>(position - 1);
            if (index < fileList_.size()) {
                names.push_back(fileList_[index]);
            } else {
                modelHasLag_ = true;
            }
            choice.chosen.push_back(choice.candidates[index]);
        }
        fileList_ = std::move(names);
        results_.stepwise = std::move(choice);
    }

    void fitAmounts(MatrixObject x, MatrixObject y, int group, const std::vector<int>& months) {
        if (annual()) {
            showProgress(75);
        }
        if (request_.autoregression) {
            x.resize(x.rows(), x.columns() - 1);
        }
        keepWetDays(x, y, state_.thresh);
        if (crossValidation_) {
            crossValidation_->validateAmounts(x, y, code_, months);
        }
        const AmountTransform transform = applyModelTransformation(
            x, y, code_, missing_, groupName(state_, request_.data.modelType, group));
        ScoreOptions options;
        options.missingCode = missing_;
        options.includeChow = request_.includeChow;
        options.conditional = true;
        options.readyForAmounts = true;
        options.keepResidualPairs = true;
        const FitScore score = fitAndScore(
            x, y, method_, options, environment_,
            [&](MatrixObject& observed, MatrixObject& fitted) {
                backTransform(observed, fitted, transform, missing_);
            },
            results_.residualPairs);
        const double ratio =
            code_ == TransformInverseNormal ? meanRatioOfFit(x, score.fit.beta, y) : 0.0;
        for (int month : months) {
            const size_t m = static_cast<size_t>(month - 1);
            if (code_ == TransformBoxCox) {
                results_.parameters.months[m].lamda = transform.lamda;
                results_.parameters.months[m].shift = transform.shift;
            }
            if (code_ == TransformInverseNormal) {
                meanRatio_[m] = ratio;
            }
            series::AmountParameters& amount = results_.parameters.amounts[m];
            amount.constant = score.fit.beta.getValue(0, 0);
            amount.meanRatio = meanRatio_[m];
            amount.coefficients.assign(score.fit.beta.cells().data() + 1,
                                       score.fit.beta.cells().data() + score.fit.beta.rows());
            amount.standardError = score.standardError;
            amount.rSquared = score.rSquared;
            results_.statistics[12 + m] = {score.rSquared, score.standardError, 0.0, score.chow,
                                           y.rows(),       x.columns() - 1};
        }
    }

    void fillHeader() {
        series::ParameterFile& file = results_.parameters;
        file.groups = groupCount(request_.data.modelType);
        file.yearIndicator = state_.yearIndicator;
        file.recordStart = core::formatDate(state_.globalSDate);
        file.recordDays = core::globalDays(state_);
        file.fitStart = request_.fitStartText;
        file.fitDays = request_.data.fitDays;
        file.conditional = request_.conditional;
        file.transformation = state_.modelTransformation.codeInForce();
        file.autoregression = modelHasLag_;
        file.predictandName = request_.predictandName;
        file.predictorNames = fileList_;
        // The weather generator finds the predictand by this path, from whatever folder.
        file.predictandPath = core::absolutePath(request_.data.predictandPath);
    }

    const core::ProgramState& state_;
    const CalibrationRequest& request_;
    std::array<double, 12>& meanRatio_;
    FitEnvironment environment_;
    FitMethod method_;
    int code_;
    double missing_;
    std::vector<std::string> fileList_;
    bool modelHasLag_ = request_.autoregression;
    std::optional<CrossValidation> crossValidation_;
    CalibrationResults results_;
};

} // namespace

CalibrationResults calibrate(const core::ProgramState& state, const CalibrationRequest& request,
                             std::array<double, 12>& meanRatio, core::Progress& progress,
                             core::Notifier& notifier) {
    return Calibration(state, request, meanRatio, progress, notifier).run();
}

} // namespace varo::calibration
