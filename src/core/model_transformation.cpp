#include "core/model_transformation.hpp"

namespace varo::core {

ModelTransformation ModelTransformation::fromNumber(float number) {
    ModelTransformation setting;
    setting.number_ = number;
    return setting;
}

std::optional<TransformationCode> ModelTransformation::code() const {
    for (int code = TransformNone; code <= TransformBoxCox; ++code) {
        if (number_ == static_cast<float>(code)) {
            return static_cast<TransformationCode>(code);
        }
    }
    return std::nullopt;
}

int transformationOption(TransformationCode code) {
    return code - TransformNone;
}

TransformationCode transformationOfOption(int option) {
    return static_cast<TransformationCode>(option + TransformNone);
}

} // namespace varo::core
