// Sorting of CNyrReportView: the sort state, the header marks, the stored
// "SortState" and the header click rules.
#include "nyr/frame/notifications.h"
#include "nyr/util/profile_entries.h"
#include "nyr/views/stored_layout_p.h"
#include "nyrwidgets/frame/dialog_hook.h"
#include "nyrwidgets/frame/wait_cursor.h"
#include "nyrwidgets/views/header_ctrl_sort.h"
#include "nyrwidgets/views/report_view_p.h"
#include "nyrwidgets/views/report_view_sort_multiple_dlg.h"

using nyr::views_detail::Ix;
using nyr::views_detail::kOffScreenCol;
using SORT_STATE_REALCOL = CNyrReportView::SORT_STATE_REALCOL;
using SORT_STATE_SCREENCOL = CNyrListView::SORT_STATE_SCREENCOL;

namespace {

int& SerializeSortStateDefault()
{
    static int value = 0;
    return value;
}

bool SameState(const std::vector<SORT_STATE_REALCOL>& a, const std::vector<SORT_STATE_REALCOL>& b)
{
    if (a.size() != b.size())
        return false;
    for (std::size_t i = 0; i < a.size(); ++i) {
        if (a[i].realCol != b[i].realCol || (a[i].ascending != 0) != (b[i].ascending != 0))
            return false;
    }
    return true;
}

}  // namespace

void CNyrReportViewPrivate::UpdateSortMarks()
{
    // Keys on columns that are not on screen cannot be marked; the marks stop
    // where the state does.
    std::vector<SORT_STATE_SCREENCOL> screen;
    for (const SORT_STATE_REALCOL& key : sortState) {
        if (key.realCol == NYR_NO_INDEX)
            break;
        if (key.realCol < cols.size() && realToScreenCol[key.realCol] != kOffScreenCol)
            screen.push_back({Ix(realToScreenCol[key.realCol]), key.ascending});
    }
    q->ShowSortMarks(screen);
}

void CNyrReportView::SortList(const std::vector<SORT_STATE_REALCOL>& state)
{
    // Three sort columns at most: a longer state is ignored. Intended.
    if (state.size() > 3)
        return;
    CNyrWaitCursor wait;
    d->sortState = state;
    d->UpdateSortMarks();
    d->ResortScreen();
    if (d->serializeSortState)
        StoreSortState();
    OnSortOrderChanged();
}

void CNyrReportView::SortList(const std::vector<SORT_STATE_SCREENCOL>& state)
{
    std::vector<SORT_STATE_REALCOL> real;
    for (const SORT_STATE_SCREENCOL& key : state) {
        if (key.screenCol == NYR_NO_INDEX)
            break;
        const int realCol = RealColFromScreen(static_cast<int>(key.screenCol));
        if (realCol < 0)
            break;
        real.push_back({static_cast<unsigned int>(realCol), key.ascending});
    }
    SortList(real);
}

void CNyrReportView::GetSortState(std::vector<SORT_STATE_REALCOL>& state) const
{
    state = d->sortState;
}

void CNyrReportView::SetUnsortedState()
{
    d->sortState.clear();
    d->UpdateSortMarks();
}

void CNyrReportView::RefreshHeaderSortedState()
{
    d->UpdateSortMarks();
}

void CNyrReportView::HideHeaderSortedState()
{
    ShowSortMarks({});
}

int CNyrReportView::StoreSortState()
{
    std::vector<nyr::detail::StoredSortKey> keys;
    for (const SORT_STATE_REALCOL& key : d->sortState)
        keys.push_back({key.realCol, key.ascending ? 1 : 0});
    return CNyrProfileEntries::WriteNyrProfileIntVector(InifileSection(), CNyrProfileEntries::ReportViewSortState(),
                                                       nyr::detail::FormatSortState(keys));
}

int CNyrReportView::LoadSortState(std::vector<SORT_STATE_REALCOL>& state)
{
    state.clear();
    std::vector<int> values;
    CNyrProfileEntries::ReadNyrProfileIntVector(InifileSection(), CNyrProfileEntries::ReportViewSortState(), values);
    std::vector<nyr::detail::StoredSortKey> keys;
    if (!nyr::detail::ParseSortState(values, static_cast<unsigned int>(d->cols.size()), keys))
        return 0;
    for (const nyr::detail::StoredSortKey& key : keys)
        state.push_back({key.realCol, key.ascending});
    return 1;
}

void CNyrReportView::SetSerializeSortState(int serialize)
{
    d->serializeSortState = serialize;
}

int CNyrReportView::GetSerializeSortState() const
{
    return d->serializeSortState;
}

void CNyrReportView::SetSerializeSortStateDefault(int serialize)
{
    SerializeSortStateDefault() = serialize;
}

int CNyrReportView::GetSerializeSortStateDefault()
{
    return SerializeSortStateDefault();
}

int CNyrReportView::SortMultiple()
{
    CNyrReportViewSortMultipleDlg dialog(this);
    if (NyrExecDialog(dialog) != QDialog::Accepted)
        return 0;
    SortList(dialog.GetSortState());
    return 1;
}

void CNyrReportView::OnHeaderClick(int screenCol)
{
    const int realCol = RealColFromScreen(screenCol);
    if (realCol < 0)
        return;
    const auto r = static_cast<unsigned int>(realCol);
    // The same single column again inverts the direction; any other column
    // starts ascending. A click never goes back to the unsorted order.
    const bool same = d->sortState.size() == 1 && d->sortState[0].realCol == r;
    SortList(std::vector<SORT_STATE_REALCOL>{{r, same ? !d->sortState[0].ascending : 1}});
}

void CNyrReportViewPrivate::SortByMenuColumn(bool ascending)
{
    if (menuRealCol < 0)
        return;
    const std::vector<SORT_STATE_REALCOL> state{{static_cast<unsigned int>(menuRealCol), ascending ? 1 : 0}};
    if (!SameState(state, sortState))
        q->SortList(state);
}
