// The commands of CNyrReportView: each registered message with its menu
// text, when the menus offer it and what the view does on it. The context
// menus are built from this table and the view's message handler runs it, so
// that a command's message, text and action are written once.
#include <QHeaderView>

#include "nyr/frame/notifications.h"
#include "nyr/frame/text_ids.h"
#include "nyrwidgets/frame/message_event.h"
#include "nyrwidgets/views/header_ctrl_sort.h"
#include "nyrwidgets/views/report_view_menu.h"
#include "nyrwidgets/views/report_view_p.h"
#include "nyrwidgets/views/view_print_list.h"

namespace {

// The number of a registered notification, as the table's entries ask for it.
template <const unsigned int& message>
unsigned int Registered()
{
    return message;
}

using View = CNyrReportView;

bool AnyRow(const View& v)
{
    return v.GetItemCount() > 0;
}

bool AnyColumn(const View& v)
{
    return v.GetColumnCount() > 0;
}

}  // namespace

std::span<const CNyrReportViewPrivate::Command> CNyrReportViewPrivate::Commands()
{
    static const Command table[] = {
        // The header menu.
        {Registered<WM_NYR_REPORTVIEW_AUTO_ARRANGE>, NYR_IDS_MENU_AUTO_ARRANGE, AnyColumn,
         [](View& v) { v.AutoArrangeColumns(); }},
        {Registered<WM_NYR_REPORTVIEW_SORT_ASCENDING>, NYR_IDS_MENU_SORT_ASCENDING,
         [](const View& v) { return Of(v).menuRealCol >= 0; }, [](View& v) { Of(v).SortByMenuColumn(true); }},
        {Registered<WM_NYR_REPORTVIEW_SORT_DESCENDING>, NYR_IDS_MENU_SORT_DESCENDING,
         [](const View& v) { return Of(v).menuRealCol >= 0; }, [](View& v) { Of(v).SortByMenuColumn(false); }},
        {Registered<WM_NYR_REPORTVIEW_SORT_UNSORTED>, NYR_IDS_MENU_SORT_ORIGINAL, nullptr,
         [](View& v) {
             if (!Of(v).sortState.empty())
                 v.SortList(std::vector<View::SORT_STATE_REALCOL>{});
         }},
        {Registered<WM_NYR_REPORTVIEW_SORT_MULTIPLE>, NYR_IDS_MENU_SORT_MULTIPLE,
         [](const View& v) { return v.GetRealColumns() > 0; }, [](View& v) { v.SortMultiple(); }},
        {Registered<WM_NYR_REPORTVIEW_HIDE_ALL_COLS>, NYR_IDS_MENU_HIDE_ALL,
         [](const View& v) { return v.GetColumnCount() > 1; },
         [](View& v) {
             // The column under the menu stays (the first on screen without
             // one), so that the header keeps a column to open the menu on.
             int keep = Of(v).menuRealCol;
             if (keep < 0 || !v.GetRealCol(static_cast<unsigned int>(keep))->IsVisible())
                 keep = v.RealColFromScreen(v.horizontalHeader()->logicalIndex(0));
             v.HideAllCols(1, 1, keep);
         }},
        {Registered<WM_NYR_REPORTVIEW_VIEW_ALL_COLS>, NYR_IDS_MENU_VIEW_ALL,
         [](const View& v) {
             const auto& cols = Of(v).cols;
             return std::any_of(cols.begin(), cols.end(), [](const auto& c) { return c->IsHidden() && !c->IsDeleted(); });
         },
         [](View& v) { v.HideAllCols(0, 1); }},
        {Registered<WM_NYR_REPORTVIEW_COLUMNS_DLG>, NYR_IDS_MENU_COLUMNS,
         [](const View& v) { return Of(v).columnsDlgStyle != 0 && v.GetRealColumns() > 0; },
         [](View& v) { v.ColumnsDialog(); }},
        // Every list view runs these itself (CNyrListView::event).
        {Registered<WM_NYR_REPORTVIEW_FIND>, NYR_IDS_MENU_FIND, nullptr, nullptr},
        {Registered<WM_NYR_REPORTVIEW_FIND_NEXT>, NYR_IDS_MENU_FIND_NEXT,
         [](const View& v) { return !CNyrListViewFind::SearchCrit().searchString.empty() && AnyRow(v); }, nullptr},
        {Registered<WM_NYR_REPORTVIEW_FIND_PREV>, NYR_IDS_MENU_FIND_PREVIOUS,
         [](const View& v) { return !CNyrListViewFind::SearchCrit().searchString.empty() && AnyRow(v); }, nullptr},
        {Registered<WM_NYR_REPORTVIEW_SAVE_AS>, NYR_IDS_MENU_SAVE_AS, AnyColumn, nullptr},
        {NyrListViewPrintMessage, NYR_IDS_MENU_PRINT, AnyColumn, nullptr},
        {NyrListViewPrintPreviewMessage, NYR_IDS_MENU_PRINT_PREVIEW, AnyColumn, nullptr},
        {NyrListViewExportPdfMessage, NYR_IDS_MENU_EXPORT_PDF, AnyColumn, nullptr},
        // The item menus.
        {Registered<WM_NYR_REPORTVIEW_SELECT_ALL>, NYR_IDS_MENU_SELECT_ALL, AnyRow,
         [](View& v) { v.SelectAllItems(1, 1); }},
        {Registered<WM_NYR_REPORTVIEW_INVERT_SELECTION>, NYR_IDS_MENU_INVERT_SELECTION, AnyRow,
         [](View& v) { v.InvertSelection(1); }},
        {Registered<WM_NYR_REPORTVIEW_SELECT_CHECKED_ITEMS>, NYR_IDS_MENU_SELECT_CHECKED,
         [](const View& v) { return v.GetItemsChecked() != 0; }, [](View& v) { v.SelectCheckedItems(1); }},
        {Registered<WM_NYR_REPORTVIEW_CHECK_ALL>, NYR_IDS_MENU_CHECK_ALL, AnyRow,
         [](View& v) { v.CheckAllItems(1, 1); }},
        {Registered<WM_NYR_REPORTVIEW_INVERT_CHECKED>, NYR_IDS_MENU_INVERT_CHECKED, AnyRow,
         [](View& v) { v.InvertChecked(1); }},
        {Registered<WM_NYR_REPORTVIEW_MODIFY>, NYR_IDS_MENU_MODIFY,
         [](const View& v) { return Of(v).menuRealItem >= 0; },
         [](View& v) {
             const int realItem = Of(v).menuRealItem >= 0 ? Of(v).menuRealItem : v.GetFocusedRealItem();
             if (realItem >= 0 && v.GetRealItem(static_cast<unsigned int>(realItem)))
                 v.OnModifyRealItem(static_cast<unsigned int>(realItem));
         }},
        {Registered<WM_NYR_REPORTVIEW_DELETE_SELECTED>, NYR_IDS_MENU_DELETE,
         [](const View& v) { return v.GetItemsSelected() != 0; }, [](View& v) { v.OnDeleteSelectedItems(); }},
        // Posted by the view itself after the user dragged a column to a new
        // place: the header has applied the move by now.
        {Registered<WM_NYR_REPORTVIEW_POST_HDN_ENDDRAG>, 0, nullptr,
         [](View& v) {
             v.HoldAllColInfos();
             v.GetHeaderCtrl()->UpdateCurrentSortedColumns();
         }},
    };
    return table;
}

const CNyrReportViewPrivate::Command* CNyrReportViewPrivate::FindCommand(unsigned int message)
{
    for (const Command& command : Commands()) {
        if (message != 0 && command.message() == message)
            return &command;
    }
    return nullptr;
}

QAction* CNyrReportViewPrivate::AppendCommand(CNyrReportViewMenuPopUp& menu, unsigned int message) const
{
    const Command* command = FindCommand(message);
    if (!command)
        return nullptr;
    return menu.AppendCommand(command->textId, message, !command->enabled || command->enabled(*q));
}

bool CNyrReportViewPrivate::RunCommand(unsigned int message)
{
    const Command* command = FindCommand(message);
    if (!command || !command->run)
        return false;
    command->run(*q);
    return true;
}

bool CNyrReportView::event(QEvent* e)
{
    if (CNyrMessageEvent* m = CNyrMessageEvent::From(e)) {
        if (d->RunCommand(m->Message())) {
            m->SetResult(1);
            return true;
        }
    }
    return CNyrListView::event(e);
}
