// The plan's lengths and coordinates in the user's units: the scale bar and
// the cursor read-out.
#include <cmath>

#include "nyr/frame/resource_module.h"
#include "nyr/frame/text_ids.h"
#include "nyr/platform/ascii_p.h"
#include "nyr/platform/string_format.h"
#include "nyr/values/unit_settings.h"
#include "nyr/values/value.h"
#include "nyr/values/value_angle.h"
#include "nyrwidgets/views/plan_view_p.h"

namespace {

constexpr long kMetres = 21;

// The current distance unit and how many metres one of it is.
long DistanceUnit(double& metresPerUnit)
{
    long unit = CNyrUnitSettingsDistance::Default().Unit();
    if (CNyrValue::Convert(1.0, unit, metresPerUnit, kMetres, -1, 0) != 0 || !(metresPerUnit > 0.0)) {
        unit = kMetres;
        metresPerUnit = 1.0;
    }
    return unit;
}

std::string Abbreviation(long unit)
{
    std::string text;
    CNyrUnitSettings::UnitAbbreviation(unit, text, 0);
    return text;
}

// A number with as many decimals as a value of `step` needs, at most 6;
// '.' as the point whatever the locale (QString::number ignores it, where
// printf would follow LC_NUMERIC).
std::string Decimal(double value, double step)
{
    const int decimals = step >= 1.0 ? 0 : std::min(6, static_cast<int>(std::ceil(-std::log10(step) - 1e-9)));
    return QString::number(value, 'f', decimals).toStdString();
}

// Latitude and longitude in the geographic angle unit; empty where the
// projection has no answer.
std::string Geographic(double e, double n, const CNyrPlanView::Projection& projection)
{
    double lat = 0.0;
    double lon = 0.0;
    try {
        if (!projection(e, n, lat, lon))
            return {};
    } catch (...) {
        return {};  // the host's projection must not end the program
    }
    CNyrValueAngleLat latitude(lat);
    CNyrValueAngleLon longitude(lon);
    if (!latitude.IsValid() || !longitude.IsValid())
        return {};
    std::string a;
    std::string b;
    latitude.GetString(a);
    longitude.GetString(b);
    std::string text(nyr::ascii::Trimmed(a));
    text += "  ";
    text += nyr::ascii::Trimmed(b);
    return text;
}

}  // namespace

CNyrPlanView::SCALE_BAR nyr::plan_detail::ScaleBarFor(double pixelsPerMetre, double maxPixels)
{
    double metresPerUnit = 1.0;
    const long unit = DistanceUnit(metresPerUnit);
    const double pixelsPerUnit = pixelsPerMetre * metresPerUnit;
    if (!(pixelsPerUnit > 0.0) || !(maxPixels > 0.0) || !std::isfinite(pixelsPerUnit))
        return {};
    const double longest = maxPixels / pixelsPerUnit;
    const double power = std::pow(10.0, std::floor(std::log10(longest)));
    // A little tolerance, so that a bar of exactly maxPixels is taken.
    const double ratio = longest / power * (1 + 1e-12);
    const double value = ratio >= 5 ? 5 * power : ratio >= 2 ? 2 * power : power;
    std::string text = Decimal(value, value);
    const std::string abbreviation = Abbreviation(unit);
    if (!abbreviation.empty())
        text += " " + abbreviation;
    return {value, text, value * pixelsPerUnit};
}

QString nyr::plan_detail::CoordinateText(double e, double n, double pixelSize,
                                         const CNyrPlanView::Projection& projection)
{
    double metresPerUnit = 1.0;
    const long unit = DistanceUnit(metresPerUnit);
    const double step = pixelSize / metresPerUnit;
    std::string text = NyrFormat(NyrLoadString(NYR_IDS_PLAN_CURSOR).c_str(), Decimal(e / metresPerUnit, step).c_str(),
                                 Decimal(n / metresPerUnit, step).c_str(), Abbreviation(unit).c_str());
    if (projection) {
        const std::string geographic = Geographic(e, n, projection);
        if (!geographic.empty())
            text += "   " + geographic;
    }
    return QString::fromStdString(text);
}
