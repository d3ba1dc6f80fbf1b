#include "nyrwidgets/views/plan_view_print.h"

#include <QPainter>
#include <QPointer>

#include "nyr/frame/resource_module.h"
#include "nyr/frame/text_ids.h"
#include "nyrwidgets/views/plan_view.h"

struct CNyrPlanViewPrint::Private
{
    QPointer<CNyrPlanView> plan;
    QSizeF body;  // of the last Paginate, in device pixels
};

CNyrPlanViewPrint::CNyrPlanViewPrint(CNyrPlanView* plan) : d(std::make_unique<Private>())
{
    d->plan = plan;
}

CNyrPlanViewPrint::~CNyrPlanViewPrint() = default;

int CNyrPlanViewPrint::Paginate(QPaintDevice&, const QSizeF& body, std::string& error)
{
    d->body = body;
    if (body.width() < 1.0 || body.height() < 1.0) {
        error = NyrLoadString(NYR_IDS_PRINT_PAGE_TOO_SMALL);
        return 0;
    }
    return 1;
}

void CNyrPlanViewPrint::DrawPage(QPainter& painter, int page)
{
    if (page != 0 || !d->plan)
        return;
    painter.save();
    d->plan->Render(painter, QRectF(QPointF(0, 0), d->body));
    painter.restore();
}
