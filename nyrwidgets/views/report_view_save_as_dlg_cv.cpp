#include "nyrwidgets/views/report_view_save_as_dlg_cv.h"

#include "nyrwidgets/views/report_view.h"
#include "nyrwidgets/views/report_view_item.h"

CNyrReportViewSaveAsDlgCV::CNyrReportViewSaveAsDlgCV(SAVE_AS_INFO& info, QWidget* parent)
    : CNyrListViewSaveAsDlgCV(info, parent)
{
}

CNyrReportViewSaveAsDlgCV::~CNyrReportViewSaveAsDlgCV() = default;

CNyrReportView* CNyrReportViewSaveAsDlgCV::View() const
{
    return qobject_cast<CNyrReportView*>(Info().list);
}

int CNyrReportViewSaveAsDlgCV::IsItemToSave(int screenItem)
{
    const CNyrReportView* view = View();
    const CNyrReportViewItem* item = view ? view->GetItem(screenItem) : nullptr;
    if (!item)
        return 0;
    switch (Info().saveWhat) {
    case SaveAll: return 1;
    case SaveSelected: return item->IsSelected();
    case SaveChecked: return item->IsChecked();
    default: return 0;
    }
}

int CNyrReportViewSaveAsDlgCV::GetItemsSelected()
{
    const CNyrReportView* view = View();
    return view && view->GetItemsSelected();
}

int CNyrReportViewSaveAsDlgCV::GetItemsChecked()
{
    const CNyrReportView* view = View();
    return view && view->GetItemsChecked();
}
