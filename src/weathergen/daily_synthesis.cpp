#include "weathergen/daily_synthesis.hpp"

#include "core/failure.hpp"

#include <algorithm>
#include <cmath>
#include <stdexcept>
#include <string>
#include <utility>

namespace varo::weathergen {

SynthesisSettings SynthesisSettings::fromState(const core::ProgramState& state) {
    SynthesisSettings settings;
    settings.precN = state.precN;
    settings.allowNeg = state.allowNeg;
    settings.conditionalSelection = state.conditionalSelection;
    settings.conditionalThresh = state.conditionalThresh;
    settings.biasCorrection = state.biasCorrection;
    settings.thresh = state.thresh;
    settings.missingCode = state.globalMissingCode;
    return settings;
}

double normalDensity(double x) {
    static const double root = std::sqrt(6.2831854);
    return std::exp(-(x * x) / 2.0) / root;
}

void shellSortOneBased(std::vector<double>& values) {
    const long n = static_cast<long>(values.size()) - 1;
    if (n < 1) {
        return;
    }
    const auto passes =
        static_cast<long>(std::floor(1e-05 + 2.0 * std::log(static_cast<double>(n))));
    long gap = n;
    for (long pass = 0; pass < passes; ++pass) {
        gap /= 2;
        for (long i = 1; i <= n - gap; ++i) {
            long j = i;
            while (j >= 1 &&
                   values[static_cast<size_t>(j + gap)] < values[static_cast<size_t>(j)]) {
                std::swap(values[static_cast<size_t>(j + gap)], values[static_cast<size_t>(j)]);
                j -= gap;
            }
        }
    }
}

double findZMin(double tail) {
    constexpr double Step = 0.0001;
    double z = 0.0;
    double area = 0.5;
    double p0 = normalDensity(0.0);
    for (int i = 0; i < 50000; ++i) {
        z -= Step;
        const double p1 = normalDensity(z);
        area -= (p1 + p0) * (Step * 0.5);
        if (area <= tail) {
            break;
        }
        p0 = p1;
    }
    return z;
}

ReferenceSample::ReferenceSample(const std::vector<double>& values, float thresh) {
    sorted_.reserve(values.size() + 1);
    sorted_.push_back(0.0);
    sorted_.insert(sorted_.end(), values.begin(), values.end());
    shellSortOneBased(sorted_);
    const long n = static_cast<long>(values.size());
    for (long i = 1; i <= n; ++i) {
        if (static_cast<float>(sorted_[static_cast<size_t>(i)]) > thresh) {
            firstWet_ = i;
            break;
        }
    }
    wetCount_ = (n - firstWet_) + 1;
    const double tail = 1.0 / static_cast<double>(wetCount_ + 1);
    zMin_ = findZMin(tail);
    zSpan_ = 1.0 - 2.0 * tail;
}

double ReferenceSample::amountForScore(double z) const {
    if (z <= zMin_) {
        return sorted_[static_cast<size_t>(firstWet_)];
    }
    const double h = (z - zMin_) / 100.0;
    double x = zMin_;
    double p0 = normalDensity(x);
    double area = 0.0;
    for (int i = 0; i < 100; ++i) {
        x += h;
        const double p1 = normalDensity(x);
        area += (p1 + p0) * (h * 0.5);
        p0 = p1;
    }
    // An infinite score gives no number at all; it lies above the top like any large one.
    if (!(area <= zSpan_)) {
        area = zSpan_;
    }
    const long rank =
        static_cast<long>(std::floor(static_cast<double>(wetCount_) * area / zSpan_)) + firstWet_;
    const long last = firstWet_ + wetCount_ - 1;
    return sorted_[static_cast<size_t>(rank < last ? rank : last)];
}

DailySynthesis::DailySynthesis(const series::ParameterFile& model,
                               const SynthesisSettings& settings, int ensembleSize,
                               core::UniformRandom& random, const ReferenceSample* sample)
    : model_(model), settings_(settings), ensembleSize_(ensembleSize), random_(random),
      sample_(sample), predictorCount_(model.predictorCount()),
      autoRegressive_(model.autoregression), conditional_(model.conditional),
      transformCode_(model.transformation),
      draws_(static_cast<size_t>(std::max(settings.precN, 1) * MaxEnsembleSize)) {
    if (ensembleSize < 1 || ensembleSize > MaxEnsembleSize) {
        throw std::invalid_argument("ensemble size " + std::to_string(ensembleSize) +
                                    " outside 1 to 100");
    }
    if (conditional_ && transformCode_ == core::TransformInverseNormal &&
        (sample_ == nullptr || sample_->firstWet() == 0)) {
        throw std::invalid_argument("inverse normal amounts need a sample with a wet value");
    }
}

void DailySynthesis::overflowed(int member) {
    throw core::Failure(core::failure::OverflowOccurred, "The value of ensemble member " +
                                                             std::to_string(member + 1) +
                                                             " overflowed.");
}

void DailySynthesis::startLaggedValues(int month) {
    lagged_.fill(model_.month(month).constant());
}

double DailySynthesis::noise(const float* draws, double standardError) const {
    const int precN = settings_.precN;
    if (precN <= 0) {
        return 0.0;
    }
    float sum = 0.0f;
    for (int i = 0; i < precN; ++i) {
        sum += draws[i];
    }
    return (static_cast<double>(sum) - precN / 2.0) * standardError;
}

const float* DailySynthesis::drawNoiseFor(int members) {
    const size_t count = static_cast<size_t>(std::max(settings_.precN, 0) * members);
    random_.fill(draws_.data(), count);
    return draws_.data();
}

double DailySynthesis::boxCoxAmount(double y, const series::MonthParameters& rows) const {
    const double missing = settings_.missingCode;
    double t = y + rows.shift;
    if (rows.lamda == 0.0) {
        t = std::exp(t);
    } else {
        t = t * rows.lamda + 1.0;
        if (t <= 0.0) {
            t = missing;
        } else {
            t = std::exp(std::log(t) / rows.lamda);
        }
    }
    if (t == missing) {
        return missing;
    }
    return (t - rows.shift) * static_cast<double>(settings_.biasCorrection);
}

double DailySynthesis::amountFromTransformed(double y, const series::MonthParameters& rows) const {
    const double b = settings_.biasCorrection;
    switch (transformCode_) {
    case core::TransformFourthRoot:
        return b * std::pow(y, 4.0);
    case core::TransformLog:
        return b * std::exp(y);
    case core::TransformInverseNormal:
        return sample_->amountForScore(b * y);
    case core::TransformBoxCox:
        return boxCoxAmount(y, rows);
    default:
        return b * y;
    }
}

void DailySynthesis::synthesizeDay(int month, const double* predictors, double* memberValues) {
    const double missing = settings_.missingCode;
    for (int i = 0; i < predictorCount_; ++i) {
        if (predictors[i] == missing) {
            for (int m = 0; m < ensembleSize_; ++m) {
                memberValues[m] = missing;
            }
            return;
        }
    }
    const series::MonthParameters& rows = model_.month(month);

    // The regression part is the same for every member; adding the lag term and the noise
    // to it member by member keeps the order of the additions.
    double regression = rows.constant();
    for (int i = 0; i < predictorCount_; ++i) {
        regression += rows.predictorCoefficient(static_cast<size_t>(i)) * predictors[i];
    }
    const double lagCoefficient = autoRegressive_ ? rows.lagCoefficient() : 0.0;
    const double standardError = rows.standardError;
    const int precN = std::max(settings_.precN, 0);
    const float* draws = drawNoiseFor(ensembleSize_);
    for (int m = 0; m < ensembleSize_; ++m) {
        double value = regression;
        if (autoRegressive_) {
            value += lagCoefficient * lagged_[static_cast<size_t>(m)];
        }
        const double drawn = noise(draws + m * precN, standardError);
        if (!conditional_) {
            value += drawn;
        }
        if (!std::isfinite(value)) {
            overflowed(m);
        }
        if (value < 0.0 && !settings_.allowNeg) {
            value = 0.0;
        }
        lagged_[static_cast<size_t>(m)] = value;
        memberValues[m] = value;
    }

    if (conditional_) {
        std::array<bool, MaxEnsembleSize> wet{};
        const bool stochastic = settings_.conditionalSelection == 1;
        if (stochastic) {
            random_.fill(draws_.data(), static_cast<size_t>(ensembleSize_));
        }
        int wetCount = 0;
        for (int m = 0; m < ensembleSize_; ++m) {
            const auto probability = static_cast<float>(memberValues[m]);
            if (stochastic) {
                wet[static_cast<size_t>(m)] = !(probability < draws_[static_cast<size_t>(m)]);
            } else {
                wet[static_cast<size_t>(m)] = probability >= settings_.conditionalThresh;
            }
            wetCount += wet[static_cast<size_t>(m)] ? 1 : 0;
            memberValues[m] = wet[static_cast<size_t>(m)] ? 1.0 : 0.0;
            lagged_[static_cast<size_t>(m)] = memberValues[m];
        }

        const series::AmountParameters& amount = model_.amount(month);
        double amountRegression = amount.constant;
        for (int i = 0; i < predictorCount_; ++i) {
            amountRegression += amount.coefficients[static_cast<size_t>(i)] * predictors[i];
        }
        const double scale = amount.meanRatio;
        const double amountError = amount.standardError;
        const double floor = static_cast<double>(settings_.thresh) + 0.001;
        const float* amountDraws = drawNoiseFor(wetCount);
        for (int m = 0; m < ensembleSize_; ++m) {
            if (!wet[static_cast<size_t>(m)]) {
                continue;
            }
            const double y = scale * amountRegression + noise(amountDraws, amountError);
            amountDraws += precN;
            if (!std::isfinite(y)) {
                overflowed(m);
            }
            double value = amountFromTransformed(y, rows);
            if (value != missing && !(static_cast<float>(value) > settings_.thresh)) {
                value = floor;
            }
            memberValues[m] = value;
        }
    }

    for (int m = 0; m < ensembleSize_; ++m) {
        if (!std::isfinite(memberValues[m])) {
            overflowed(m);
        }
    }
}

} // namespace varo::weathergen
