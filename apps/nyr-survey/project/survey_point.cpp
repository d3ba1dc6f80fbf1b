#include "apps/nyr-survey/project/survey_point.h"

#include <charconv>
#include <cmath>

#include "apps/nyr-survey/project/gps_time.h"
#include "apps/nyr-survey/project/survey_project.h"
#include "nyr/values/value_angle.h"
#include "nyr/values/value_distance.h"

namespace survey {

namespace {

std::string Distance(double metres)
{
    std::string text;
    if (std::isfinite(metres))
        CNyrValueDistance(metres).GetString(text);
    return text;
}

// Missing values (NaN) sort after every number in ascending order.
int CompareMeasured(double a, double b)
{
    const bool na = std::isnan(a), nb = std::isnan(b);
    if (na || nb)
        return na == nb ? 0 : (na ? 1 : -1);
    return CNyrReportViewItem::Compare(a, b);
}

char FoldAscii(char c)
{
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

bool IsDigit(char c)
{
    return c >= '0' && c <= '9';
}

}  // namespace

CSurveyPoint::CSurveyPoint(CSurveyProject& project, Data data) : m_project(&project), m_data(std::move(data))
{
}

CSurveyPoint::~CSurveyPoint() = default;

int CSurveyPoint::OnGetPlanPosition(double& easting, double& northing) const
{
    easting = m_data.easting;
    northing = m_data.northing;
    return 1;
}

unsigned int CSurveyPoint::OnGetPlanCode() const
{
    return m_data.code;
}

const std::string& CSurveyPoint::Code() const
{
    return m_project->Code(m_data.code);
}

Geodesic CSurveyPoint::FromBase() const
{
    if (!m_project->HasBase())
        return {std::nan(""), std::nan("")};
    if (m_baseGeneration != m_project->BaseGeneration()) {
        m_fromBase = InverseGeodesic(m_project->BaseLat(), m_project->BaseLon(), m_data.lat, m_data.lon);
        m_baseGeneration = m_project->BaseGeneration();
    }
    return m_fromBase;
}

void CSurveyPoint::CellText(unsigned int realCol, std::string& text) const
{
    text.clear();
    int week = 0;
    double seconds = 0.0;
    switch (realCol) {
    case ColPoint: text = m_data.name; break;
    case ColCode: text = Code(); break;
    case ColEasting: text = Distance(m_data.easting); break;
    case ColNorthing: text = Distance(m_data.northing); break;
    case ColHeight: text = Distance(m_data.height); break;
    case ColLatitude: CNyrValueAngleLat(m_data.lat).GetString(text); break;
    case ColLongitude: CNyrValueAngleLon(m_data.lon).GetString(text); break;
    case ColObserved: text = m_data.observed.Format(); break;
    case ColGpsWeek:
        if (GpsFromTime(m_data.observed, week, seconds))
            text = std::to_string(week);
        break;
    case ColGpsSeconds:
        if (GpsFromTime(m_data.observed, week, seconds)) {
            char buffer[32];
            const auto r = std::to_chars(buffer, buffer + sizeof buffer, seconds, std::chars_format::fixed, 3);
            text.assign(buffer, r.ptr);
        }
        break;
    case ColDistance: text = Distance(FromBase().distance); break;
    case ColAzimuth: {
        const double azimuth = FromBase().azimuth;
        if (std::isfinite(azimuth))
            CNyrValueAngle(azimuth).GetString(text);
        break;
    }
    default: break;
    }
}

int CSurveyPoint::OnGetItemText(unsigned int realCol, unsigned int screenCol, std::string& text)
{
    (void)screenCol;
    CellText(realCol, text);
    return 1;
}

int CSurveyPoint::OnCompareItem(const CNyrReportViewItem* other, unsigned int realCol)
{
    const auto* that = static_cast<const CSurveyPoint*>(other);
    const Data& a = m_data;
    const Data& b = that->m_data;
    switch (realCol) {
    case ColPoint: return CompareNames(a.name, b.name);
    case ColCode: return CompareIS(Code(), that->Code());
    case ColEasting: return CompareMeasured(a.easting, b.easting);
    case ColNorthing: return CompareMeasured(a.northing, b.northing);
    case ColHeight: return CompareMeasured(a.height, b.height);
    case ColLatitude: return CompareMeasured(a.lat, b.lat);
    case ColLongitude: return CompareMeasured(a.lon, b.lon);
    // GPS time runs with the instant, so its columns sort as the observation.
    case ColObserved:
    case ColGpsWeek:
    case ColGpsSeconds: return Compare(a.observed, b.observed);
    case ColDistance: return CompareMeasured(FromBase().distance, that->FromBase().distance);
    case ColAzimuth: return CompareMeasured(FromBase().azimuth, that->FromBase().azimuth);
    default: return 0;
    }
}

int CSurveyPoint::OnGetItemSortKey(unsigned int realCol, SORT_KEY& key) const
{
    const Data& d = m_data;
    switch (realCol) {
    case ColEasting: key.SetNumber(d.easting); return 1;
    case ColNorthing: key.SetNumber(d.northing); return 1;
    case ColHeight: key.SetNumber(d.height); return 1;
    case ColLatitude: key.SetNumber(d.lat); return 1;
    case ColLongitude: key.SetNumber(d.lon); return 1;
    case ColObserved:
    case ColGpsWeek:
    case ColGpsSeconds: key.SetTime(d.observed); return 1;
    case ColDistance: key.SetNumber(FromBase().distance); return 1;
    case ColAzimuth: key.SetNumber(FromBase().azimuth); return 1;
    default: return 0;  // names and codes: natural and case-blind order
    }
}

void CSurveyPoint::OnGetItemColor(unsigned int realItem, unsigned int screenItem, unsigned int realCol,
                                  unsigned int screenCol, unsigned int& textColor, unsigned int& backColor)
{
    (void)realItem, (void)screenItem, (void)realCol, (void)screenCol, (void)textColor;
    // The base point stands out in every column.
    if (IsBase())
        backColor = NyrRGB(255, 244, 200);
}

int CompareNames(const std::string& a, const std::string& b)
{
    std::size_t i = 0, j = 0;
    while (i < a.size() && j < b.size()) {
        if (IsDigit(a[i]) && IsDigit(b[j])) {
            // Compare the digit runs by value: skip leading zeros, then the
            // longer run is larger, else the first differing digit decides.
            while (i < a.size() && a[i] == '0')
                ++i;
            while (j < b.size() && b[j] == '0')
                ++j;
            std::size_t ei = i, ej = j;
            while (ei < a.size() && IsDigit(a[ei]))
                ++ei;
            while (ej < b.size() && IsDigit(b[ej]))
                ++ej;
            if (ei - i != ej - j)
                return ei - i < ej - j ? -1 : 1;
            for (; i < ei; ++i, ++j)
                if (a[i] != b[j])
                    return a[i] < b[j] ? -1 : 1;
            continue;
        }
        const char ca = FoldAscii(a[i]), cb = FoldAscii(b[j]);
        if (ca != cb)
            return static_cast<unsigned char>(ca) < static_cast<unsigned char>(cb) ? -1 : 1;
        ++i, ++j;
    }
    if (i < a.size() || j < b.size())
        return i < a.size() ? 1 : -1;
    return CNyrReportViewItem::Compare(a, b);  // equal but for case or leading zeros: byte order decides
}

}  // namespace survey
