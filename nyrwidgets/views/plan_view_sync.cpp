// The plan view's link to its report view: the drawing cache of the items,
// kept in step through the report view's notifications and row changes, and
// the changes the plan makes through the report view.
#include <QAbstractItemModel>
#include <QTimer>
#include <algorithm>
#include <cmath>

#include "nyr/frame/notifications.h"
#include "nyrwidgets/frame/message_event.h"
#include "nyrwidgets/views/plan_view_p.h"
#include "nyrwidgets/views/report_view.h"
#include "nyrwidgets/views/report_view_item.h"

using namespace nyr::plan_detail;

CNyrPlanPoint::~CNyrPlanPoint() = default;

unsigned int CNyrPlanPoint::OnGetPlanCode() const
{
    return 0;
}

int CNyrPlanPoint::OnGetPlanLabel(std::string&) const
{
    return 0;
}

int CNyrPlanPoint::OnGetPlanLabelPriority() const
{
    return 0;
}

namespace {

bool ReadPosition(const CNyrPlanPoint* point, double& e, double& n)
{
    e = n = 0.0;
    if (!point || !point->OnGetPlanPosition(e, n))
        return false;
    return std::isfinite(e) && std::isfinite(n) && std::abs(e) <= kMaxCoordinate && std::abs(n) <= kMaxCoordinate;
}

// A change of the rows that names them the plan reads item by item; a
// larger one in a single pass over all items.
constexpr int kMaxRowsReadSingly = 4096;

}  // namespace

void CNyrPlanView::Private::Attach(CNyrReportView* newView)
{
    view = newView;
    records.clear();
    fullRead = true;
    fitPending = true;
    if (!newView)
        return;
    newView->AddItemNotification(q, kNotifyMask);
    // Deleting is never notified, and changes made with notify 0 are not
    // either; the rows they take off or put on the screen are caught here.
    QAbstractItemModel* model = newView->model();
    const auto rows = [this](const QModelIndex&, int first, int last) {
        ReadScreenRows(first, last);
        q->update();
    };
    connections.push_back(QObject::connect(model, &QAbstractItemModel::rowsAboutToBeRemoved, q, rows));
    connections.push_back(QObject::connect(model, &QAbstractItemModel::rowsInserted, q, rows));
    connections.push_back(QObject::connect(model, &QAbstractItemModel::modelReset, q, [this] {
        fullRead = true;
        if (view && view->GetRealItemCount() == 0)
            fitPending = true;
        q->update();
    }));
    connections.push_back(QObject::connect(newView, &QObject::destroyed, q, [this] {
        records.clear();
        q->update();
    }));
}

void CNyrPlanView::Private::Detach()
{
    for (const QMetaObject::Connection& c : connections)
        QObject::disconnect(c);
    connections.clear();
    if (view)
        view->RemoveItemNotification(q, kNotifyMask);
    view = nullptr;
    records.clear();
}

void CNyrPlanView::Private::EnsureRecords()
{
    if (!view) {
        records.clear();
        return;
    }
    const unsigned int count = view->GetRealItemCount();
    if (fullRead || count < records.size()) {
        // Positions count from a new origin, so that they stay small.
        fullRead = false;
        hasOrigin = false;
        maxOffset = 0.0;
        records.assign(count, Record{});
        records.shrink_to_fit();
        for (unsigned int r = 0; r < count; ++r)
            ReadRecord(r);
        return;
    }
    for (auto r = static_cast<unsigned int>(records.size()); r < count; ++r) {
        records.emplace_back();
        ReadRecord(r);
    }
}

void CNyrPlanView::Private::ReadRecord(unsigned int r)
{
    Record& record = records[r];
    record = Record{};
    CNyrReportViewItem* item = view ? view->GetRealItem(r) : nullptr;
    const auto* point = dynamic_cast<const CNyrPlanPoint*>(item);
    double e = 0.0;
    double n = 0.0;
    if (!ReadPosition(point, e, n))
        return;
    if (!hasOrigin) {
        originE = e;
        originN = n;
        hasOrigin = true;
    }
    record.x = static_cast<float>(e - originE);
    record.y = static_cast<float>(n - originN);
    maxOffset = std::max({maxOffset, std::abs(static_cast<double>(record.x)), std::abs(static_cast<double>(record.y))});
    record.slot = SlotOf(point->OnGetPlanCode());
    uint8_t state = kHasPoint;
    state |= item->IsVisible() ? kVisible : 0;
    state |= item->IsSelected() ? kSelected : 0;
    state |= item->IsChecked() ? kChecked : 0;
    state |= item->IsDisabled() ? kDisabled : 0;
    record.state = state;
}

void CNyrPlanView::Private::ReadScreenRows(int first, int last)
{
    if (!view || fullRead)
        return;
    if (last - first >= kMaxRowsReadSingly) {
        fullRead = true;
        return;
    }
    for (int s = first; s <= last; ++s) {
        const int r = view->RealItemFromScreen(s);
        if (r >= 0 && static_cast<std::size_t>(r) < records.size())
            ReadRecord(static_cast<unsigned int>(r));
    }
}

bool CNyrPlanView::Private::ExactPosition(unsigned int r, double& e, double& n) const
{
    CNyrReportViewItem* item = view ? view->GetRealItem(r) : nullptr;
    return ReadPosition(dynamic_cast<const CNyrPlanPoint*>(item), e, n);
}

double CNyrPlanView::Private::FloatError() const
{
    // A float keeps 24 significant bits.
    return maxOffset * 0x1p-24;
}

void CNyrPlanView::Private::PointOf(unsigned int r, double atScale, double& e, double& n) const
{
    // Beyond a fiftieth of a pixel the record's rounding would show.
    if (FloatError() * atScale > 0.02 && ExactPosition(r, e, n))
        return;
    e = originE + records[r].x;
    n = originN + records[r].y;
}

uint16_t CNyrPlanView::Private::SlotOf(unsigned int code) const
{
    const auto it = slotOfCode.find(code);
    return it == slotOfCode.end() ? 0 : it->second;
}

void CNyrPlanView::Private::OnItemMessage(unsigned int message, qintptr lParam)
{
    const auto r = static_cast<std::size_t>(lParam);
    if (message == WM_NYR_REPORTVIEW_ITEM_CLEANUP) {
        records.clear();
        fullRead = true;
        fitPending = true;
    } else if (message == WM_NYR_REPORTVIEW_ITEM_DISPLAY_END) {
        fullRead = true;
    } else if (message == WM_NYR_REPORTVIEW_ITEM_DISPLAY_BEGIN) {
        return;
    } else if (lParam >= 0 && r < records.size() && !fullRead) {
        // Select, check, disable, hide, view, refresh: the item names itself.
        ReadRecord(static_cast<unsigned int>(r));
    }
    if (message == WM_NYR_REPORTVIEW_ITEM_SELECT && !originating) {
        ++selectsSeen;
        lastSelected = static_cast<unsigned int>(r);
        followTimer->start();
    }
    q->update();
}

void CNyrPlanView::Private::FollowSelection()
{
    const bool one = selectsSeen == 1;
    selectsSeen = 0;
    if (!one || !view)
        return;
    EnsureRecords();
    if (lastSelected >= records.size() || (records[lastSelected].state & (kShown | kSelected)) != (kShown | kSelected))
        return;
    double e = 0.0;
    double n = 0.0;
    PointOf(lastSelected, scale, e, n);
    const QRectF inner = QRectF(q->rect()).adjusted(symbolSize, symbolSize, -symbolSize, -symbolSize);
    if (!inner.contains(q->PlaneToScreen(e, n)))
        q->SetCenter(e, n);
}

void CNyrPlanView::Private::SelectOnly(const std::vector<unsigned int>& realItems, bool add)
{
    if (!view)
        return;
    Originate([&] {
        if (!add) {
            std::vector<unsigned int> selected;
            view->GetSelectedRealItems(selected);
            std::vector<unsigned int> off;
            std::set_difference(selected.begin(), selected.end(), realItems.begin(), realItems.end(),
                                std::back_inserter(off));
            view->SelectRealItems(off, 0, 1);
        }
        if (!view)
            return;  // a subscriber closed the view
        view->SelectRealItems(realItems, 1, 1);
        if (view && !realItems.empty()) {
            view->FocusRealItem(realItems.front());
            view->EnsureRealItemVisible(realItems.front());
        }
    });
}

void CNyrPlanView::Private::ToggleCheckOfSelection()
{
    if (!view || !view->HasCheckBoxes())
        return;
    std::vector<unsigned int> selected;
    view->GetSelectedRealItems(selected);
    const bool allChecked = std::all_of(selected.begin(), selected.end(),
                                        [this](unsigned int r) { return view->GetRealItemChecked(r) != 0; });
    Originate([&] { view->CheckRealItems(selected, allChecked ? 0 : 1, 1); });
}

void CNyrPlanView::Private::SendCommand(unsigned int message)
{
    Originate([&] { NyrSendMessage(view, message); });
}

bool CNyrPlanView::Private::OfferDelete() const
{
    return view && (view->GetItemMenu(false) & CNyrReportView::MenuDelete) != 0;
}

void CNyrPlanView::SetReportView(CNyrReportView* newView)
{
    if (newView == d->view)
        return;
    d->Detach();
    d->Attach(newView);
    update();
}

CNyrReportView* CNyrPlanView::GetReportView() const
{
    return d->view;
}

void CNyrPlanView::Refresh()
{
    d->fullRead = true;
    update();
}

int CNyrPlanView::RealItemAt(const QPointF& pos, double radius) const
{
    d->EnsureRecords();
    double e = 0.0;
    double n = 0.0;
    ScreenToPlane(pos, e, n);
    // Candidates by the records, with room for their rounding; the
    // distance from the position the plan draws.
    const double reach = radius / d->scale + d->FloatError();
    int best = -1;
    double bestDistance = radius * radius;
    for (std::size_t r = 0; r < d->records.size(); ++r) {
        const Record& rec = d->records[r];
        if ((rec.state & kShown) != kShown || std::abs(d->originE + rec.x - e) > reach ||
            std::abs(d->originN + rec.y - n) > reach)
            continue;
        double pe = 0.0;
        double pn = 0.0;
        d->PointOf(static_cast<unsigned int>(r), d->scale, pe, pn);
        const QPointF p = PlaneToScreen(pe, pn) - pos;
        const double distance = p.x() * p.x() + p.y() * p.y();
        if (distance <= bestDistance) {
            bestDistance = distance;
            best = static_cast<int>(r);
        }
    }
    return best;
}

std::vector<unsigned int> CNyrPlanView::RealItemsIn(const QRectF& rect) const
{
    d->EnsureRecords();
    std::vector<unsigned int> inside;
    const QRectF box = rect.normalized();
    double e0 = 0.0, n0 = 0.0, e1 = 0.0, n1 = 0.0;
    ScreenToPlane(box.bottomLeft(), e0, n0);
    ScreenToPlane(box.topRight(), e1, n1);
    const double slack = d->FloatError();
    for (std::size_t r = 0; r < d->records.size(); ++r) {
        const Record& rec = d->records[r];
        const double e = d->originE + rec.x;
        const double n = d->originN + rec.y;
        if ((rec.state & kShown) != kShown || e < e0 - slack || e > e1 + slack || n < n0 - slack || n > n1 + slack)
            continue;
        double pe = 0.0;
        double pn = 0.0;
        d->PointOf(static_cast<unsigned int>(r), d->scale, pe, pn);
        if (pe >= e0 && pe <= e1 && pn >= n0 && pn <= n1)
            inside.push_back(static_cast<unsigned int>(r));
    }
    return inside;
}

void CNyrPlanView::SelectRect(const QRectF& rect, bool add)
{
    d->SelectOnly(RealItemsIn(rect), add);
}
