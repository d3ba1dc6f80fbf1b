#include "apps/nyr-survey/project/survey_project.h"

#include "apps/nyr-survey/project/survey_point.h"

namespace survey {

std::vector<const CSurveyPoint*> ProjectData::Pointers() const
{
    std::vector<const CSurveyPoint*> pointers;
    pointers.reserve(points.size());
    for (const auto& p : points)
        pointers.push_back(p.get());
    return pointers;
}

CSurveyProject::CSurveyProject() = default;
CSurveyProject::~CSurveyProject() = default;

uint32_t CSurveyProject::CodeIndex(std::string_view code)
{
    auto [it, added] = m_codeIndex.try_emplace(std::string(code), static_cast<uint32_t>(m_codes.size()));
    if (added)
        m_codes.push_back(it->first);
    return it->second;
}

const std::string& CSurveyProject::Code(uint32_t index) const
{
    static const std::string empty;
    return index < m_codes.size() ? m_codes[index] : empty;
}

void CSurveyProject::SetBase(const std::string& name, double lat, double lon)
{
    m_baseName = name;
    m_baseLat = lat;
    m_baseLon = lon;
    m_hasBase = true;
    if (++m_baseGeneration == 0)
        m_baseGeneration = 1;
}

void CSurveyProject::ClearBase()
{
    m_baseName.clear();
    m_hasBase = false;
    if (++m_baseGeneration == 0)
        m_baseGeneration = 1;
}

void CSurveyProject::SetUtmZone(int zone, bool north)
{
    m_utmZone = zone;
    m_utmNorth = north;
}

}  // namespace survey
