// Placing labels so that none overlaps another.
#include <algorithm>
#include <cmath>
#include <unordered_map>

#include "nyrwidgets/views/plan_view_p.h"

std::vector<QRectF> nyr::plan_detail::PlaceLabels(const std::vector<QPointF>& points, const std::vector<QSizeF>& boxes,
                                                  double gap, const QRectF& bounds, const std::vector<QRectF>& obstacles)
{
    std::vector<QRectF> placed(points.size());
    // What a label must keep clear of: the obstacles, then the labels
    // placed so far.
    std::vector<QRectF> taken;
    double tallest = 1.0;
    for (const QSizeF& b : boxes)
        tallest = std::max(tallest, b.height());
    // Placed labels by the cells of a grid they touch, so that a candidate
    // is compared with its neighbours only.
    const double cell = tallest * 4;
    std::unordered_map<long long, std::vector<std::size_t>> grid;
    const auto cellsOf = [&](const QRectF& r, auto&& visit) {
        const auto x0 = static_cast<long long>(std::floor((r.left() - bounds.left()) / cell));
        const auto x1 = static_cast<long long>(std::floor((r.right() - bounds.left()) / cell));
        const auto y0 = static_cast<long long>(std::floor((r.top() - bounds.top()) / cell));
        const auto y1 = static_cast<long long>(std::floor((r.bottom() - bounds.top()) / cell));
        for (long long y = y0; y <= y1; ++y) {
            for (long long x = x0; x <= x1; ++x) {
                if (!visit((y << 32) ^ x))
                    return false;
            }
        }
        return true;
    };
    const auto isFree = [&](const QRectF& r) {
        return cellsOf(r, [&](long long key) {
            const auto it = grid.find(key);
            if (it == grid.end())
                return true;
            return std::none_of(it->second.begin(), it->second.end(),
                                [&](std::size_t j) { return taken[j].intersects(r); });
        });
    };
    const auto take = [&](const QRectF& r) {
        cellsOf(r, [&](long long key) {
            grid[key].push_back(taken.size());
            return true;
        });
        taken.push_back(r);
    };
    for (const QRectF& r : obstacles) {
        if (!r.isEmpty())
            take(r);
    }
    for (std::size_t i = 0; i < points.size() && i < boxes.size(); ++i) {
        const QPointF p = points[i];
        const double w = boxes[i].width();
        const double h = boxes[i].height();
        if (!(w > 0.0) || !(h > 0.0))
            continue;
        // Right, left, above, below.
        const QRectF places[4] = {QRectF(p.x() + gap, p.y() - h / 2, w, h), QRectF(p.x() - gap - w, p.y() - h / 2, w, h),
                                  QRectF(p.x() - w / 2, p.y() - gap - h, w, h), QRectF(p.x() - w / 2, p.y() + gap, w, h)};
        for (const QRectF& r : places) {
            if (!bounds.contains(r) || !isFree(r))
                continue;
            placed[i] = r;
            take(r);
            break;
        }
    }
    return placed;
}
