#pragma once

#include "nyr/values/value.h"

// A distance in metres, shown in the distance unit of its settings
// (CNyrUnitSettingsDistance::Default() unless given). Magnitudes up to 1e12 m.
class NYR_EXPORT CNyrValueDistance : public CNyrValue
{
public:
    // An initial value that fails the checks leaves 0 and a status.
    explicit CNyrValueDistance(double metres = 0.0);
    CNyrValueDistance(double metres, CNyrUnitSettings& settings);
    CNyrValueDistance(const CNyrValueDistance&) = default;
    CNyrValueDistance& operator=(const CNyrValueDistance& other);
    using CNyrValue::operator=;

    void StdFormat(std::string& out) const override;
    long StdUnit() const override;
    bool CheckUnit(long unit) const override;

protected:
    double MaxMagnitude() const override;
};
