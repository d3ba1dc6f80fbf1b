#pragma once

// The benchmark's points: 1,000,000 report view items with a position, as a
// survey of a 20 x 15 km area would hold them (dense blocks along a few
// roads, scattered points between), five codes.

#include <cstdint>
#include <QColor>
#include <string>
#include <vector>

#include "nyrwidgets/views/plan_view.h"
#include "nyrwidgets/views/report_view.h"
#include "nyrwidgets/views/report_view_item.h"

namespace nyr::bench {

inline constexpr int kPoints = 1000000;
inline constexpr int kWidth = 800;
inline constexpr int kHeight = 600;

struct PlanPosition
{
    double e;
    double n;
    unsigned int code;
};

// Deterministic positions in metres (UTM-like), one after the other, so
// that no copy of them all needs to be held.
class PositionStream
{
public:
    PlanPosition Next()
    {
        PlanPosition p;
        if (m_index % 4 == 0) {
            p.e = 480000.0 + Unit() * 20000.0;
            p.n = 5400000.0 + Unit() * 15000.0;
        } else {
            // Along one of eight roads, a few metres either side.
            const int road = m_index % 8;
            const double t = Unit();
            p.e = 481000.0 + t * 18000.0 + (Unit() - 0.5) * 30.0;
            p.n = 5401000.0 + road * 1600.0 + t * 2000.0 * (road % 3 - 1) + (Unit() - 0.5) * 30.0;
        }
        p.code = static_cast<unsigned int>(m_index % 5);
        ++m_index;
        return p;
    }

private:
    double Unit()
    {
        m_x ^= m_x << 13, m_x ^= m_x >> 7, m_x ^= m_x << 17;
        return static_cast<double>(m_x % 1000000007ULL) / 1000000007.0;
    }
    uint64_t m_x = 0x2545F4914F6CDD1DULL;
    int m_index = 0;
};

class PlanBenchItem : public CNyrReportViewItem, public CNyrPlanPoint
{
public:
    explicit PlanBenchItem(const PlanPosition& p) : m_e(p.e), m_n(p.n), m_code(p.code) {}
    int OnGetPlanPosition(double& e, double& n) const override
    {
        e = m_e;
        n = m_n;
        return 1;
    }
    unsigned int OnGetPlanCode() const override { return m_code; }

private:
    double m_e;
    double m_n;
    unsigned int m_code;
};

// The colours of the five codes.
inline QColor CodeColor(unsigned int code)
{
    static const QColor colors[] = {QColor(200, 0, 0), QColor(0, 140, 0), QColor(0, 0, 200), QColor(160, 100, 0),
                                    QColor(120, 0, 160)};
    return colors[code % 5];
}

inline void FillReport(CNyrReportView& report, int count)
{
    report.AddRealCols(std::vector<std::string>{"Point"}, {100});
    PositionStream positions;
    for (int i = 0; i < count; ++i)
        report.AddRealItem(new PlanBenchItem(positions.Next()));
    report.DisplayRealItems(0);
}

// The plan of the report's points; it reads them and zooms to all of them
// when it is first drawn.
inline void SetUpPlan(CNyrPlanView& plan, CNyrReportView& report)
{
    plan.resize(kWidth, kHeight);
    for (unsigned int code = 0; code < 5; ++code)
        plan.SetSymbol(code, static_cast<CNyrPlanView::eSymbolShape>(code), CodeColor(code));
    plan.SetReportView(&report);
}

}  // namespace nyr::bench
