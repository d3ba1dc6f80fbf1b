// The plan's furniture: north arrow and scale bar, laid out before the
// labels so that they keep clear of it; and the overlays of the screen.
#include <QFontInfo>
#include <QFontMetricsF>
#include <QPainter>
#include <QPainterPath>
#include <algorithm>
#include <cmath>

#include "nyr/frame/text_ids.h"
#include "nyrwidgets/views/plan_view_p.h"

using namespace nyr::plan_detail;

namespace {

// The longest side of the raster in device pixels; a larger target (a
// printer's page) gets its raster scaled up.
constexpr double kMaxRaster = 4096.0;
// The longest scale bar, in pixels at k = 1.
constexpr double kScaleBarPixels = 120.0;

// Device pixels per painter unit, so that the raster and the symbols are
// sharp on any device.
double DeviceScale(const QPainter& painter, const QRectF& target)
{
    const QTransform t = painter.combinedTransform() * painter.deviceTransform();
    double s = std::sqrt(std::abs(t.determinant()));
    if (!(s > 0.0) || !std::isfinite(s))
        s = 1.0;
    return std::min(s, kMaxRaster / std::max(target.width(), target.height()));
}

}  // namespace

Frame CNyrPlanView::Private::LayOut(const QPainter& painter, const Mapping& m, double k) const
{
    Frame frame;
    frame.m = m;
    frame.k = k;
    frame.rasterScale = DeviceScale(painter, m.rect);
    frame.font = q->font();
    frame.font.setPixelSize(std::max(6, static_cast<int>(std::lround(QFontInfo(q->font()).pixelSize() * k))));
    frame.textHeight = QFontMetricsF(frame.font, painter.device()).height();
    frame.bar = ScaleBarFor(m.scale, kScaleBarPixels * k);
    // The letter, then the arrow below it, 22 k from the right.
    frame.northArrow = QRectF(m.rect.right() - 42 * k, m.rect.top() + 8 * k, 40 * k, frame.textHeight + 28 * k);
    if (frame.bar.pixels > 0.0) {
        // The bar 5 k high, 14 k from the right and 12 k from the bottom;
        // its text centred above it, with room on both sides.
        const double right = m.rect.right() - 14 * k;
        const double bottom = m.rect.bottom() - 12 * k;
        frame.scaleBar = QRectF(right - frame.bar.pixels - 40 * k, bottom - 7 * k - frame.textHeight,
                                frame.bar.pixels + 80 * k, 7 * k + frame.textHeight);
    }
    if (onScreen)
        frame.readOut = ReadOutBox();
    return frame;
}

void CNyrPlanView::Private::DrawNorthArrow(QPainter& painter, const Frame& frame) const
{
    const double k = frame.k;
    const double cx = frame.northArrow.center().x();
    const QRectF letter(frame.northArrow.left(), frame.northArrow.top(), frame.northArrow.width(), frame.textHeight);
    const double tip = letter.bottom() + 2 * k;
    const double base = tip + 26 * k;
    const QColor ink = q->palette().color(QPalette::WindowText);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setFont(frame.font);
    painter.setPen(ink);
    painter.drawText(letter, Qt::AlignCenter, Text(NYR_IDS_HEMISPHERE_NORTH));
    QPainterPath left;
    left.moveTo(cx, tip);
    left.lineTo(cx, base - 6 * k);
    left.lineTo(cx - 7 * k, base);
    left.closeSubpath();
    QPainterPath right;
    right.moveTo(cx, tip);
    right.lineTo(cx + 7 * k, base);
    right.lineTo(cx, base - 6 * k);
    right.closeSubpath();
    painter.setPen(QPen(ink, std::max(1.0, k)));
    painter.fillPath(left, ink);
    painter.fillPath(right, q->palette().color(QPalette::Base));
    painter.drawPath(left);
    painter.drawPath(right);
}

void CNyrPlanView::Private::DrawScaleBar(QPainter& painter, const Frame& frame) const
{
    if (frame.scaleBar.isEmpty())
        return;
    const double k = frame.k;
    const QColor ink = q->palette().color(QPalette::WindowText);
    const double height = 5 * k;
    const QRectF whole(frame.scaleBar.left() + 40 * k, frame.scaleBar.bottom() - height, frame.bar.pixels, height);
    painter.setRenderHint(QPainter::Antialiasing, false);
    painter.fillRect(whole, q->palette().color(QPalette::Base));
    painter.fillRect(QRectF(whole.left(), whole.top(), whole.width() / 2, height), ink);
    painter.setPen(QPen(ink, std::max(1.0, k)));
    painter.setBrush(Qt::NoBrush);
    painter.drawRect(whole);
    painter.setFont(frame.font);
    painter.drawText(QRectF(frame.scaleBar.left(), frame.scaleBar.top(), frame.scaleBar.width(), frame.textHeight),
                     Qt::AlignHCenter | Qt::AlignBottom, QString::fromStdString(frame.bar.text));
}

QRect CNyrPlanView::Private::ReadOutBox() const
{
    if (cursorText.isEmpty())
        return {};
    const QFontMetrics metrics(q->font());
    return QRect(4, 4, std::max(readOutWidth, metrics.horizontalAdvance(cursorText)) + 8, metrics.height() + 2);
}

void CNyrPlanView::Private::DrawOverlays(QPainter& painter) const
{
    if (drag == DragBand) {
        QColor fill = q->palette().color(QPalette::Highlight);
        fill.setAlpha(40);
        painter.setRenderHint(QPainter::Antialiasing, false);
        painter.setPen(QPen(q->palette().color(QPalette::Highlight), 1, Qt::DashLine));
        painter.setBrush(fill);
        painter.drawRect(band.normalized());
    }
    if (!cursorText.isEmpty()) {
        painter.setFont(q->font());
        const QRect box = ReadOutBox();
        // Opaque: labels beneath would show through as jumbled text.
        painter.fillRect(box, q->palette().color(QPalette::Base));
        painter.setPen(q->palette().color(QPalette::Text));
        painter.drawText(box, Qt::AlignCenter, cursorText);
    }
}
