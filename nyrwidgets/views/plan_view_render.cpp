// Drawing a frame of the plan: the points, as symbols while few are in
// view and as one dot per pixel beyond, and their labels.
#include <QFontMetricsF>
#include <QPainter>
#include <QPainterPath>
#include <algorithm>
#include <cmath>

#include "nyrwidgets/views/plan_view_p.h"
#include "nyrwidgets/views/report_view.h"
#include "nyrwidgets/views/report_view_item.h"

using namespace nyr::plan_detail;

namespace {

constexpr uint32_t kRankNormal = 1u << 24;
constexpr uint32_t kRankChecked = 2u << 24;
constexpr uint32_t kRankSelected = 3u << 24;
const QColor kDisabledColor(176, 176, 176);

uint32_t Rgb(const QColor& c)
{
    return c.rgb() & 0xFFFFFFu;
}

// Widens every dot to a square of 2 * radius + 1 pixels; where dots meet,
// the higher rank (in the top byte) wins.
void Dilate(QImage& image, int radius)
{
    if (radius <= 0)
        return;
    const int w = image.width();
    const int h = image.height();
    std::vector<uint32_t> line(static_cast<std::size_t>(std::max(w, h)));
    const auto spread = [radius, &line](int size, auto&& at) {
        for (int i = 0; i < size; ++i)
            line[static_cast<std::size_t>(i)] = at(i);
        for (int i = 0; i < size; ++i) {
            uint32_t best = 0;
            for (int j = std::max(0, i - radius); j <= std::min(size - 1, i + radius); ++j)
                best = std::max(best, line[static_cast<std::size_t>(j)]);
            at(i) = best;
        }
    };
    for (int y = 0; y < h; ++y) {
        auto* row = reinterpret_cast<uint32_t*>(image.scanLine(y));
        spread(w, [row](int x) -> uint32_t& { return row[x]; });
    }
    uchar* bits = image.bits();
    const qsizetype stride = image.bytesPerLine();
    for (int x = 0; x < w; ++x)
        spread(h, [bits, stride, x](int y) -> uint32_t& { return reinterpret_cast<uint32_t*>(bits + y * stride)[x]; });
}

int Rank(uint8_t state)
{
    return (state & kSelected) ? 2 : (state & kChecked) ? 1 : 0;
}

QPainterPath ShapePath(CNyrPlanView::eSymbolShape shape, const QRectF& box)
{
    QPainterPath path;
    const QPointF c = box.center();
    switch (shape) {
    case CNyrPlanView::ShapeSquare:
        path.addRect(box);
        break;
    case CNyrPlanView::ShapeTriangle:
        path.moveTo(c.x(), box.top());
        path.lineTo(box.right(), box.bottom());
        path.lineTo(box.left(), box.bottom());
        path.closeSubpath();
        break;
    case CNyrPlanView::ShapeDiamond:
        path.moveTo(c.x(), box.top());
        path.lineTo(box.right(), c.y());
        path.lineTo(c.x(), box.bottom());
        path.lineTo(box.left(), c.y());
        path.closeSubpath();
        break;
    case CNyrPlanView::ShapeCross:
        path.moveTo(box.topLeft());
        path.lineTo(box.bottomRight());
        path.moveTo(box.topRight());
        path.lineTo(box.bottomLeft());
        break;
    case CNyrPlanView::ShapePlus:
        path.moveTo(c.x(), box.top());
        path.lineTo(c.x(), box.bottom());
        path.moveTo(box.left(), c.y());
        path.lineTo(box.right(), c.y());
        break;
    default:
        path.addEllipse(box);
        break;
    }
    return path;
}

}  // namespace

void CNyrPlanView::Private::DrawFrame(QPainter& painter, const Mapping& m, double k, std::vector<LABEL>* labelsOut)
{
    painter.save();
    painter.setClipRect(m.rect);
    painter.fillRect(m.rect, q->palette().color(QPalette::Base));
    EnsureRecords();
    const Frame frame = LayOut(painter, m, k);
    const std::size_t count = CollectPoints(frame, inView);
    if (count > symbolLimit)
        DrawRaster(painter, frame);
    else
        DrawSymbols(painter, frame, inView, labelsOut, labels && count <= labelLimit);
    DrawNorthArrow(painter, frame);
    DrawScaleBar(painter, frame);
    painter.restore();
}

std::size_t CNyrPlanView::Private::CollectPoints(const Frame& frame, std::vector<unsigned int>& points)
{
    const Mapping& m = frame.m;
    const double rasterScale = frame.rasterScale;
    points.clear();
    const int w = std::max(1, static_cast<int>(std::ceil(m.rect.width() * rasterScale)));
    const int h = std::max(1, static_cast<int>(std::ceil(m.rect.height() * rasterScale)));
    if (raster.width() != w || raster.height() != h)
        raster = QImage(w, h, QImage::Format_ARGB32_Premultiplied);
    raster.fill(0);
    std::vector<uint32_t> slotColor;
    for (const Symbol& s : symbols)
        slotColor.push_back(Rgb(s.color));
    const uint32_t selectedColor = kRankSelected | Rgb(q->palette().color(QPalette::Highlight));
    const uint32_t disabledColor = Rgb(kDisabledColor);

    // Device pixel of a record: (ax + x f, ay - y f).
    const double f = m.scale * rasterScale;
    double left = 0.0;
    double top = 0.0;
    m.ToPlane(m.rect.topLeft(), left, top);
    const double ax = (originE - left) * f;
    const double ay = (top - originN) * f;
    // Points whose symbol reaches into the view count as in view.
    const double reach = (symbolSize * frame.k / 2 + 1) * rasterScale + FloatError() * f;
    auto* bits = reinterpret_cast<uint32_t*>(raster.bits());
    const auto stride = static_cast<std::size_t>(raster.bytesPerLine() / 4);
    std::size_t count = 0;
    for (std::size_t r = 0; r < records.size(); ++r) {
        const Record& rec = records[r];
        if ((rec.state & kShown) != kShown)
            continue;
        const double px = ax + rec.x * f;
        const double py = ay - rec.y * f;
        if (px < -reach || py < -reach || px >= w + reach || py >= h + reach)
            continue;
        if (++count <= symbolLimit)
            points.push_back(static_cast<unsigned int>(r));
        if (px < 0.0 || py < 0.0 || px >= w || py >= h)
            continue;
        uint32_t value;
        if (rec.state & kSelected)
            value = selectedColor;
        else
            value = ((rec.state & kChecked) ? kRankChecked : kRankNormal) |
                    ((rec.state & kDisabled) ? disabledColor : slotColor[rec.slot]);
        uint32_t& pixel = bits[static_cast<std::size_t>(py) * stride + static_cast<std::size_t>(px)];
        pixel = std::max(pixel, value);
    }
    return count;
}

void CNyrPlanView::Private::DrawRaster(QPainter& painter, const Frame& frame)
{
    // A dot a third of a symbol across.
    Dilate(raster, static_cast<int>(std::lround(symbolSize * frame.k * frame.rasterScale / 6)));
    // The rank byte becomes an opaque alpha.
    for (int y = 0; y < raster.height(); ++y) {
        auto* row = reinterpret_cast<uint32_t*>(raster.scanLine(y));
        for (int x = 0; x < raster.width(); ++x)
            row[x] = row[x] ? (row[x] | 0xFF000000u) : 0u;
    }
    painter.drawImage(frame.m.rect, raster);
}

void CNyrPlanView::Private::DrawSymbols(QPainter& painter, const Frame& frame, std::vector<unsigned int>& points,
                                        std::vector<LABEL>* labelsOut, bool withLabels)
{
    const Mapping& m = frame.m;
    // Selected points over checked ones over the rest.
    std::stable_sort(points.begin(), points.end(),
                     [this](unsigned int a, unsigned int b) { return Rank(records[a].state) < Rank(records[b].state); });
    const double rasterScale = frame.rasterScale;
    const int pixels = std::max(3, static_cast<int>(std::lround(symbolSize * frame.k * rasterScale)));
    std::vector<ViewPoint> drawn;
    for (unsigned int r : points) {
        double e = 0.0;
        double n = 0.0;
        PointOf(r, m.scale, e, n);
        const QPointF p = m.ToScreen(e, n);
        const Record& rec = records[r];
        const QImage& sprite = Sprite(rec.slot, rec.state & (kSelected | kChecked | kDisabled), pixels);
        // The sprite is in device pixels: one of them per pixel of it.
        const QSizeF size = QSizeF(sprite.size()) / rasterScale;
        painter.drawImage(QRectF(p - QPointF(size.width(), size.height()) / 2, size), sprite);
        if (withLabels)
            drawn.push_back(ViewPoint{r, p});
    }
    if (withLabels) {
        std::sort(drawn.begin(), drawn.end(),
                  [](const ViewPoint& a, const ViewPoint& b) { return a.realItem < b.realItem; });
        DrawLabels(painter, frame, drawn, labelsOut);
    }
}

void CNyrPlanView::Private::DrawLabels(QPainter& painter, const Frame& frame, const std::vector<ViewPoint>& points,
                                       std::vector<LABEL>* labelsOut)
{
    struct Candidate
    {
        int priority;
        std::size_t point;
        std::string text;
    };
    std::vector<Candidate> candidates;
    for (std::size_t i = 0; i < points.size(); ++i) {
        CNyrReportViewItem* item = view ? view->GetRealItem(points[i].realItem) : nullptr;
        const auto* planPoint = dynamic_cast<const CNyrPlanPoint*>(item);
        if (!planPoint)
            continue;
        Candidate c{planPoint->OnGetPlanLabelPriority(), i, {}};
        if (!planPoint->OnGetPlanLabel(c.text))
            item->OnGetMainItemText(0, c.text);
        if (!c.text.empty())
            candidates.push_back(std::move(c));
    }
    // Higher priorities first; points come in real order, so among equals
    // the lower real index.
    std::stable_sort(candidates.begin(), candidates.end(),
                     [](const Candidate& a, const Candidate& b) { return a.priority > b.priority; });
    const QFontMetricsF metrics(frame.font, painter.device());
    std::vector<QPointF> anchors;
    std::vector<QSizeF> boxes;
    for (const Candidate& c : candidates) {
        anchors.push_back(points[c.point].pos);
        boxes.emplace_back(metrics.horizontalAdvance(QString::fromStdString(c.text)), metrics.height());
    }
    const std::vector<QRectF> placed =
        PlaceLabels(anchors, boxes, (symbolSize / 2.0 + 2) * frame.k, frame.m.rect,
                                      {frame.northArrow, frame.scaleBar, frame.readOut});
    painter.setFont(frame.font);
    painter.setPen(q->palette().color(QPalette::Text));
    for (std::size_t i = 0; i < candidates.size(); ++i) {
        if (placed[i].isEmpty())
            continue;
        const QString text = QString::fromStdString(candidates[i].text);
        painter.drawText(placed[i], Qt::AlignCenter | Qt::TextSingleLine, text);
        if (labelsOut)
            labelsOut->push_back(LABEL{points[candidates[i].point].realItem, candidates[i].text, placed[i]});
    }
}

const QImage& CNyrPlanView::Private::Sprite(uint16_t slot, uint8_t state, int pixels)
{
    const quint64 key = (quint64(slot) << 32) | (quint64(state) << 16) | quint64(pixels);
    auto it = sprites.find(key);
    if (it != sprites.end())
        return *it;
    // Room around the symbol for the ring of a checked point.
    const int ring = std::max(2, pixels / 4);
    const int side = pixels + 2 * ring + 2;
    QImage image(side, side, QImage::Format_ARGB32_Premultiplied);
    image.fill(0);
    const Symbol& symbol = symbols[slot < symbols.size() ? slot : 0];
    QColor fill = symbol.color;
    if (state & kSelected)
        fill = q->palette().color(QPalette::Highlight);
    else if (state & kDisabled)
        fill = kDisabledColor;
    const double line = std::max(1.0, pixels / 7.0);
    QPainter p(&image);
    p.setRenderHint(QPainter::Antialiasing);
    const QRectF box(ring + 1, ring + 1, pixels, pixels);
    const QPainterPath path = ShapePath(symbol.shape, box.adjusted(line / 2, line / 2, -line / 2, -line / 2));
    if (symbol.shape == ShapeCross || symbol.shape == ShapePlus) {
        p.strokePath(path, QPen(fill, std::max(2.0, pixels / 4.0), Qt::SolidLine, Qt::RoundCap));
    } else {
        p.fillPath(path, fill);
        p.strokePath(path, QPen(fill.darker(160), line));
    }
    if (state & kChecked) {
        p.setPen(QPen(q->palette().color(QPalette::Text), line));
        p.drawEllipse(QRectF(1, 1, side - 2, side - 2).adjusted(line / 2, line / 2, -line / 2, -line / 2));
    }
    p.end();
    return *sprites.insert(key, image);
}
