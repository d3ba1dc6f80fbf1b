// The plan view on its own: mapping and zoom, the scale bar and cursor
// read-out in the user's units, labels, and its images.
#include <QApplication>
#include <QFileDialog>
#include <QFontMetrics>
#include <QMouseEvent>
#include <QPainter>
#include <QTest>
#include <QWheelEvent>
#include <algorithm>
#include <clocale>
#include <random>

#include "nyr/frame/notifications.h"
#include "nyr/util/profile_entries.h"
#include "nyr/values/unit_settings.h"
#include "nyr/values/units.h"
#include "nyr/values/value_angle.h"
#include "nyrwidgets/values/unit_combo_box.h"
#include "nyrwidgets/msgbox/message_box_dialog.h"
#include "tests/nyrwidgets/views/plan_view_test_p.h"
#include "tests/nyrwidgets/views/views_test_p.h"
#include "tests/support/temp_dir.h"

using nyr::test::PlanFixture;

namespace {

void Wheel(QWidget& widget, const QPointF& pos, int eighths)
{
    QWheelEvent wheel(pos, widget.mapToGlobal(pos), QPoint(), QPoint(0, eighths), Qt::NoButton, Qt::NoModifier,
                      Qt::NoScrollPhase, false);
    QApplication::sendEvent(&widget, &wheel);
}

double Distance(const QPointF& a, const QPointF& b)
{
    return std::hypot(a.x() - b.x(), a.y() - b.y());
}

class PlanUnits : public ::testing::Test
{
protected:
    void SetUp() override
    {
        NyrSetProfilePath(m_dir.File("Nyr240.INI"));
        CNyrUnitSettingsDistance::Default().Unit(NYR_UNIT_METRES);
        CNyrUnitSettingsAngleLatLon::Default().Unit(NYR_UNIT_DMS);
    }
    void TearDown() override { CNyrUnitSettingsDistance::Default().Unit(NYR_UNIT_METRES); }

    nyr::test::TempDir m_dir;
};

}  // namespace

TEST(PlanViewMapping, PlaneAndScreenMapBothWaysAndZoomKeepsThePointUnderTheCursor)
{
    struct Case
    {
        double scale, e, n;
        QSize size;
        QPointF cursor;
        double factor;
    } cases[] = {
        {1.0, 0.0, 0.0, {400, 300}, {10, 20}, 1.25},
        {0.001, 500000.0, 5400000.0, {640, 200}, {600, 190}, 8.0},
        {250.0, 699999.99, 9999999.5, {300, 500}, {0, 0}, 0.1},
        {3.7, -1234.5, 98765.4, {401, 301}, {200.5, 150.5}, 1.0 / 1.25},
        {1e-7, 0.0, 0.0, {400, 300}, {399, 1}, 1e-3},  // held at the smallest scale
        {1e4, 1.0, 2.0, {400, 300}, {123, 45}, 1e9},   // held at the largest
    };
    for (const Case& c : cases) {
        CNyrPlanView plan;
        plan.resize(c.size);
        plan.SetScale(c.scale);
        plan.SetCenter(c.e, c.n);
        const QPointF middle = plan.PlaneToScreen(c.e, c.n);
        EXPECT_NEAR(middle.x(), c.size.width() / 2.0, 1e-6);
        EXPECT_NEAR(middle.y(), c.size.height() / 2.0, 1e-6);
        // North up, east right, one scale for both.
        const QPointF east = plan.PlaneToScreen(c.e + 100 / c.scale, c.n) - middle;
        const QPointF north = plan.PlaneToScreen(c.e, c.n + 100 / c.scale) - middle;
        EXPECT_NEAR(east.x(), 100, 1e-6);
        EXPECT_NEAR(-north.y(), 100, 1e-6);
        EXPECT_EQ(east.y(), 0.0);
        EXPECT_EQ(north.x(), 0.0);

        double e = 0.0, n = 0.0;
        plan.ScreenToPlane(c.cursor, e, n);
        EXPECT_LT(Distance(plan.PlaneToScreen(e, n), c.cursor), 1e-6);
        plan.ZoomAt(c.cursor, c.factor);
        EXPECT_LT(Distance(plan.PlaneToScreen(e, n), c.cursor), 1e-6) << c.scale << " x " << c.factor;
        EXPECT_GE(plan.GetScale(), 1e-7);
        EXPECT_LE(plan.GetScale(), 1e4);
        plan.ZoomAt(c.cursor, std::nan(""));
        plan.ZoomAt(c.cursor, -2.0);
        EXPECT_LT(Distance(plan.PlaneToScreen(e, n), c.cursor), 1e-6);
    }
}

TEST(PlanViewMapping, WheelZoomsAroundTheCursorAndKeysZoomAndPan)
{
    CNyrPlanView plan;
    plan.resize(400, 300);
    plan.SetScale(2.0);
    plan.SetCenter(1000.0, 2000.0);
    const QPointF cursor(310, 40);
    double e = 0.0, n = 0.0;
    plan.ScreenToPlane(cursor, e, n);
    for (int eighths : {120, 240, -120, 60, -360}) {
        const double before = plan.GetScale();
        Wheel(plan, cursor, eighths);
        EXPECT_NEAR(plan.GetScale(), before * std::pow(1.25, eighths / 120.0), 1e-12);
        EXPECT_LT(Distance(plan.PlaneToScreen(e, n), cursor), 1e-6);
    }

    const struct
    {
        int key;
        double de, dn, zoom;  // the centre's move in pixels, the zoom
    } keys[] = {
        {Qt::Key_Plus, 0, 0, 1.25}, {Qt::Key_Minus, 0, 0, 0.8},  {Qt::Key_Left, -50, 0, 1},
        {Qt::Key_Right, 50, 0, 1},  {Qt::Key_Up, 0, 37.5, 1},   {Qt::Key_Down, 0, -37.5, 1},
    };
    for (const auto& k : keys) {
        double e0 = 0.0, n0 = 0.0, e1 = 0.0, n1 = 0.0;
        plan.GetCenter(e0, n0);
        const double scale = plan.GetScale();
        QTest::keyClick(&plan, static_cast<Qt::Key>(k.key));
        plan.GetCenter(e1, n1);
        EXPECT_NEAR(plan.GetScale(), scale * k.zoom, 1e-12);
        EXPECT_NEAR((e1 - e0) * scale, k.de, 1e-6) << k.key;
        EXPECT_NEAR((n1 - n0) * scale, k.dn, 1e-6) << k.key;
    }
}

TEST(PlanViewMapping, ZoomToAllAndToSelectionFitTheirPoints)
{
    PlanFixture f;
    f.Add("a", 1000, 1000);
    f.Add("b", 1400, 1100);
    f.Add("c", 1200, 1900);
    f.Add("far, hidden", 90000, 90000);
    f.Add("no position", 0, 0)->hasPosition = false;
    f.report.DisplayRealItems(0);
    f.report.HideRealItem(3, 1);

    f.plan.SetScale(1e-4);
    QTest::keyClick(&f.plan, Qt::Key_Home);  // zoom to all
    // 400 x 900 m in 400 x 300 pixels: the height decides, with a margin.
    const QRectF inner = QRectF(f.plan.rect()).adjusted(3, 3, -3, -3);
    for (unsigned int r : {0u, 1u, 2u})
        EXPECT_TRUE(inner.contains(f.ScreenOf(r))) << r;
    EXPECT_GT(f.ScreenOf(0).y() - f.ScreenOf(2).y(), 0.8 * 300);

    f.report.SelectRealItem(0, 1);
    f.report.SelectRealItem(1, 1);
    QTest::keyClick(&f.plan, Qt::Key_Home, Qt::ShiftModifier);  // zoom to the selection
    EXPECT_GT(f.ScreenOf(1).x() - f.ScreenOf(0).x(), 0.8 * 400);
    EXPECT_NEAR((f.ScreenOf(0).y() + f.ScreenOf(1).y()) / 2.0, 150, 1);

    // One point: centred at the same scale. None: nothing changes.
    const double scale = f.plan.GetScale();
    f.report.SelectRealItem(0, 0);
    ASSERT_EQ(f.plan.ZoomToSelection(), 1);
    EXPECT_EQ(f.plan.GetScale(), scale);
    EXPECT_EQ(f.ScreenOf(1), QPoint(200, 150));
    f.report.SelectRealItem(1, 0);
    EXPECT_EQ(f.plan.ZoomToSelection(), 0);
    EXPECT_EQ(f.ScreenOf(1), QPoint(200, 150));
    f.report.HideAllItems(1);
    EXPECT_EQ(f.plan.ZoomToAll(), 0);
}

TEST_F(PlanUnits, ScaleBarShowsANiceLengthInEachDistanceUnit)
{
    const struct
    {
        long unit;
        double scale;  // pixels per metre
        const char* text;
        double pixels;
    } cases[] = {
        {NYR_UNIT_METRES, 2.0, "50 m", 100.0},
        {NYR_UNIT_METRES, 0.001, "100000 m", 100.0},
        {NYR_UNIT_METRES, 300.0, "0.2 m", 60.0},
        {NYR_UNIT_METRES, 1.2, "100 m", 120.0},  // exactly the longest bar
        {NYR_UNIT_US_SURVEY_FEET, 2.0, "100 fts", 100 * 2.0 * 1200.0 / 3937.0},
        {NYR_UNIT_US_SURVEY_FEET, 0.05, "5000 fts", 5000 * 0.05 * 1200.0 / 3937.0},
        {NYR_UNIT_INTERNATIONAL_FEET, 2.0, "100 fti", 100 * 2.0 * 0.3048},
        {NYR_UNIT_INTERNATIONAL_FEET, 1000.0, "0.2 fti", 0.2 * 1000.0 * 0.3048},
        {NYR_UNIT_INTERNATIONAL_FEET, 9000.0, "0.02 fti", 0.02 * 9000.0 * 0.3048},
    };
    CNyrPlanView plan;
    for (const auto& c : cases) {
        CNyrUnitSettingsDistance::Default().Unit(c.unit);
        plan.SetScale(c.scale);
        const CNyrPlanView::SCALE_BAR bar = plan.GetScaleBar();
        EXPECT_EQ(bar.text, c.text);
        EXPECT_NEAR(bar.pixels, c.pixels, 1e-9);
        // The next nice length would not fit.
        EXPECT_GT(bar.pixels, 120 / 2.5 - 1e-9);
        EXPECT_LE(bar.pixels, 120 + 1e-9);
    }
}

TEST_F(PlanUnits, ReadOutFollowsTheUnitNotificationsAndTheProjection)
{
    QWidget root;
    root.resize(500, 400);
    auto* plan = new CNyrPlanView(&root);
    plan->setGeometry(0, 0, 400, 300);
    auto* distances = new CNyrUnitSettingsDistance::CUnitDistanceComboBox(&root);
    distances->move(0, 350);
    root.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&root));
    int paints = 0;
    struct PaintCounter : QObject
    {
        int* count;
        explicit PaintCounter(int* c) : count(c) {}
        bool eventFilter(QObject*, QEvent* e) override
        {
            *count += e->type() == QEvent::Paint;
            return false;
        }
    } counter(&paints);
    plan->installEventFilter(&counter);

    plan->SetScale(10.0);  // a pixel is 0.1 m
    plan->SetCenter(1000.0, 2000.0);
    QTest::mouseMove(plan, QPoint(210, 140));
    EXPECT_EQ(plan->GetCursorText(), "E 1001.0  N 2001.0 m");

    // The user picks international feet in a list elsewhere in the window.
    CNyrUnitSettingsDistance& settings = CNyrUnitSettingsDistance::Default();
    settings.InitializeUnitDistanceComboBox(*distances);
    distances->setCurrentIndex(distances->findData(static_cast<int>(NYR_UNIT_INTERNATIONAL_FEET)));
    QApplication::processEvents();
    paints = 0;
    ASSERT_EQ(settings.SaveCurrentSelection(*distances, &root), 1);
    EXPECT_EQ(plan->GetCursorText(), "E 3284.1  N 6565.0 fti");
    QApplication::processEvents();
    EXPECT_GT(paints, 0);
    EXPECT_EQ(plan->GetScaleBar().text, "20 fti");

    // Latitude and longitude in the geographic unit, as its values show them.
    plan->SetProjection([](double e, double n, double& lat, double& lon) {
        lat = n / 1e4;
        lon = -e / 1e4;
        return e > 0;
    });
    std::string latText, lonText;
    CNyrValueAngleLat(0.2001).GetString(latText);
    CNyrValueAngleLon(-0.1001).GetString(lonText);
    const QString both = plan->GetCursorText();
    EXPECT_TRUE(both.startsWith("E 3284.1  N 6565.0 fti   ")) << both.toStdString();
    EXPECT_TRUE(both.contains(QString::fromStdString(latText).trimmed())) << both.toStdString();
    EXPECT_TRUE(both.contains(QString::fromStdString(lonText).trimmed())) << both.toStdString();
    CNyrUnitSettingsAngleLatLon::Default().Unit(NYR_UNIT_DEGREE);
    NyrSendMessageToDescendants(&root, WM_NYR_UNIT_CHANGED_ANGLE, NYR_UNIT_DMS, NYR_UNIT_DEGREE);
    EXPECT_NE(plan->GetCursorText(), both);
    EXPECT_TRUE(plan->GetCursorText().contains("11.46")) << plan->GetCursorText().toStdString();  // 0.2001 rad

    // Where the projection has no answer, or throws, the plane alone.
    plan->SetCenter(-1000.0, 2000.0);
    EXPECT_TRUE(plan->GetCursorText().endsWith(" fti")) << plan->GetCursorText().toStdString();
    plan->SetProjection([](double, double, double&, double&) -> bool { throw 1; });
    EXPECT_TRUE(plan->GetCursorText().endsWith(" fti"));
    plan->SetProjection([](double, double, double& lat, double& lon) {
        lat = 3.0;  // beyond the pole
        lon = 0.0;
        return true;
    });
    EXPECT_TRUE(plan->GetCursorText().endsWith(" fti"));

    QEvent leave(QEvent::Leave);
    QApplication::sendEvent(plan, &leave);
    EXPECT_EQ(plan->GetCursorText(), "");
}

// printf follows LC_NUMERIC, which a Qt application takes from a German
// desktop: "1001,0". Runs where that locale is installed.
TEST_F(PlanUnits, ReadOutAndScaleBarKeepTheDecimalPointUnderAGermanLocale)
{
    const std::string numeric = std::setlocale(LC_NUMERIC, nullptr);
    if (!std::setlocale(LC_NUMERIC, "de_DE.UTF-8"))
        GTEST_SKIP() << "de_DE.UTF-8 is not installed";
    CNyrPlanView plan;
    plan.resize(400, 300);
    plan.SetScale(10.0);
    plan.SetCenter(1000.0, 2000.0);
    QMouseEvent move(QEvent::MouseMove, QPointF(210, 140), plan.mapToGlobal(QPointF(210, 140)), Qt::NoButton,
                     Qt::NoButton, Qt::NoModifier);
    QApplication::sendEvent(&plan, &move);
    const QString text = plan.GetCursorText();
    const std::string bar = plan.GetScaleBar().text;
    plan.SetScale(300.0);
    const std::string small = plan.GetScaleBar().text;
    std::setlocale(LC_NUMERIC, numeric.c_str());
    EXPECT_EQ(text, "E 1001.0  N 2001.0 m");
    EXPECT_EQ(bar, "10 m");
    EXPECT_EQ(small, "0.2 m");
}

TEST(PlanViewLabels, LabelsNeverOverlapAndCrowdedOnesGoByPriority)
{
    PlanFixture f;
    // A dense cloud with long names: most labels must give way.
    std::mt19937 random(7);
    std::uniform_real_distribution<double> spread(0.0, 100.0);
    for (int i = 0; i < 300; ++i)
        f.Add("Traverse point " + std::to_string(i), spread(random), spread(random), 1);
    f.report.DisplayRealItems(0);
    for (double zoom : {1.0, 1.6, 2.5, 4.0, 8.0}) {
        f.plan.ZoomToAll();
        f.plan.ZoomAt(QPointF(200, 150), zoom);
        std::vector<CNyrPlanView::LABEL> labels;
        QImage image(400, 300, QImage::Format_ARGB32_Premultiplied);
        QPainter painter(&image);
        f.plan.Render(painter, QRectF(0, 0, 400, 300), &labels);
        ASSERT_FALSE(labels.empty());
        nyr::test::ExpectApart(labels, QRectF(0, 0, 400, 300));
        for (const CNyrPlanView::LABEL& label : labels)
            EXPECT_EQ(label.text, f.Item(label.realItem)->name);
    }

    // Ten points on one spot: the two places that do not overlap (right
    // and left) go to the two highest priorities.
    PlanFixture g;
    for (int i = 0; i < 10; ++i)
        g.Add("Point " + std::to_string(i), 50, 50)->priority = (i * 7) % 10;
    g.Item(4)->label = "own label";
    g.report.DisplayRealItems(0);
    (void)g.plan.grab();
    std::vector<CNyrPlanView::LABEL> labels = g.plan.GetDrawnLabels();
    ASSERT_EQ(labels.size(), 2u);
    nyr::test::ExpectApart(labels, QRectF(g.plan.rect()));
    EXPECT_EQ(labels[0].realItem, 7u);  // priority 9
    EXPECT_EQ(labels[1].realItem, 4u);  // priority 8
    EXPECT_EQ(labels[1].text, "own label");
    EXPECT_LT(labels[1].rect.right(), labels[0].rect.left());

    // Off, or more points in view than the label limit: none.
    g.plan.SetDetailLimits(20000, 9);
    (void)g.plan.grab();
    EXPECT_TRUE(g.plan.GetDrawnLabels().empty());
    g.plan.SetDetailLimits(20000, 10);
    g.plan.SetLabels(false);
    (void)g.plan.grab();
    EXPECT_TRUE(g.plan.GetDrawnLabels().empty());
}

// The read-out is drawn over the plan: a label under it came out as two
// texts on top of each other.
TEST(PlanViewLabels, LabelsKeepClearOfTheCursorReadOutOnScreenOnly)
{
    PlanFixture f;
    f.AddGrid(12, 9, 10.0);
    f.plan.ZoomToAll();
    const auto underReadOut = [&f](const std::vector<CNyrPlanView::LABEL>& labels) {
        const QFontMetrics metrics(f.plan.font());
        const QString text = f.plan.GetCursorText().isEmpty() ? "E 500000.0  N 5400000.0 m" : f.plan.GetCursorText();
        const QRectF box(4, 4, metrics.horizontalAdvance(text) + 8, metrics.height() + 2);
        return std::count_if(labels.begin(), labels.end(), [&box](const auto& l) { return l.rect.intersects(box); });
    };
    (void)f.plan.grab();
    ASSERT_GT(underReadOut(f.plan.GetDrawnLabels()), 0);  // the corner is crowded
    QMouseEvent move(QEvent::MouseMove, QPointF(200, 150), f.plan.mapToGlobal(QPointF(200, 150)), Qt::NoButton,
                     Qt::NoButton, Qt::NoModifier);
    QApplication::sendEvent(&f.plan, &move);
    ASSERT_FALSE(f.plan.GetCursorText().isEmpty());
    (void)f.plan.grab();
    EXPECT_EQ(underReadOut(f.plan.GetDrawnLabels()), 0);
    nyr::test::ExpectApart(f.plan.GetDrawnLabels(), QRectF(f.plan.rect()));
    // An image of the plan has no read-out, so nothing gives way for it.
    std::vector<CNyrPlanView::LABEL> printed;
    QImage image(400, 300, QImage::Format_ARGB32_Premultiplied);
    QPainter painter(&image);
    f.plan.Render(painter, QRectF(0, 0, 400, 300), &printed);
    EXPECT_GT(underReadOut(printed), 0);
}

TEST(PlanViewOutput, RenderFitsTheViewIntoAnyRectangleAndExportsPng)
{
    PlanFixture f;
    f.AddGrid(5, 4, 10.0);
    f.plan.ZoomToAll();
    f.plan.ZoomAt(QPointF(200, 150), 0.8);  // clear of the north arrow and the scale bar
    const QImage screen = f.plan.ToImage();
    ASSERT_EQ(screen.size(), QSize(400, 300));
    for (unsigned int r = 0; r < 20; ++r)
        EXPECT_TRUE(nyr::test::SameColor(nyr::test::PixelAt(screen, f.ScreenOf(r)), nyr::test::ExpectedColor(f, r)));

    // Twice the size at an offset, as a page of a printout: the same plan,
    // twice as large, symbols included.
    QImage page(1000, 800, QImage::Format_ARGB32_Premultiplied);
    page.fill(Qt::black);
    QPainter painter(&page);
    const QRectF target(100, 100, 800, 600);
    f.plan.Render(painter, target);
    painter.end();
    EXPECT_EQ(page.pixelColor(50, 50), QColor(Qt::black));
    EXPECT_EQ(page.pixelColor(950, 750), QColor(Qt::black));
    for (unsigned int r = 0; r < 20; ++r) {
        const QPoint at = (f.plan.PlaneToScreen(f.Item(r)->easting, f.Item(r)->northing) * 2 + target.topLeft()).toPoint();
        EXPECT_TRUE(nyr::test::SameColor(page.pixelColor(at), nyr::test::ExpectedColor(f, r))) << r;
        // 7 pixels on screen, 14 on the page: 3 pixels off the centre is
        // its fill, 5 its outline (on screen: the background).
        EXPECT_TRUE(nyr::test::SameColor(page.pixelColor(at + QPoint(3, 0)), nyr::test::ExpectedColor(f, r))) << r;
        EXPECT_NE(page.pixelColor(at + QPoint(5, 0)), QColor(Qt::white)) << r;
        EXPECT_EQ(screen.pixelColor(f.ScreenOf(r) + QPoint(5, 0)), QColor(Qt::white)) << r;
    }

    nyr::test::TempDir dir;
    ASSERT_EQ(f.plan.ExportPng(dir.File("plan.png")), 1);
    QImage back(QString::fromStdString(dir.File("plan.png")));
    ASSERT_EQ(back.size(), screen.size());
    EXPECT_EQ(back.convertToFormat(QImage::Format_ARGB32), screen.convertToFormat(QImage::Format_ARGB32));
    ASSERT_EQ(f.plan.ExportPng(dir.File("large.png"), QSize(1200, 300)), 1);
    EXPECT_EQ(QImage(QString::fromStdString(dir.File("large.png"))).size(), QSize(1200, 300));
    EXPECT_EQ(f.plan.ExportPng(dir.File("no such folder/plan.png")), 0);

    // Through the dialog; a file that cannot be written is reported, one
    // that exists is replaced only when the user agrees.
    nyr::test::MessageLog messages(NYR_IDNO);
    std::string chosen = dir.File("chosen");
    nyr::test::DialogAnswer answer([&chosen](QDialog& d) {
        auto& dialog = static_cast<QFileDialog&>(d);
        EXPECT_EQ(dialog.acceptMode(), QFileDialog::AcceptSave);
        dialog.selectFile(QString::fromStdString(chosen));
        d.done(QDialog::Accepted);
    });
    EXPECT_EQ(f.plan.ExportPngDialog(), 1);
    EXPECT_FALSE(QImage(QString::fromStdString(chosen + ".png")).isNull());
    EXPECT_TRUE(messages.texts.empty());
    nyr::test::WriteFile(chosen + ".png", "kept");
    EXPECT_EQ(f.plan.ExportPngDialog(), 0);  // answered No
    EXPECT_EQ(nyr::test::ReadFile(chosen + ".png"), "kept");
    chosen = dir.File("no such folder/plan.png");
    EXPECT_EQ(f.plan.ExportPngDialog(), 0);
    ASSERT_EQ(messages.texts.size(), 2u);
    EXPECT_NE(messages.texts[0].find(dir.File("chosen.png") + " already exists"), std::string::npos);
    EXPECT_NE(messages.texts[1].find("no such folder/plan.png"), std::string::npos);
}

// The north arrow (top right) and the scale bar (bottom right) are drawn
// with no points at all, in their corners; the rest of an empty plan is
// background.
TEST(PlanViewOutput, NorthArrowAndScaleBarAreDrawnInTheirCorners)
{
    CNyrPlanView plan;
    plan.resize(400, 300);
    plan.SetScale(2.0);
    const QImage image = plan.ToImage();
    const QColor base = plan.palette().color(QPalette::Base);
    const auto inked = [&image, &base](const QRect& area) {
        int pixels = 0;
        for (int y = area.top(); y <= area.bottom(); ++y)
            for (int x = area.left(); x <= area.right(); ++x)
                pixels += image.pixelColor(x, y) != base;
        return pixels;
    };
    EXPECT_GT(inked(QRect(350, 0, 50, 60)), 40);     // north arrow
    EXPECT_GT(inked(QRect(200, 240, 200, 60)), 40);  // scale bar and its text
    EXPECT_EQ(inked(QRect(0, 0, 340, 230)), 0);
}
