#pragma once

#include <memory>

#include "nyr/platform/export.h"
#include "nyrwidgets/views/view_print.h"

class CNyrPlanView;

// The plan as a part of a printout: one page on which the plan view draws
// what it shows on screen (CNyrPlanView::Render), fitted into the page body
// without stretching and centred: north up, one scale for both axes, the
// symbols, labels, north arrow and scale bar scaled with it (the scale bar
// tells the scale on paper). So a host prints its list and its plan in one
// printout, under one page header and footer; from a list view's print
// commands:
//
//     void CPointView::OnPrintBegin(CNyrListViewPrint::PRINT_INFO& info)
//     {
//         info.parts.push_back(&m_planPart);   // a CNyrPlanViewPrint member
//     }
//
// A plan view that went away prints an empty page.
class NYR_EXPORT CNyrPlanViewPrint : public CNyrPrintPart
{
public:
    explicit CNyrPlanViewPrint(CNyrPlanView* plan);
    ~CNyrPlanViewPrint() override;
    CNyrPlanViewPrint(const CNyrPlanViewPrint&) = delete;
    CNyrPlanViewPrint& operator=(const CNyrPlanViewPrint&) = delete;

    // One page; 0 with NYR_IDS_PRINT_PAGE_TOO_SMALL for a body with no room.
    int Paginate(QPaintDevice& device, const QSizeF& body, std::string& error) override;
    void DrawPage(QPainter& painter, int page) override;

private:
    struct Private;
    std::unique_ptr<Private> d;
};
