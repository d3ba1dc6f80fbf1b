// The plan view: its look, the mapping of the plane onto the widget, and
// its output as images.
#include "nyrwidgets/views/plan_view.h"

#include <QImage>
#include <QPainter>
#include <QTimer>
#include <algorithm>
#include <cmath>

#include "nyr/frame/notifications.h"
#include "nyr/frame/resource_module.h"
#include "nyr/frame/text_ids.h"
#include "nyr/frame/ui_hooks.h"
#include "nyr/platform/string_format.h"
#include "nyrwidgets/app/browse.h"
#include "nyrwidgets/frame/message_event.h"
#include "nyrwidgets/views/plan_view_p.h"
#include "nyrwidgets/views/report_view.h"

using namespace nyr::plan_detail;

QString nyr::plan_detail::Text(unsigned int id)
{
    return QString::fromStdString(NyrLoadString(id));
}

CNyrPlanView::Private::Private(CNyrPlanView* owner) : q(owner), followTimer(new QTimer(owner))
{
    symbols.push_back(Symbol{ShapeCircle, QColor(64, 64, 64)});
    // Told after the last of a batch of selections, so that one selection
    // can be told from many.
    followTimer->setSingleShot(true);
    followTimer->setInterval(0);
    QObject::connect(followTimer, &QTimer::timeout, owner, [this] { FollowSelection(); });
}

CNyrPlanView::CNyrPlanView(QWidget* parent) : QWidget(parent), d(std::make_unique<Private>(this))
{
    setFocusPolicy(Qt::StrongFocus);
    setMouseTracking(true);
    setAttribute(Qt::WA_OpaquePaintEvent);
    setMinimumSize(120, 90);
}

CNyrPlanView::~CNyrPlanView()
{
    d->Detach();
}

// ---------------------------------------------------------------------------
// Look

void CNyrPlanView::SetSymbol(unsigned int code, eSymbolShape shape, const QColor& color)
{
    const auto it = d->slotOfCode.find(code);
    if (it != d->slotOfCode.end()) {
        d->symbols[it->second] = Symbol{shape, color};
    } else if (d->symbols.size() < 0xFFFF) {
        // The records hold slots: they are read again to take up the new one.
        d->slotOfCode.emplace(code, static_cast<uint16_t>(d->symbols.size()));
        d->symbols.push_back(Symbol{shape, color});
        d->fullRead = true;
    }
    d->sprites.clear();
    update();
}

void CNyrPlanView::SetDefaultSymbol(eSymbolShape shape, const QColor& color)
{
    d->symbols[0] = Symbol{shape, color};
    d->sprites.clear();
    update();
}

void CNyrPlanView::SetSymbolSize(int pixels)
{
    d->symbolSize = std::clamp(pixels, 3, 64);
    update();
}

int CNyrPlanView::GetSymbolSize() const
{
    return d->symbolSize;
}

void CNyrPlanView::SetLabels(bool on)
{
    d->labels = on;
    update();
}

bool CNyrPlanView::GetLabels() const
{
    return d->labels;
}

void CNyrPlanView::SetDetailLimits(unsigned int symbols, unsigned int labels)
{
    d->symbolLimit = symbols;
    d->labelLimit = std::min(labels, symbols);
    update();
}

void CNyrPlanView::SetProjection(Projection projection)
{
    d->projection = std::move(projection);
    d->UpdateCursorText();
}

// ---------------------------------------------------------------------------
// Plane and screen

Mapping CNyrPlanView::Private::ScreenMapping() const
{
    return Mapping{centerE, centerN, scale, QRectF(q->rect())};
}

void CNyrPlanView::Private::SetScaleAndCenter(double newScale, double e, double n)
{
    if (!std::isfinite(newScale) || !std::isfinite(e) || !std::isfinite(n))
        return;
    scale = std::clamp(newScale, kMinScale, kMaxScale);
    centerE = std::clamp(e, -kMaxCoordinate, kMaxCoordinate);
    centerN = std::clamp(n, -kMaxCoordinate, kMaxCoordinate);
    fitPending = false;
    UpdateCursorText();
    q->update();
}

double CNyrPlanView::GetScale() const
{
    return d->scale;
}

void CNyrPlanView::SetScale(double pixelsPerMetre)
{
    d->SetScaleAndCenter(pixelsPerMetre, d->centerE, d->centerN);
}

void CNyrPlanView::GetCenter(double& easting, double& northing) const
{
    easting = d->centerE;
    northing = d->centerN;
}

void CNyrPlanView::SetCenter(double easting, double northing)
{
    d->SetScaleAndCenter(d->scale, easting, northing);
}

QPointF CNyrPlanView::PlaneToScreen(double easting, double northing) const
{
    return d->ScreenMapping().ToScreen(easting, northing);
}

void CNyrPlanView::ScreenToPlane(const QPointF& pos, double& easting, double& northing) const
{
    d->ScreenMapping().ToPlane(pos, easting, northing);
}

void CNyrPlanView::ZoomAt(const QPointF& pos, double factor)
{
    if (!(factor > 0.0) || !std::isfinite(factor))
        return;
    double e = 0.0;
    double n = 0.0;
    ScreenToPlane(pos, e, n);
    const double newScale = std::clamp(d->scale * factor, kMinScale, kMaxScale);
    // The centre moves so that (e, n) stays at pos.
    const QPointF fromCenter = pos - QRectF(rect()).center();
    d->SetScaleAndCenter(newScale, e - fromCenter.x() / newScale, n + fromCenter.y() / newScale);
}

void CNyrPlanView::Pan(double dx, double dy)
{
    d->SetScaleAndCenter(d->scale, d->centerE - dx / d->scale, d->centerN + dy / d->scale);
}

bool CNyrPlanView::Private::FitBox(double e0, double n0, double e1, double n1)
{
    if (e0 > e1 || n0 > n1)
        return false;
    const double w = e1 - e0;
    const double h = n1 - n0;
    double fit = scale;
    if (w > 0.0 || h > 0.0) {
        // A margin of a symbol and a twentieth of the view on each side.
        const double room = 0.9;
        const double width = std::max(1.0, q->width() * room - symbolSize);
        const double height = std::max(1.0, q->height() * room - symbolSize);
        fit = std::min(w > 0.0 ? width / w : kMaxScale, h > 0.0 ? height / h : kMaxScale);
    }
    SetScaleAndCenter(fit, (e0 + e1) / 2, (n0 + n1) / 2);
    return true;
}

namespace {

// The box of the records whose state has all bits of `state`.
bool BoxOf(const CNyrPlanView::Private& d, uint8_t state, double& e0, double& n0, double& e1, double& n1)
{
    float x0 = INFINITY, y0 = INFINITY, x1 = -INFINITY, y1 = -INFINITY;
    for (const Record& rec : d.records) {
        if ((rec.state & state) != state)
            continue;
        x0 = std::min(x0, rec.x);
        x1 = std::max(x1, rec.x);
        y0 = std::min(y0, rec.y);
        y1 = std::max(y1, rec.y);
    }
    e0 = d.originE + x0;
    e1 = d.originE + x1;
    n0 = d.originN + y0;
    n1 = d.originN + y1;
    return x0 <= x1;
}

}  // namespace

int CNyrPlanView::ZoomToAll()
{
    d->EnsureRecords();
    double e0 = 0.0, n0 = 0.0, e1 = 0.0, n1 = 0.0;
    return BoxOf(*d, kShown, e0, n0, e1, n1) && d->FitBox(e0, n0, e1, n1) ? 1 : 0;
}

int CNyrPlanView::ZoomToSelection()
{
    d->EnsureRecords();
    double e0 = 0.0, n0 = 0.0, e1 = 0.0, n1 = 0.0;
    return BoxOf(*d, kShown | kSelected, e0, n0, e1, n1) && d->FitBox(e0, n0, e1, n1) ? 1 : 0;
}

// ---------------------------------------------------------------------------
// Output

void CNyrPlanView::Render(QPainter& painter, const QRectF& target, std::vector<LABEL>* labels) const
{
    if (target.isEmpty())
        return;
    // The area the view shows, fitted: everything scales by k.
    const double k = std::min(target.width() / std::max(1, width()), target.height() / std::max(1, height()));
    const Mapping m{d->centerE, d->centerN, d->scale * k, target};
    d->DrawFrame(painter, m, k, labels);
}

QImage CNyrPlanView::ToImage(const QSize& size) const
{
    const QSize s = size.isEmpty() ? this->size() : size;
    QImage image(s, QImage::Format_ARGB32_Premultiplied);
    if (image.isNull())
        return image;
    QPainter painter(&image);
    Render(painter, QRectF(QPointF(0, 0), QSizeF(s)));
    painter.end();
    return image;
}

int CNyrPlanView::ExportPng(const std::string& path, const QSize& size) const
{
    const QImage image = ToImage(size);
    return !image.isNull() && image.save(QString::fromStdString(path), "PNG") ? 1 : 0;
}

int CNyrPlanView::ExportPngDialog()
{
    const QString file =
        CNyrBrowse::Browse(this, CNyrBrowse::eSaveFile, QStringLiteral("CNyrPlanView"), {},
                           Text(NYR_IDS_FILTER_PNG) + QStringLiteral("|*.png||"), Text(NYR_IDS_PLAN_EXPORT_TITLE));
    if (file.isEmpty() || !CNyrBrowse::ConfirmReplace(this, file, Text(NYR_IDS_PLAN_EXPORT_TITLE)))
        return 0;
    const std::string path = file.toStdString();
    if (ExportPng(path))
        return 1;
    NyrMessageBox(NyrFormat(NyrLoadString(NYR_IDS_PLAN_EXPORT_FAILED).c_str(), path.c_str()), {}, NYR_MB_ICONERROR);
    return 0;
}

const std::vector<CNyrPlanView::LABEL>& CNyrPlanView::GetDrawnLabels() const
{
    return d->drawnLabels;
}

CNyrPlanView::SCALE_BAR CNyrPlanView::GetScaleBar() const
{
    return ScaleBarFor(d->scale, 120.0);  // as drawn on screen
}

QString CNyrPlanView::GetCursorText() const
{
    return d->cursorText;
}

// ---------------------------------------------------------------------------
// Events

bool CNyrPlanView::event(QEvent* e)
{
    if (CNyrMessageEvent* m = CNyrMessageEvent::From(e)) {
        const unsigned int message = m->Message();
        if (message == WM_NYR_UNIT_CHANGED_DISTANCE || message == WM_NYR_UNIT_CHANGED_ANGLE) {
            d->UpdateCursorText();
            update();
        } else if (d->view && m->WParam() == reinterpret_cast<quintptr>(d->view.data())) {
            d->OnItemMessage(message, m->LParam());
        }
        return true;
    }
    if (e->type() == QEvent::PaletteChange)
        d->sprites.clear();
    if (e->type() == QEvent::LanguageChange)
        d->UpdateCursorText();  // "E" and "N" come from the text table
    return QWidget::event(e);
}

void CNyrPlanView::paintEvent(QPaintEvent*)
{
    // Until there is something to fit, the fit stays pending.
    if (d->fitPending && d->view)
        ZoomToAll();
    QPainter painter(this);
    d->drawnLabels.clear();
    d->onScreen = true;  // labels keep clear of the cursor read-out too
    Render(painter, QRectF(rect()), &d->drawnLabels);
    d->onScreen = false;
    d->DrawOverlays(painter);
}

void CNyrPlanView::resizeEvent(QResizeEvent* e)
{
    QWidget::resizeEvent(e);
    d->UpdateCursorText();
}
