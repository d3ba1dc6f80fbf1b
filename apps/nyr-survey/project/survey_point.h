#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "apps/nyr-survey/project/geodesy.h"
#include "nyr/time/time.h"
#include "nyrwidgets/views/plan_view.h"
#include "nyrwidgets/views/report_view_item.h"

namespace survey {

class CSurveyProject;

// The seconds count of a point without an observation time: far before
// year 1, so it formats as an empty text and has no GPS time.
inline constexpr int64_t kNoTime = -100000000000;

// The real columns of the point list, in the order they are added.
enum eColumn : unsigned int {
    ColPoint = 0,
    ColCode,
    ColEasting,     // metres, shown in the distance unit
    ColNorthing,
    ColHeight,
    ColLatitude,    // radians, shown in the latitude/longitude unit
    ColLongitude,
    ColObserved,    // CNyrTime, shown in the time format
    ColGpsWeek,     // derived from Observed
    ColGpsSeconds,
    ColDistance,    // geodesic from the base point, distance unit
    ColAzimuth,     // at the base point, angle unit
    ColCount,
};

// One survey point: a row of the point list. It holds its data in standard
// units (metres, radians) and formats a cell only when the view draws it, so
// a change of unit costs nothing per point. The distance and azimuth from
// the project's base point are worked out on first use and kept until the
// base changes. The plan beside the list draws it at its grid position with
// the symbol of its code and its name as label.
//
// Editing (Change, and in place in the list: the name, the code, the grid
// position, the height, latitude and longitude and the observation) keeps
// the point whole: a new grid position moves latitude and longitude with it
// in the project's UTM zone, and the other way round; a new name or
// position of the base point moves the base, so that every distance and
// azimuth is measured anew.
class CSurveyPoint : public CNyrReportViewItem, public CNyrPlanPoint
{
public:
    struct Data
    {
        std::string name;
        uint32_t code = 0;  // index into the project's code table
        double easting = 0.0;
        double northing = 0.0;
        double height = 0.0;
        double lat = 0.0;
        double lon = 0.0;
        CNyrTime observed{kNoTime};
    };

    // Which position an edit sets; the other follows from it.
    enum ePlacedBy { PlacedByGrid, PlacedByLatLon };

    // `project` must outlive the point.
    CSurveyPoint(CSurveyProject& project, Data data);
    ~CSurveyPoint() override;

    const Data& GetData() const { return m_data; }
    const std::string& Name() const { return m_data.name; }
    const std::string& Code() const;
    // Distance (metres) and azimuth (radians) from the base point; NaN
    // without a base.
    Geodesic FromBase() const;

    // The cell text as the list shows it in the current units and format.
    void CellText(unsigned int realCol, std::string& text) const;

    // Takes `data`, its position set by the grid coordinates or by latitude
    // and longitude (the other pair is worked out); data.code indexes the
    // project's code table (CodeIndex). False with the reason, and nothing
    // changed, for an empty name or a position outside the zone's grid.
    bool Change(Data data, ePlacedBy placedBy, std::string& error);
    uint32_t CodeIndex(std::string_view code);

    int OnGetItemText(unsigned int realCol, unsigned int screenCol, std::string& text) override;
    int OnCompareItem(const CNyrReportViewItem* other, unsigned int realCol) override;
    // The measured and time columns offer their values, so that the list
    // sorts them as numbers; they order exactly as OnCompareItem does.
    int OnGetItemSortKey(unsigned int realCol, SORT_KEY& key) const override;
    void OnGetItemColor(unsigned int realItem, unsigned int screenItem, unsigned int realCol, unsigned int screenCol,
                        unsigned int& textColor, unsigned int& backColor) override;
    int OnGetPlanPosition(double& easting, double& northing) const override;
    // The index into the project's code table.
    unsigned int OnGetPlanCode() const override;
    int OnEditItemKind(unsigned int realCol) override;
    void OnEditItemBegin(unsigned int realCol, CNyrInputControl& field) override;
    int OnEditItemSave(unsigned int realCol, CNyrInputControl& field, std::string& message) override;

private:
    bool IsBase() const;

    CSurveyProject* m_project;
    Data m_data;
    mutable uint32_t m_baseGeneration = 0;  // the base m_fromBase belongs to; 0: none yet
    mutable Geodesic m_fromBase{0.0, 0.0};
};

// Point names in natural order: runs of digits compare by their value, so
// "TP 9" comes before "TP 10"; letters without regard to ASCII case.
int CompareNames(const std::string& a, const std::string& b);

}  // namespace survey
