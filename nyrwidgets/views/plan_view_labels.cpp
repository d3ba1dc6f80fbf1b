// Placing labels so that none overlaps another.
#include <algorithm>
#include <cmath>
#include <unordered_map>

#include "nyrwidgets/views/plan_view_p.h"

namespace {

// What a label must keep clear of (the obstacles, then the labels placed so
// far), filed by the cells of a grid they touch, so that a candidate is
// compared with its neighbours only.
class TakenAreas
{
public:
    TakenAreas(const QRectF& bounds, double cell) : m_bounds(bounds), m_cell(cell) {}

    bool IsFree(const QRectF& r) const
    {
        return ForEachCell(r, [&](long long key) {
            const auto it = m_grid.find(key);
            if (it == m_grid.end())
                return true;
            return std::none_of(it->second.begin(), it->second.end(),
                                [&](std::size_t j) { return m_taken[j].intersects(r); });
        });
    }

    void Take(const QRectF& r)
    {
        ForEachCell(r, [&](long long key) {
            m_grid[key].push_back(m_taken.size());
            return true;
        });
        m_taken.push_back(r);
    }

private:
    // Calls `visit` with each grid cell `r` touches until it returns false;
    // whether all returned true.
    template <typename Visit>
    bool ForEachCell(const QRectF& r, Visit&& visit) const
    {
        const auto x0 = static_cast<long long>(std::floor((r.left() - m_bounds.left()) / m_cell));
        const auto x1 = static_cast<long long>(std::floor((r.right() - m_bounds.left()) / m_cell));
        const auto y0 = static_cast<long long>(std::floor((r.top() - m_bounds.top()) / m_cell));
        const auto y1 = static_cast<long long>(std::floor((r.bottom() - m_bounds.top()) / m_cell));
        for (long long y = y0; y <= y1; ++y) {
            for (long long x = x0; x <= x1; ++x) {
                if (!visit((y << 32) ^ x))
                    return false;
            }
        }
        return true;
    }

    QRectF m_bounds;
    double m_cell;
    std::vector<QRectF> m_taken;
    std::unordered_map<long long, std::vector<std::size_t>> m_grid;
};

}  // namespace

std::vector<QRectF> nyr::plan_detail::PlaceLabels(const std::vector<QPointF>& points, const std::vector<QSizeF>& boxes,
                                                  double gap, const QRectF& bounds, const std::vector<QRectF>& obstacles)
{
    std::vector<QRectF> placed(points.size());
    double tallest = 1.0;
    for (const QSizeF& b : boxes)
        tallest = std::max(tallest, b.height());
    TakenAreas taken(bounds, tallest * 4);
    for (const QRectF& r : obstacles) {
        if (!r.isEmpty())
            taken.Take(r);
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
            if (!bounds.contains(r) || !taken.IsFree(r))
                continue;
            placed[i] = r;
            taken.Take(r);
            break;
        }
    }
    return placed;
}
