#pragma once

#include <string>
#include <string_view>

// The column labels of points files and of the point list: a name and, for
// columns with a unit, the unit's tag in brackets ("Easting [fts]"), so that
// an exported file says what its numbers mean and reads back in any unit.
namespace survey {

// The tag of a distance or angle unit code: m fts fti, deg dms d.ms grad gon
// g.cc rev rad. Empty for any other code.
const char* UnitTag(long unit);
// The unit code of a tag (ASCII case ignored; "ft" is international feet,
// "ftus" US survey feet, "dec" degrees); 0 for none.
long UnitFromTag(std::string_view tag);

// The unit a column is shown in now: the distance, angle or lat/lon unit;
// 0 for columns without one.
long ColumnUnit(unsigned int realCol);
// The label of a column in the current language with its unit.
std::string ColumnLabel(unsigned int realCol);

// Which column a header label names and in what unit: -1 for a label that
// names no column; `unit` 0 when the label has no tag, -1 for a tag that is
// not a unit, `utc` for the tag "UTC".
int ColumnFromLabel(std::string_view label, long& unit, bool& utc);

}  // namespace survey
