#pragma once

// Items, a report view with its plan, and pixel helpers shared by the plan
// view tests.

#include <gtest/gtest.h>

#include <QImage>
#include <QPalette>
#include <cmath>
#include <memory>
#include <string>
#include <vector>

#include "nyrwidgets/views/plan_view.h"
#include "nyrwidgets/views/report_view.h"
#include "nyrwidgets/views/report_view_item.h"

namespace nyr::test {

// A point of the plan: a name (its one column), a position and a code.
class PlanItem : public CNyrReportViewItem, public CNyrPlanPoint
{
public:
    PlanItem(std::string itemName, double e, double n, unsigned int itemCode = 0)
        : name(std::move(itemName)), easting(e), northing(n), code(itemCode)
    {
    }

    using CNyrReportViewItem::OnGetItemText;
    int OnGetItemText(unsigned int, unsigned int, std::string& text) override
    {
        text = name;
        return 1;
    }
    int OnGetPlanPosition(double& e, double& n) const override
    {
        e = easting;
        n = northing;
        return hasPosition ? 1 : 0;
    }
    unsigned int OnGetPlanCode() const override { return code; }
    int OnGetPlanLabel(std::string& text) const override
    {
        text = label;
        return label.empty() ? 0 : 1;
    }
    int OnGetPlanLabelPriority() const override { return priority; }

    std::string name;
    double easting;
    double northing;
    unsigned int code;
    bool hasPosition = true;
    std::string label;  // empty: the plan takes the name
    int priority = 0;
};

// Code colours far from white, grey and the highlight colour.
inline const QColor kRed(220, 0, 0);
inline const QColor kGreen(0, 160, 0);
inline const QColor kDisabledGrey(176, 176, 176);

// A report view of PlanItems and a plan of 400 x 300 pixels following it;
// code 1 is drawn red, 2 green, others in the default dark grey.
struct PlanFixture
{
    PlanFixture()
    {
        report.AddRealCols(std::vector<std::string>{"Name"}, {100});
        plan.resize(400, 300);
        plan.SetSymbol(1, CNyrPlanView::ShapeCircle, kRed);
        plan.SetSymbol(2, CNyrPlanView::ShapeSquare, kGreen);
        plan.SetReportView(&report);
    }

    PlanItem* Add(const std::string& name, double e, double n, unsigned int code = 1)
    {
        auto* item = new PlanItem(name, e, n, code);
        report.AddRealItem(item);
        return item;
    }
    // A grid of cols x rows points `spacing` metres apart from (e0, n0),
    // named "P<real index>", codes 1 and 2 alternating; shown.
    void AddGrid(int cols, int rows, double spacing, double e0 = 500000.0, double n0 = 5400000.0)
    {
        for (int y = 0; y < rows; ++y) {
            for (int x = 0; x < cols; ++x) {
                const unsigned int r = report.GetRealItemCount();
                Add("P" + std::to_string(r), e0 + x * spacing, n0 + y * spacing, 1 + r % 2);
            }
        }
        report.DisplayRealItems(0);
    }
    PlanItem* Item(unsigned int r) const { return static_cast<PlanItem*>(report.GetRealItem(r)); }
    QPoint ScreenOf(unsigned int r) const
    {
        return plan.PlaneToScreen(Item(r)->easting, Item(r)->northing).toPoint();
    }
    std::vector<unsigned int> Selected() const
    {
        std::vector<unsigned int> selected;
        report.GetSelectedRealItems(selected);
        return selected;
    }

    CNyrReportView report;
    CNyrPlanView plan;
};

// The colour the plan should show at the centre of an item's symbol: the
// background for an item not drawn.
inline QColor ExpectedColor(const PlanFixture& f, unsigned int r)
{
    const PlanItem* item = f.Item(r);
    if (!item->IsVisible() || !item->hasPosition)
        return f.plan.palette().color(QPalette::Base);
    if (item->IsSelected())
        return f.plan.palette().color(QPalette::Highlight);
    if (item->IsDisabled())
        return kDisabledGrey;
    return item->code == 1 ? kRed : item->code == 2 ? kGreen : QColor(64, 64, 64);
}

inline QColor PixelAt(const QImage& image, const QPoint& p)
{
    return image.valid(p) ? image.pixelColor(p) : QColor();
}

inline bool SameColor(const QColor& a, const QColor& b)
{
    return a.isValid() && b.isValid() && std::abs(a.red() - b.red()) <= 2 && std::abs(a.green() - b.green()) <= 2 &&
           std::abs(a.blue() - b.blue()) <= 2;
}

// Every pair of labels apart, every label inside `bounds`.
inline void ExpectApart(const std::vector<CNyrPlanView::LABEL>& labels, const QRectF& bounds)
{
    for (std::size_t i = 0; i < labels.size(); ++i) {
        EXPECT_TRUE(bounds.contains(labels[i].rect)) << labels[i].text;
        for (std::size_t j = i + 1; j < labels.size(); ++j)
            EXPECT_FALSE(labels[i].rect.intersects(labels[j].rect)) << labels[i].text << " / " << labels[j].text;
    }
}

}  // namespace nyr::test
