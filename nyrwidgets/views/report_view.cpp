// CNyrReportView: its construction and the list view's screen access,
// answered from the model.
#include "nyrwidgets/views/report_view.h"

#include <QHeaderView>
#include <QItemSelectionModel>

#include "nyr/frame/notifications.h"
#include "nyrwidgets/frame/message_event.h"
#include "nyrwidgets/views/report_view_inplace_p.h"
#include "nyrwidgets/views/report_view_p.h"
#include "nyrwidgets/views/report_view_save_as_dlg_cv.h"

using nyr::views_detail::Ix;
using RealCol = nyr::views_detail::RealCol;
using ScreenItem = nyr::views_detail::ScreenItem;
using ScreenCol = nyr::views_detail::ScreenCol;

CNyrReportView::CNyrReportView(QWidget* parent)
    : CNyrListView(parent, nullptr), d(std::make_unique<CNyrReportViewPrivate>(this))
{
    d->TakeClassDefaults();

    d->model = new CNyrReportViewModel(this, *d);
    setModel(d->model);
    setItemDelegate(new CNyrReportViewDelegate(this, *d));

    connect(selectionModel(), &QItemSelectionModel::selectionChanged, this,
            [this](const QItemSelection& selected, const QItemSelection& deselected) {
                d->OnQtSelectionChanged(selected, deselected);
            });
    connect(horizontalHeader(), &QHeaderView::sectionResized, this, [this](int screenCol, int, int width) {
        if (d->ValidScreenCol(screenCol))
            CNyrReportViewPrivate::TakeColumnWidth(*d->Col(d->RealColOf(static_cast<ScreenCol>(screenCol))), width);
    });
    // The order is read once the header has applied the move.
    connect(horizontalHeader(), &QHeaderView::sectionMoved, this, [this] {
        if (!d->applyingColumns)
            NyrPostMessage(this, WM_NYR_REPORTVIEW_POST_HDN_ENDDRAG, reinterpret_cast<quintptr>(this));
    });
    connect(horizontalHeader(), &QWidget::customContextMenuRequested, this,
            [this](const QPoint& pos) { ShowContextMenu(horizontalHeader()->mapToGlobal(pos)); });
    d->inplace = new CNyrReportViewInplace(this);
}

CNyrReportView::~CNyrReportView()
{
    d->inplace->Detach();
    d->StoreLayoutOnClose();
    // Items and columns go with the view; the model must not read them while
    // Qt takes the view apart.
    setModel(nullptr);
    for (CNyrReportViewItem* item : d->items)
        delete item;
}

int CNyrReportView::SaveAs()
{
    CNyrListViewSaveAsDlgCV::SAVE_AS_INFO info;
    info.list = this;
    OnSaveAsBegin(info);
    CNyrReportViewSaveAsDlgCV dialog(info, this);
    return dialog.Run(InifileSection());
}

// ---------------------------------------------------------------------------
// The list view's screen access

int CNyrReportView::GetItemCount() const
{
    return static_cast<int>(d->screenToRealItem.size());
}

int CNyrReportView::GetColumnCount() const
{
    return static_cast<int>(d->screenToRealCol.size());
}

std::string CNyrReportView::GetItemText(int screenItem, int screenCol) const
{
    std::string text;
    if (d->ValidScreen(screenItem) && d->ValidScreenCol(screenCol)) {
        const auto s = static_cast<ScreenCol>(screenCol);
        nyr::views_detail::CellText(*d->Item(d->RealOf(static_cast<ScreenItem>(screenItem))), d->RealColOf(s), s,
                                    text);
    }
    return text;
}

std::string CNyrReportView::GetColumnLabel(int screenCol) const
{
    const CNyrReportViewCol* col = GetCol(screenCol);
    return col ? col->GetLabel() : std::string();
}

unsigned int CNyrReportView::GetItemState(int screenItem, unsigned int mask) const
{
    if (!d->ValidScreen(screenItem))
        return 0;
    unsigned int state = GetItem(screenItem)->IsSelected() ? LVIS_SELECTED : 0;
    if (GetFocusedItem() == screenItem)
        state |= LVIS_FOCUSED;
    return state & mask;
}

int CNyrReportView::SetItemState(int screenItem, unsigned int state, unsigned int mask)
{
    if (!d->ValidScreen(screenItem))
        return 0;
    const unsigned int realItem = Ix(d->RealOf(static_cast<ScreenItem>(screenItem)));
    if (mask & LVIS_SELECTED)
        SelectRealItem(realItem, (state & LVIS_SELECTED) != 0, 1);
    if (mask & LVIS_FOCUSED) {
        if (state & LVIS_FOCUSED)
            FocusRealItem(realItem);
        else if (GetFocusedItem() == screenItem)
            selectionModel()->setCurrentIndex(QModelIndex(), QItemSelectionModel::NoUpdate);
    }
    return 1;
}

int CNyrReportView::GetCheck(int screenItem) const
{
    const CNyrReportViewItem* item = GetItem(screenItem);
    return item && item->IsChecked() ? 1 : 0;
}

int CNyrReportView::SetCheck(int screenItem, int check)
{
    if (!d->ValidScreen(screenItem))
        return 0;
    CheckRealItem(Ix(d->RealOf(static_cast<ScreenItem>(screenItem))), check, 1);
    return 1;
}
