#pragma once

// Sorting a report view's rows by the keys its items offer
// (CNyrReportViewItem::OnGetItemSortKey), checked against their comparison.

#include <vector>

#include "nyrwidgets/views/intro_sort_p.h"
#include "nyrwidgets/views/report_view_p.h"

namespace nyr::views_detail {

// Whether `less` holds for every pair of neighbouring rows (rows 0 .. n - 1,
// row s being the real item realAt(s)), or with `reversed` for every pair
// taken the other way round; stops at the first pair that fails. The items
// lie anywhere in memory: each is fetched a few rows ahead, and its pointer
// a few rows before that.
template <class RealAt>
bool NeighboursInOrder(std::size_t n, RealAt realAt, const std::vector<CNyrReportViewItem*>& items,
                       const LessRealItem& less, bool reversed)
{
    const auto entry = [&](std::size_t s) {
        const std::uint32_t r = realAt(s);
        return SortEntry{items[r], static_cast<RealItem>(r)};
    };
    for (std::size_t s = 1; s < n; ++s) {
        if (s + 2 * kAheadDistance < n)
            __builtin_prefetch(&items[realAt(s + 2 * kAheadDistance)]);
        if (s + kAheadDistance < n)
            PrefetchItem()(entry(s + kAheadDistance));
        if (!(reversed ? less(entry(s), entry(s - 1)) : less(entry(s - 1), entry(s))))
            return false;
    }
    return true;
}

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
