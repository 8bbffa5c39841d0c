// Which values of a scenario series a treatment touches. A value is missing when it equals
// the missing value code exactly, wet when it is not missing and strictly above the
// threshold, dry when it is neither. A conditional series is treated on its wet values
// only; an unconditional one on every value that is not missing.
#pragma once

namespace varo::scenario {

struct SeriesScope {
    double threshold = 0.0;
    double missingCode = -999.0;
    bool conditional = false;

    bool missing(double value) const { return value == missingCode; }
    bool wet(double value) const { return value != missingCode && value > threshold; }
    bool treated(double value) const { return conditional ? wet(value) : !missing(value); }
};

} // namespace varo::scenario
