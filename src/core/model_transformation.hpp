// The model transformation of a conditional model's amounts: its codes, as the settings,
// the parameter file and the SIM file write them, the ModelTransformation setting that
// holds one, and the option of the settings screen that shows it.
#pragma once

#include <optional>

namespace varo::core {

enum TransformationCode : int {
    TransformNone = 1,
    TransformFourthRoot = 2,
    TransformLog = 3,
    TransformInverseNormal = 4,
    TransformBoxCox = 5,
};

// The ModelTransformation setting. A settings file may hold any number under its key; a
// number that is no code is kept as read, so that a save writes it back, while it selects
// no option and a calibration fits without a transformation.
class ModelTransformation {
public:
    constexpr ModelTransformation(TransformationCode code = TransformNone)
        : number_(static_cast<float>(code)) {}
    static ModelTransformation fromNumber(float number);

    // The code the number names, if it names one.
    std::optional<TransformationCode> code() const;
    // The transformation a calibration applies: none for a number that names no code.
    TransformationCode codeInForce() const { return code().value_or(TransformNone); }
    float number() const { return number_; }

    friend bool operator==(const ModelTransformation&, const ModelTransformation&) = default;

private:
    float number_;
};

// The settings screen's options, 0 "None" to 4 "Box Cox", in the order of the codes.
int transformationOption(TransformationCode code);
TransformationCode transformationOfOption(int option);

} // namespace varo::core
