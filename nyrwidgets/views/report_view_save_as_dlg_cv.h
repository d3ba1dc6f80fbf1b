#pragma once

#include "nyr/platform/export.h"
#include "nyrwidgets/views/list_view_save_as_dlg_cv.h"

class CNyrReportView;

// The save-as dialog of a report view: the rows are the view's items on
// screen, chosen by their own selected and checked states.
class NYR_EXPORT CNyrReportViewSaveAsDlgCV : public CNyrListViewSaveAsDlgCV
{
    Q_OBJECT
public:
    // info.list must be a CNyrReportView (or null).
    explicit CNyrReportViewSaveAsDlgCV(SAVE_AS_INFO& info, QWidget* parent = nullptr);
    ~CNyrReportViewSaveAsDlgCV() override;

    // The screen row's real item is written for SaveAll, when it is selected
    // for SaveSelected, when it is checked for SaveChecked.
    int IsItemToSave(int screenItem) override;
    int GetItemsSelected() override;
    int GetItemsChecked() override;

private:
    CNyrReportView* View() const;
};
