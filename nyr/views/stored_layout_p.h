#pragma once

// The stored forms of a report view's sort state ("SortState") and column
// layout ("ColWidth", "ColOrder"), read and checked without Qt, so that the
// rules for stored values live in one place and the core's fuzz targets
// reach them. CNyrReportView (nyrwidgets/views) reads and writes its values
// through these. Exported for that library and the fuzz targets only; not
// part of the installed interface.
//
// A stored value that does not fit is refused whole, or its bad entries are
// skipped as stated below: whatever a settings file holds, the view ends up
// with a layout it can show.

#include <vector>

#include "nyr/platform/export.h"

namespace nyr::detail {

// One key of a sort state: a real column (0xFFFFFFFF ends a state early)
// and 1 for ascending, 0 for descending.
struct StoredSortKey
{
    unsigned int realCol = 0;
    int ascending = 1;
    bool operator==(const StoredSortKey&) const = default;
};

// "SortState": real column, then ascending flag, for each key in order.
// Refused whole (false, `keys` empty) when empty, of an odd length, or with a
// column below 0 or above `columns`; a column equal to `columns` passes (the
// bound is kept as it always was: intended). A non-zero flag reads as 1.
NYR_EXPORT bool ParseSortState(const std::vector<int>& values, unsigned int columns,
                               std::vector<StoredSortKey>& keys);
NYR_EXPORT std::vector<int> FormatSortState(const std::vector<StoredSortKey>& keys);

// "ColWidth" entries: a deleted and a hidden column; any other value of 0 or
// more is a width in pixels, shown.
inline constexpr int kStoredWidthDeleted = -2;
inline constexpr int kStoredWidthHidden = -1;
// The width of a column added since the value was stored, in pixels.
inline constexpr int kStoredWidthNew = 80;
// The widest column the layout takes, in pixels.
inline constexpr int kStoredWidthMax = 32767;

// A "ColWidth" value made to fit `columns` columns: a shorter one is filled
// up with kStoredWidthNew, a longer one is passed on. False (and `widths`
// empty) when there are no columns or nothing was stored.
NYR_EXPORT bool FillColWidths(std::vector<int>& widths, unsigned int columns);

// A column as the view holds it now, and what a stored width does to it.
struct ColumnNow
{
    bool deleted = false;
    bool visible = true;
};
enum class ColumnChange { Keep, Delete, Hide, Show };
struct ColumnAction
{
    ColumnChange change = ColumnChange::Keep;
    int width = 0;  // pixels, for Show
    bool operator==(const ColumnAction&) const = default;
};

// The changes a "ColWidth" value asks of the columns `now`, one per column:
// kStoredWidthDeleted deletes, kStoredWidthHidden hides, a value of 0 or more
// shows the column with that width (clamped to [minWidth, kStoredWidthMax];
// minWidth is the header's least section size in pixels). Other negative
// values, entries past the last column and columns the value does not reach
// keep the column as it is; a deleted column is kept deleted. A value that
// would leave no column on screen is refused whole: false, every action Keep.
NYR_EXPORT bool PlanColWidths(const std::vector<int>& widths, const std::vector<ColumnNow>& now, int minWidth,
                              std::vector<ColumnAction>& actions);

// A "ColOrder" value made to fit `columns` columns: nothing stored gives 0,
// 1, 2, ...; a shorter value is filled up with each missing column's own
// real index; a longer one is passed on. False when there are no columns.
NYR_EXPORT bool FillColOrder(std::vector<int>& order, unsigned int columns);

// The display order of the visible columns: their real indexes in ascending
// order of their order values, equal values in real order. The values are
// sort keys, not checked positions, so duplicates, gaps, negative numbers
// and numbers past the column count still show every visible column exactly
// once. `order` and `visible` have one entry per real column.
NYR_EXPORT std::vector<unsigned int> DisplayOrder(const std::vector<int>& order, const std::vector<bool>& visible);

}  // namespace nyr::detail
