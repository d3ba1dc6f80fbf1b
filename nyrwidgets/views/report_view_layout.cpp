// Column layout of CNyrReportView: the stored "ColWidth" and "ColOrder", the
// defaults, the columns dialog and the restore as a view opens.
#include <QHeaderView>
#include <algorithm>
#include <numeric>

#include "nyr/util/profile_entries.h"
#include "nyr/views/stored_layout_p.h"
#include "nyrwidgets/frame/dialog_hook.h"
#include "nyrwidgets/views/report_view_columns_dlg.h"
#include "nyrwidgets/views/report_view_p.h"

using nyr::views_detail::IxInt;

using nyr::detail::kStoredWidthDeleted;
using nyr::detail::kStoredWidthHidden;

namespace {

int& ColWidthDefaultValue()
{
    static int value = 0;
    return value;
}

int& ColOrderDefaultValue()
{
    static int value = 0;
    return value;
}

}  // namespace

// ---------------------------------------------------------------------------
// Stored values

int CNyrReportView::StoreColWidthAndHidden()
{
    return d->StoreColWidthAndHiddenIn(InifileSection());
}

int CNyrReportViewPrivate::StoreColWidthAndHiddenIn(const std::string& section)
{
    if (cols.empty())
        return 0;
    std::vector<int> values;
    values.reserve(cols.size());
    for (std::size_t c = 0; c < cols.size(); ++c) {
        const CNyrReportViewCol* col = cols[c].get();
        if (col->IsDeleted())
            values.push_back(kStoredWidthDeleted);
        else if (col->IsHidden())
            values.push_back(kStoredWidthHidden);
        else
            values.push_back(q->horizontalHeader()->sectionSize(IxInt(realToScreenCol[c])));
    }
    return CNyrProfileEntries::WriteNyrProfileIntVector(section, CNyrProfileEntries::ReportViewColWidth(), values);
}

int CNyrReportView::StoreColOrder()
{
    return d->StoreColOrderIn(InifileSection());
}

int CNyrReportViewPrivate::StoreColOrderIn(const std::string& section)
{
    if (cols.empty())
        return 0;
    std::vector<int> values;
    values.reserve(cols.size());
    for (std::size_t c = 0; c < cols.size(); ++c) {
        CNyrReportViewCol* col = cols[c].get();
        col->SetOrder(col->IsVisible() ? q->horizontalHeader()->visualIndex(IxInt(realToScreenCol[c]))
                                       : static_cast<int>(c));
        values.push_back(col->GetOrder());
    }
    return CNyrProfileEntries::WriteNyrProfileIntVector(section, CNyrProfileEntries::ReportViewColOrder(), values);
}

int CNyrReportView::LoadColWidthAndHidden(std::vector<int>& widths)
{
    widths.clear();
    if (d->cols.empty())
        return 0;
    CNyrProfileEntries::ReadNyrProfileIntVector(InifileSection(), CNyrProfileEntries::ReportViewColWidth(), widths);
    return nyr::detail::FillColWidths(widths, static_cast<unsigned int>(d->cols.size())) ? 1 : 0;
}

int CNyrReportView::LoadColOrder(std::vector<int>& order)
{
    order.clear();
    if (d->cols.empty())
        return 0;
    CNyrProfileEntries::ReadNyrProfileIntVector(InifileSection(), CNyrProfileEntries::ReportViewColOrder(), order);
    return nyr::detail::FillColOrder(order, static_cast<unsigned int>(d->cols.size())) ? 1 : 0;
}

void CNyrReportView::ApplyColWidthAndHidden(const std::vector<int>& widths)
{
    using nyr::detail::ColumnChange;
    std::vector<nyr::detail::ColumnNow> now;
    for (const auto& col : d->cols)
        now.push_back({col->IsDeleted(), col->IsVisible()});
    std::vector<nyr::detail::ColumnAction> actions;
    if (!nyr::detail::PlanColWidths(widths, now, horizontalHeader()->minimumSectionSize(), actions))
        return;
    for (std::size_t c = 0; c < actions.size(); ++c) {
        const auto realCol = static_cast<unsigned int>(c);
        switch (actions[c].change) {
        case ColumnChange::Delete: DeleteRealCol(realCol, 1); break;
        case ColumnChange::Hide: HideRealCol(realCol, 1, 1); break;
        case ColumnChange::Show:
            // The width first, so that the column shows with it.
            SetRealColWidth(realCol, actions[c].width);
            HideRealCol(realCol, 0, 1);
            break;
        case ColumnChange::Keep: break;
        }
    }
}

void CNyrReportView::ApplyColOrder(const std::vector<int>& order)
{
    const std::size_t n = std::min(order.size(), d->cols.size());
    for (std::size_t c = 0; c < n; ++c)
        d->cols[c]->SetOrder(order[c]);
    // DisplayRealCols places the visible columns by their order fields,
    // equal ones in real order.
    DisplayRealCols();
    HoldAllColInfos();
}

// ---------------------------------------------------------------------------
// Switches and defaults

void CNyrReportView::SerializeColWidthAndHidden(int serialize)
{
    d->serializeColWidth = serialize;
}

int CNyrReportView::GetSerializeColWidthAndHidden() const
{
    return d->serializeColWidth;
}

void CNyrReportView::SerializeColOrder(int serialize)
{
    d->serializeColOrder = serialize;
}

int CNyrReportView::GetSerializeColOrder() const
{
    return d->serializeColOrder;
}

void CNyrReportView::SerializeColWidthAndHiddenDefault(int serialize)
{
    ColWidthDefaultValue() = serialize;
}

int CNyrReportView::GetSerializeColWidthAndHiddenDefault()
{
    return ColWidthDefaultValue();
}

void CNyrReportView::SerializeColOrderDefault(int serialize)
{
    ColOrderDefaultValue() = serialize;
}

int CNyrReportView::GetSerializeColOrderDefault()
{
    return ColOrderDefaultValue();
}

int CNyrReportView::SetRealColWidth(unsigned int realCol, int width)
{
    if (realCol >= d->cols.size() || width < 0)
        return 0;
    d->cols[realCol]->SetWidth(width);
    return 1;
}

void CNyrReportView::HoldAllColInfos()
{
    const QHeaderView* header = horizontalHeader();
    for (std::size_t s = 0; s < d->screenToRealCol.size(); ++s) {
        CNyrReportViewCol* col = d->Col(d->screenToRealCol[s]);
        const int section = static_cast<int>(s);
        CNyrReportViewPrivate::TakeColumnWidth(*col, header->sectionSize(section));
        col->SetOrder(header->visualIndex(section));
        col->SetLeft(header->sectionPosition(section));
    }
}

void CNyrReportView::HoldRealColsDefaults()
{
    HoldAllColInfos();
    for (std::size_t c = 0; c < d->cols.size(); ++c) {
        CNyrReportViewCol* col = d->cols[c].get();
        if (col->IsDeleted())
            continue;
        col->SetHiddenDefault(col->IsHidden());
        col->SetWidthDefault(col->GetWidth());
        CNyrReportViewPrivate::SetColumnOrderDefault(*col, col->IsVisible() ? col->GetOrder() : static_cast<int>(c));
    }
}

int CNyrReportView::GetRealColOrderDefault(unsigned int realCol) const
{
    return realCol < d->cols.size() ? CNyrReportViewPrivate::ColumnOrderDefault(*d->cols[realCol]) : -1;
}

// ---------------------------------------------------------------------------
// The columns dialog

int CNyrReportView::ColumnsDialog()
{
    if (!d->columnsDlgStyle)
        return 0;
    CNyrReportViewColumnsDlg dialog(this);
    if (NyrExecDialog(dialog) != QDialog::Accepted)
        return 0;
    const std::vector<CNyrReportViewColumnsDlg::COLUMN> columns = dialog.GetColumns();
    HoldAllColInfos();
    // Visibility first (the columns' hooks may veto), then the widths of
    // the columns as they now stand, then the order of all.
    if (d->columnsDlgStyle & ColumnsDlgVisibility) {
        for (const auto& c : columns)
            HideRealCol(c.realCol, c.visible ? 0 : 1, 1);
    }
    if (d->columnsDlgStyle & ColumnsDlgWidth) {
        for (const auto& c : columns)
            SetRealColWidth(c.realCol, c.width);
    }
    std::vector<int> order(d->cols.size());
    for (std::size_t c = 0; c < order.size(); ++c)
        order[c] = d->cols[c]->GetOrder();
    if (d->columnsDlgStyle & (ColumnsDlgOrder | ColumnsDlgDefaults)) {
        for (std::size_t pos = 0; pos < columns.size(); ++pos)
            order[columns[pos].realCol] = static_cast<int>(pos);
    }
    ApplyColOrder(order);
    if (d->serializeColWidth)
        StoreColWidthAndHidden();
    if (d->serializeColOrder)
        StoreColOrder();
    return 1;
}

void CNyrReportView::SetColumnsDlgStyle(unsigned int style)
{
    d->columnsDlgStyle = style;
}

unsigned int CNyrReportView::GetColumnsDlgStyle() const
{
    return d->columnsDlgStyle;
}

// ---------------------------------------------------------------------------
// Opening and closing

void CNyrReportView::RestoreLayout()
{
    if (d->serializeColWidth) {
        std::vector<int> widths;
        if (LoadColWidthAndHidden(widths))
            ApplyColWidthAndHidden(widths);
    }
    if (d->serializeColOrder) {
        // Only a stored order is applied: without one the columns keep the
        // order the application gave them.
        std::vector<int> stored;
        CNyrProfileEntries::ReadNyrProfileIntVector(InifileSection(), CNyrProfileEntries::ReportViewColOrder(),
                                                    stored);
        std::vector<int> order;
        if (!stored.empty() && LoadColOrder(order))
            ApplyColOrder(order);
    }
    if (d->serializeColWidth || d->serializeColOrder)
        HoldAllColInfos();
    if (d->serializeSortState) {
        std::vector<SORT_STATE_REALCOL> state;
        if (LoadSortState(state) && state.size() <= 3) {
            d->sortState = state;
            d->UpdateSortMarks();
            if (!d->screenToRealItem.empty())
                d->ResortScreen();
        }
    }
}

void CNyrReportViewPrivate::StoreLayoutOnClose()
{
    if (!live)
        return;
    if (serializeColWidth)
        StoreColWidthAndHiddenIn(liveSection);
    if (serializeColOrder)
        StoreColOrderIn(liveSection);
}
