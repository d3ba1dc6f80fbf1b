#include "apps/nyr-survey/io/points_columns.h"

#include "apps/nyr-survey/app/language.h"
#include "apps/nyr-survey/app/texts.h"
#include "apps/nyr-survey/project/survey_point.h"
#include "nyr/values/unit_settings.h"

namespace survey {

namespace {

struct Tag
{
    long unit;
    const char* tag;
};

// The first tag of a unit is the one written.
constexpr Tag kTags[] = {
    {21, "m"},     {22, "fts"},   {23, "fti"},  {11, "deg"}, {12, "dms"},  {13, "d.ms"}, {14, "grad"},
    {15, "gon"},   {16, "g.cc"},  {17, "rev"},  {18, "rad"}, {22, "ftus"}, {23, "ft"},   {11, "dec"},
};

char Fold(char c)
{
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

bool EqualFolded(std::string_view a, std::string_view b)
{
    if (a.size() != b.size())
        return false;
    for (std::size_t i = 0; i < a.size(); ++i) {
        const char ca = a[i] == '_' ? ' ' : Fold(a[i]);
        const char cb = b[i] == '_' ? ' ' : Fold(b[i]);
        if (ca != cb)
            return false;
    }
    return true;
}

std::string_view Trim(std::string_view s)
{
    while (!s.empty() && (s.front() == ' ' || s.front() == '_' || s.front() == '\t'))
        s.remove_prefix(1);
    while (!s.empty() && (s.back() == ' ' || s.back() == '_' || s.back() == '\t'))
        s.remove_suffix(1);
    return s;
}

}  // namespace

const char* UnitTag(long unit)
{
    for (const Tag& t : kTags)
        if (t.unit == unit)
            return t.tag;
    return "";
}

long UnitFromTag(std::string_view tag)
{
    for (const Tag& t : kTags)
        if (EqualFolded(tag, t.tag))
            return t.unit;
    return 0;
}

long ColumnUnit(unsigned int realCol)
{
    switch (realCol) {
    case ColEasting:
    case ColNorthing:
    case ColHeight:
    case ColDistance: return CNyrUnitSettingsDistance::Default().Unit();
    case ColLatitude:
    case ColLongitude: return CNyrUnitSettingsAngleLatLon::Default().Unit();
    case ColAzimuth: return CNyrUnitSettingsAngle::Default().Unit();
    default: return 0;
    }
}

std::string ColumnLabel(unsigned int realCol)
{
    std::string label = Text(TxtColPoint + realCol);
    if (const long unit = ColumnUnit(realCol))
        label += std::string(" [") + UnitTag(unit) + "]";
    return label;
}

int ColumnFromLabel(std::string_view label, long& unit, bool& utc)
{
    unit = 0;
    utc = false;
    label = Trim(label);
    if (const auto open = label.rfind('['); open != std::string_view::npos && label.back() == ']') {
        const std::string_view tag = Trim(label.substr(open + 1, label.size() - open - 2));
        utc = EqualFolded(tag, "utc");
        unit = utc ? 0 : UnitFromTag(tag);
        if (!utc && unit == 0)
            unit = -1;
        label = Trim(label.substr(0, open));
    }
    for (unsigned int c = 0; c < ColCount; ++c) {
        const unsigned int id = TxtColPoint + c;
        if (EqualFolded(label, EnglishText(id)) || EqualFolded(label, Text(id)) || EqualFolded(label, GermanText(id)))
            return static_cast<int>(c);
    }
    return -1;
}

}  // namespace survey
