#pragma once

// Sorting a report view's rows by the keys its items offer
// (CNyrReportViewItem::OnGetItemSortKey), checked against their comparison.

#include <vector>

#include "nyrwidgets/views/report_view_p.h"

namespace nyr::views_detail {

// Puts `rows` (real items, each once, in any order) in the order of the
// less-than rule of LessRealItem under `state`, from the items' sort keys:
// each item is asked once per sort column, the keys are sorted as numbers,
// and the result is checked with LessRealItem (so with OnCompareItem) on each
// pair of neighbouring rows. With a comparison that orders consistently, a
// result that passes the check is the only order the rule allows, which the
// full sort through OnCompareItem would give too.
//
// False, with `rows` as they were, when the state has no key column, a row
// has no key for a column or one of another kind than the first row's, or
// the check finds a pair out of order: the caller then sorts through
// OnCompareItem.
bool SortRowsByKeys(std::vector<RealItem>& rows, const std::vector<CNyrReportViewItem*>& items,
                    const std::vector<CNyrReportView::SORT_STATE_REALCOL>& state);

}  // namespace nyr::views_detail
