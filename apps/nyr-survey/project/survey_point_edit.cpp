// Editing a survey point: whole, through Change, and cell by cell in the
// list's typed fields.
#include <cmath>

#include "apps/nyr-survey/app/texts.h"
#include "apps/nyr-survey/project/survey_point.h"
#include "apps/nyr-survey/project/survey_project.h"
#include "nyrwidgets/input/input_string.h"
#include "nyrwidgets/input/input_time.h"
#include "nyrwidgets/input/input_value.h"

namespace survey {

namespace {

// The typed field of each column; derived columns (GPS time, distance and
// azimuth from the base) are not edited.
int FieldKind(unsigned int realCol)
{
    switch (realCol) {
    case ColPoint:
    case ColCode: return NYR_INPUT_STRING;
    case ColEasting:
    case ColNorthing:
    case ColHeight: return NYR_INPUT_DISTANCE;
    case ColLatitude: return NYR_INPUT_LATITUDE;
    case ColLongitude: return NYR_INPUT_LONGITUDE;
    case ColObserved: return NYR_INPUT_DATETIME;
    default: return NYR_INPUT_NONE;
    }
}

}  // namespace

bool CSurveyPoint::IsBase() const
{
    return m_project->HasBase() && m_project->BaseName() == m_data.name;
}

uint32_t CSurveyPoint::CodeIndex(std::string_view code)
{
    return m_project->CodeIndex(code);
}

bool CSurveyPoint::Change(Data data, ePlacedBy placedBy, std::string& error)
{
    if (data.name.find_first_not_of(" \t") == std::string::npos) {
        error = Text(TxtErrPointName);
        return false;
    }
    UtmPosition utm{m_project->UtmZone(), m_project->UtmNorth(), data.easting, data.northing};
    const bool placed = placedBy == PlacedByGrid ? UtmToLatLon(utm, data.lat, data.lon)
                                                 : LatLonToUtm(data.lat, data.lon, utm, m_project->UtmZone());
    if (!placed || !std::isfinite(data.lat) || !std::isfinite(data.lon)) {
        error = QText(TxtErrOutsideZone).arg(m_project->UtmZone()).toStdString();
        return false;
    }
    data.easting = utm.easting;
    data.northing = utm.northing;
    const bool base = IsBase();
    m_data = std::move(data);
    m_baseGeneration = 0;  // its own geodesic from the base is measured anew
    if (base)
        m_project->SetBase(m_data.name, m_data.lat, m_data.lon);
    return true;
}

int CSurveyPoint::OnEditItemKind(unsigned int realCol)
{
    return FieldKind(realCol);
}

void CSurveyPoint::OnEditItemBegin(unsigned int realCol, CNyrInputControl& field)
{
    switch (realCol) {
    case ColPoint: static_cast<CNyrInputString&>(field).SetValue(m_data.name); break;
    case ColCode:
        field.SetAllowEmpty(true);
        static_cast<CNyrInputString&>(field).SetValue(Code());
        break;
    case ColEasting: static_cast<CNyrInputValue&>(field).SetValue(m_data.easting); break;
    case ColNorthing: static_cast<CNyrInputValue&>(field).SetValue(m_data.northing); break;
    case ColHeight:
        field.SetAllowEmpty(true);
        if (std::isfinite(m_data.height))
            static_cast<CNyrInputValue&>(field).SetValue(m_data.height);
        break;
    case ColLatitude: static_cast<CNyrInputValue&>(field).SetValue(m_data.lat); break;
    case ColLongitude: static_cast<CNyrInputValue&>(field).SetValue(m_data.lon); break;
    case ColObserved:
        field.SetAllowEmpty(true);
        if (m_data.observed.GetTime().GetTime() != kNoTime)
            static_cast<CNyrInputDateTime&>(field).SetValue(m_data.observed);
        break;
    default: break;
    }
}

int CSurveyPoint::OnEditItemSave(unsigned int realCol, CNyrInputControl& field, std::string& message)
{
    Data data = m_data;
    ePlacedBy placedBy = PlacedByGrid;
    switch (realCol) {
    case ColPoint: data.name = static_cast<CNyrInputString&>(field).GetValue(); break;
    case ColCode: data.code = CodeIndex(static_cast<CNyrInputString&>(field).GetValue()); break;
    case ColEasting: data.easting = static_cast<CNyrInputValue&>(field).GetValue(); break;
    case ColNorthing: data.northing = static_cast<CNyrInputValue&>(field).GetValue(); break;
    case ColHeight:
        data.height = field.IsEmpty() ? std::nan("") : static_cast<CNyrInputValue&>(field).GetValue();
        break;
    case ColLatitude:
        data.lat = static_cast<CNyrInputValue&>(field).GetValue();
        placedBy = PlacedByLatLon;
        break;
    case ColLongitude:
        data.lon = static_cast<CNyrInputValue&>(field).GetValue();
        placedBy = PlacedByLatLon;
        break;
    case ColObserved:
        data.observed = field.IsEmpty() ? CNyrTime(kNoTime) : static_cast<CNyrInputDateTime&>(field).GetValue();
        break;
    default: return 0;
    }
    return Change(std::move(data), placedBy, message) ? 1 : 0;
}

}  // namespace survey
