#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "apps/nyr-survey/project/survey_point.h"

namespace survey {

// What the points of one project share: the table of point codes (points
// keep a small index into it), the base point that distances and azimuths
// are measured from, and the UTM zone of the grid coordinates.
class CSurveyProject
{
public:
    CSurveyProject();
    ~CSurveyProject();
    CSurveyProject(const CSurveyProject&) = delete;
    CSurveyProject& operator=(const CSurveyProject&) = delete;

    // The index of a code, added on first use.
    uint32_t CodeIndex(std::string_view code);
    // The code of an index; empty for an index the table does not hold.
    const std::string& Code(uint32_t index) const;
    std::size_t CodeCount() const { return m_codes.size(); }

    // The base point by name and geodetic position (radians). Changing it
    // makes every point measure again when next asked.
    void SetBase(const std::string& name, double lat, double lon);
    void ClearBase();
    bool HasBase() const { return m_hasBase; }
    const std::string& BaseName() const { return m_baseName; }
    double BaseLat() const { return m_baseLat; }
    double BaseLon() const { return m_baseLon; }
    // Changes with every change of the base point; never 0, so a point's
    // cache starting at 0 is always stale.
    uint32_t BaseGeneration() const { return m_baseGeneration; }

    int UtmZone() const { return m_utmZone; }
    bool UtmNorth() const { return m_utmNorth; }
    void SetUtmZone(int zone, bool north);

private:
    std::vector<std::string> m_codes;
    std::unordered_map<std::string, uint32_t> m_codeIndex;
    std::string m_baseName;
    double m_baseLat = 0.0;
    double m_baseLon = 0.0;
    bool m_hasBase = false;
    uint32_t m_baseGeneration = 1;
    int m_utmZone = 32;
    bool m_utmNorth = true;
};

// A project with its points, as a reader or generator hands it over before
// the view takes the points.
struct ProjectData
{
    std::unique_ptr<CSurveyProject> project = std::make_unique<CSurveyProject>();
    std::vector<std::unique_ptr<CSurveyPoint>> points;

    // The points in order, for writing (WritePointsFile, PointsText).
    std::vector<const CSurveyPoint*> Pointers() const;
};

}  // namespace survey
