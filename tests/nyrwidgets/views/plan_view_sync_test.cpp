// The plan view in step with its report view: selections and checks made in
// either, hidden, deleted, moved and new points, the rubber band, and a
// seeded random sequence of both views' operations.
#include <QApplication>
#include <QContextMenuEvent>
#include <QMenu>
#include <QPainter>
#include <QTest>
#include <QTimer>
#include <functional>
#include <random>
#include <set>

#include "nyr/frame/notifications.h"
#include "tests/nyrwidgets/views/plan_view_test_p.h"
#include "tests/nyrwidgets/views/views_test_p.h"

using nyr::test::PlanFixture;
using nyr::test::PlanItem;

namespace {

// Furniture the points must not be checked under: north arrow, scale bar.
bool UnderFurniture(const QPoint& p)
{
    return (p.x() > 400 - 50 && p.y() < 70) || (p.x() > 400 - 150 && p.y() > 300 - 40);
}

// Draws the plan and checks it against the report view: every point not
// under a label or the furniture shows its item's state (or the background
// when it is not drawn), the points in view are the visible ones, labels
// do not overlap and belong to visible items.
void ExpectInStep(const PlanFixture& f, const std::string& step)
{
    QImage image(400, 300, QImage::Format_ARGB32_Premultiplied);
    std::vector<CNyrPlanView::LABEL> labels;
    QPainter painter(&image);
    f.plan.Render(painter, QRectF(0, 0, 400, 300), &labels);
    painter.end();
    nyr::test::ExpectApart(labels, QRectF(0, 0, 400, 300));
    for (const CNyrPlanView::LABEL& label : labels)
        EXPECT_TRUE(f.Item(label.realItem)->IsVisible()) << step;
    std::vector<unsigned int> inView;
    const QRect inner = QRect(0, 0, 400, 300).adjusted(8, 8, -8, -8);
    for (unsigned int r = 0; r < f.report.GetRealItemCount(); ++r) {
        if (f.Item(r)->IsVisible() && f.Item(r)->hasPosition && inner.contains(f.ScreenOf(r)))
            inView.push_back(r);
    }
    // A point's place shows its state, unless a label, the furniture or
    // another point drawn there (one deleted point's place taken by a new
    // one) covers it.
    const auto covered = [&](const QPoint& p, unsigned int r) {
        return UnderFurniture(p) ||
               std::any_of(labels.begin(), labels.end(),
                           [&p](const CNyrPlanView::LABEL& l) { return l.rect.adjusted(-1, -1, 1, 1).contains(p); }) ||
               std::any_of(inView.begin(), inView.end(), [&](unsigned int other) {
                   return other != r && (f.ScreenOf(other) - p).manhattanLength() < 12;
               });
    };
    for (unsigned int r = 0; r < f.report.GetRealItemCount(); ++r) {
        const QPoint p = f.ScreenOf(r);
        if (inner.contains(p) && !covered(p, r)) {
            EXPECT_TRUE(nyr::test::SameColor(nyr::test::PixelAt(image, p), nyr::test::ExpectedColor(f, r)))
                << step << ": item " << r << " at " << p.x() << "," << p.y() << " shows "
                << nyr::test::PixelAt(image, p).name().toStdString() << " for "
                << nyr::test::ExpectedColor(f, r).name().toStdString();
        }
    }
    EXPECT_EQ(f.plan.RealItemsIn(QRectF(inner)), inView) << step;
}

void Show(PlanFixture& f)
{
    f.plan.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&f.plan));
    QApplication::processEvents();
}

// A view of the fixture's grid (8 x 6 points 10 m apart) that leaves the
// points 35 pixels apart, clear of the furniture.
void FixView(PlanFixture& f)
{
    f.plan.SetScale(3.5);
    f.plan.SetCenter(500035.0, 5400025.0);
}

// Check boxes and disabling on, the 8 x 6 grid in the fixed view.
void SetUpGrid(PlanFixture& f)
{
    f.report.SetCheckBoxes(true);
    f.report.SetDisableRealItemsEnabled(true);
    f.AddGrid(8, 6, 10.0);
    FixView(f);
}

void Drag(QWidget& w, const QPoint& from, const QPoint& to, Qt::KeyboardModifiers modifiers)
{
    QTest::mousePress(&w, Qt::LeftButton, modifiers, from);
    QTest::mouseMove(&w, (from + to) / 2);
    QTest::mouseMove(&w, to);
    QTest::mouseRelease(&w, Qt::LeftButton, modifiers, to);
}

}  // namespace

TEST(PlanViewSync, ClicksAndKeysChangeTheReportView)
{
    PlanFixture f;
    SetUpGrid(f);
    Show(f);
    FixView(f);  // again, after the fit of the first paint

    QTest::mouseClick(&f.plan, Qt::LeftButton, {}, f.ScreenOf(5));
    EXPECT_EQ(f.Selected(), std::vector<unsigned int>{5});
    EXPECT_EQ(f.report.GetFocusedRealItem(), 5);
    QTest::mouseClick(&f.plan, Qt::LeftButton, Qt::ControlModifier, f.ScreenOf(7) + QPoint(3, -2));
    EXPECT_EQ(f.Selected(), (std::vector<unsigned int>{5, 7}));
    QTest::mouseClick(&f.plan, Qt::LeftButton, Qt::ControlModifier, f.ScreenOf(5));
    EXPECT_EQ(f.Selected(), std::vector<unsigned int>{7});
    ExpectInStep(f, "clicks");
    QTest::mouseClick(&f.plan, Qt::LeftButton, {}, f.ScreenOf(7) + QPoint(17, 17));  // between points
    EXPECT_TRUE(f.Selected().empty());
    f.report.DisableRealItem(9, 1);
    QTest::mouseClick(&f.plan, Qt::LeftButton, {}, f.ScreenOf(9));
    EXPECT_TRUE(f.Selected().empty());

    QTest::keyClick(&f.plan, Qt::Key_A, Qt::ControlModifier);
    EXPECT_EQ(f.Selected().size(), 47u);  // all but the disabled one
    QTest::keyClick(&f.plan, Qt::Key_Space);
    EXPECT_EQ(f.report.GetCheckedCount(), 47);
    QTest::keyClick(&f.plan, Qt::Key_Space);
    EXPECT_EQ(f.report.GetCheckedCount(), 0);
    ExpectInStep(f, "keys");

    // Delete only where the report view's item menu offers it; its own
    // handler deletes.
    QTest::mouseClick(&f.plan, Qt::LeftButton, {}, f.ScreenOf(12));
    QTest::keyClick(&f.plan, Qt::Key_Delete);
    EXPECT_FALSE(f.Item(12)->IsDeleted());
    f.report.SetItemMenu(f.report.GetItemMenu() | CNyrReportView::MenuDelete, f.report.GetItemMenu(true));
    QTest::keyClick(&f.plan, Qt::Key_Delete);
    EXPECT_TRUE(f.Item(12)->IsDeleted());
    ExpectInStep(f, "deleted by key");
}

// Opens the plan's context menu and hands it to `act` while it is up; the
// menu is closed afterwards unless `act` triggered an entry.
void WithContextMenu(CNyrPlanView& plan, const std::function<void(QMenu&)>& act)
{
    bool seen = false;
    QTimer::singleShot(0, &plan, [&act, &seen] {
        if (auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget())) {
            seen = true;
            act(*menu);
            menu->close();
        }
    });
    QContextMenuEvent event(QContextMenuEvent::Keyboard, QPoint(10, 10), plan.mapToGlobal(QPoint(10, 10)));
    QApplication::sendEvent(&plan, &event);
    EXPECT_TRUE(seen);
}

QAction* Entry(QMenu& menu, const QString& text)
{
    for (QAction* a : menu.actions()) {
        if (a->text().startsWith(text))
            return a;
    }
    return nullptr;
}

TEST(PlanViewSync, ContextMenuOffersWhatTheReportViewAllows)
{
    PlanFixture f;
    SetUpGrid(f);
    Show(f);
    WithContextMenu(f.plan, [](QMenu& menu) {
        for (const char* text : {"Zoom to &All", "Zoom &In", "Zoom &Out", "&Labels", "&Select All", "&Invert Selection",
                                 "&Check All", "In&vert Checked", "Export as &PNG"})
            EXPECT_TRUE(Entry(menu, text) && Entry(menu, text)->isEnabled()) << text;
        EXPECT_FALSE(Entry(menu, "Zoom to &Selection")->isEnabled());
        EXPECT_EQ(Entry(menu, "&Delete"), nullptr);
        Entry(menu, "&Labels")->trigger();
    });
    EXPECT_FALSE(f.plan.GetLabels());

    f.report.SelectRealItem(3, 1);
    f.report.SetItemMenu(f.report.GetItemMenu() | CNyrReportView::MenuDelete, 0);
    WithContextMenu(f.plan, [](QMenu& menu) {
        EXPECT_TRUE(Entry(menu, "Zoom to &Selection")->isEnabled());
        ASSERT_NE(Entry(menu, "&Delete"), nullptr);
        Entry(menu, "&Delete")->trigger();
    });
    EXPECT_TRUE(f.Item(3)->IsDeleted());
    WithContextMenu(f.plan, [](QMenu& menu) { Entry(menu, "&Invert Selection")->trigger(); });
    EXPECT_EQ(f.Selected().size(), 47u);
}

TEST(PlanViewSync, RubberBandSelectsExactlyWhatItEncloses)
{
    PlanFixture f;
    f.AddGrid(8, 6, 10.0);
    Show(f);
    FixView(f);
    f.report.HideRealItem(10, 1);

    // Around points 1, 2, 9 and 10; 10 is hidden.
    const QPoint from = f.ScreenOf(1) - QPoint(5, -5);
    const QPoint to = f.ScreenOf(10) + QPoint(5, -5);
    Drag(f.plan, from, to, Qt::ShiftModifier);
    EXPECT_EQ(f.Selected(), (std::vector<unsigned int>{1, 2, 9}));
    EXPECT_EQ(f.report.GetFocusedRealItem(), 1);
    // With Ctrl too the band adds; without it replaces.
    Drag(f.plan, f.ScreenOf(40) + QPoint(4, 4), f.ScreenOf(40) - QPoint(4, 4), Qt::ShiftModifier | Qt::ControlModifier);
    EXPECT_EQ(f.Selected(), (std::vector<unsigned int>{1, 2, 9, 40}));
    Drag(f.plan, f.ScreenOf(47) + QPoint(4, 4), f.ScreenOf(47) - QPoint(4, 4), Qt::ShiftModifier);
    EXPECT_EQ(f.Selected(), std::vector<unsigned int>{47});
    ExpectInStep(f, "band");
    // Escape ends a band: the button coming up changes nothing.
    QTest::mousePress(&f.plan, Qt::LeftButton, Qt::ShiftModifier, from);
    QTest::mouseMove(&f.plan, (from + to) / 2);
    QTest::mouseMove(&f.plan, to);
    QTest::keyClick(&f.plan, Qt::Key_Escape);
    QTest::mouseRelease(&f.plan, Qt::LeftButton, Qt::ShiftModifier, to);
    EXPECT_EQ(f.Selected(), std::vector<unsigned int>{47});

    // A plain drag pans and selects nothing.
    const QPointF before = f.plan.PlaneToScreen(f.Item(20)->easting, f.Item(20)->northing);
    Drag(f.plan, QPoint(100, 100), QPoint(160, 80), {});
    const QPointF moved = f.plan.PlaneToScreen(f.Item(20)->easting, f.Item(20)->northing) - before;
    EXPECT_NEAR(moved.x(), 60, 1e-6);
    EXPECT_NEAR(moved.y(), -20, 1e-6);
    EXPECT_EQ(f.Selected(), std::vector<unsigned int>{47});
}

TEST(PlanViewSync, ChangesInTheReportViewShowInThePlanAtOnce)
{
    PlanFixture f;
    SetUpGrid(f);
    const struct
    {
        const char* name;
        std::function<void(PlanFixture&)> change;
    } steps[] = {
        {"select", [](PlanFixture& g) { g.report.SelectRealItems({3, 4, 30}, 1); }},
        {"check", [](PlanFixture& g) { g.report.CheckRealItem(4, 1); }},
        {"disable a selected point", [](PlanFixture& g) { g.report.DisableRealItem(30, 1); }},
        {"hide", [](PlanFixture& g) { g.report.HideRealItems({3, 5, 6}, 1); }},
        {"hide without notifying", [](PlanFixture& g) { g.report.HideRealItem(7, 1, 0); }},
        {"view again", [](PlanFixture& g) { g.report.HideRealItems({3, 7}, 0, 0); }},
        {"delete one", [](PlanFixture& g) { g.report.DeleteRealItem(20); }},
        {"delete several", [](PlanFixture& g) { g.report.DeleteRealItems(std::vector<unsigned int>{21, 22, 4}); }},
        {"move and refresh",
         [](PlanFixture& g) {
             g.Item(23)->easting += 5;
             g.report.RefreshRealItem(23);
         }},
        {"append", [](PlanFixture& g) { g.report.AppendRealItem(new PlanItem("new", 500025.0, 5400025.0, 2)); }},
        {"lose the position",
         [](PlanFixture& g) {
             g.Item(24)->hasPosition = false;
             g.report.RefreshRealItem(24);
         }},
        {"select without notifying, then rebuild",
         [](PlanFixture& g) {
             g.report.SelectRealItem(40, 1, 0);
             g.report.CheckRealItem(41, 1, 0);
             g.report.DisplayRealItems(1);
         }},
        {"sort", [](PlanFixture& g) { g.report.SortList(std::vector<CNyrReportView::SORT_STATE_REALCOL>{{0, 0}}); }},
        {"clean up without notifying",
         [](PlanFixture& g) {
             g.report.CleanupRealItems(0);
             g.AddGrid(3, 2, 10.0);
         }},
    };
    for (const auto& step : steps) {
        step.change(f);
        ExpectInStep(f, step.name);
    }
    EXPECT_EQ(f.plan.RealItemsIn(QRectF(f.plan.rect())).size(), 6u);

    // The report view may go first; the plan then draws nothing.
    auto report = std::make_unique<CNyrReportView>();
    CNyrPlanView plan;
    plan.SetReportView(report.get());
    EXPECT_EQ(report->GetItemNotification(&plan), CNyrPlanView::kNotifyMask);
    plan.SetReportView(nullptr);
    EXPECT_EQ(report->GetItemNotification(&plan), 0);
    plan.SetReportView(report.get());
    report->AddRealItem(new PlanItem("a", 1, 1));
    report.reset();
    EXPECT_EQ(plan.GetReportView(), nullptr);
    EXPECT_TRUE(plan.RealItemsIn(QRectF(-1e6, -1e6, 2e6, 2e6)).empty());
    (void)plan.ToImage();
}

TEST(PlanViewSync, ASelectionMadeInTheListAloneBringsItsPointIntoView)
{
    PlanFixture f;
    f.AddGrid(8, 6, 10.0);
    Show(f);
    f.plan.SetScale(5.0);
    f.plan.SetCenter(500000.0, 5400000.0);  // point 0 in the middle, 47 outside
    f.report.SelectRealItem(47, 1);
    QApplication::processEvents();
    EXPECT_EQ(f.ScreenOf(47), QPoint(200, 150));
    // Inside the view already (50 pixels from 47): nothing moves.
    f.report.SelectRealItem(46, 1);
    QApplication::processEvents();
    EXPECT_EQ(f.ScreenOf(47), QPoint(200, 150));
    // Many at once: nothing moves.
    f.report.SelectAllItems(0);
    f.report.SelectAllItems(1);
    QApplication::processEvents();
    EXPECT_EQ(f.ScreenOf(47), QPoint(200, 150));
}

// A subscriber that changes the view inside a notification: it checks
// every item that gets selected.
class CheckOnSelect : public nyr::test::Subscriber
{
public:
    explicit CheckOnSelect(CNyrReportView& view) : m_view(view)
    {
        onMessage = [this](const Message& m) {
            if (m.message == WM_NYR_REPORTVIEW_ITEM_SELECT)
                m_view.CheckRealItem(static_cast<unsigned int>(m.lParam), 1);
        };
    }

private:
    CNyrReportView& m_view;
};

TEST(PlanViewSync, RandomSequenceOfBothViewsOperationsKeepsThePlanInStep)
{
    for (const bool dots : {false, true}) {
        for (const bool subscriberFirst : {false, true}) {
            PlanFixture f;
            CheckOnSelect checker(f.report);
            if (subscriberFirst) {
                f.plan.SetReportView(nullptr);
                f.report.AddItemNotification(&checker, CNyrReportView::NotifyItemAll);
                f.plan.SetReportView(&f.report);
            } else {
                f.report.AddItemNotification(&checker, CNyrReportView::NotifyItemAll);
            }
            if (dots)
                f.plan.SetDetailLimits(0, 0);
            f.report.SetItemMenu(f.report.GetItemMenu() | CNyrReportView::MenuDelete, 0);
            SetUpGrid(f);
            Show(f);
            FixView(f);
            std::mt19937 random(dots * 2 + subscriberFirst + 11);
            const auto pick = [&random](unsigned int n) { return static_cast<unsigned int>(random() % n); };
            // Grid places (8 x 6) not taken by a point that is not deleted.
            const auto freePlace = [&f, &pick](double& e, double& n) {
                std::set<std::pair<int, int>> taken;
                for (unsigned int r = 0; r < f.report.GetRealItemCount(); ++r) {
                    if (!f.Item(r)->IsDeleted())
                        taken.insert({static_cast<int>(std::lround((f.Item(r)->easting - 500000.0) / 10)),
                                      static_cast<int>(std::lround((f.Item(r)->northing - 5400000.0) / 10))});
                }
                for (int tries = 0; tries < 100; ++tries) {
                    const int x = static_cast<int>(pick(8));
                    const int y = static_cast<int>(pick(6));
                    if (!taken.count({x, y})) {
                        e = 500000.0 + x * 10;
                        n = 5400000.0 + y * 10;
                        return true;
                    }
                }
                return false;
            };
            for (int step = 0; step < 250; ++step) {
                const unsigned int count = f.report.GetRealItemCount();
                const unsigned int r = pick(count);
                const int on = static_cast<int>(pick(2));
                std::string what;
                switch (pick(16)) {
                case 0: what = "select"; f.report.SelectRealItem(r, on); break;
                case 1: what = "check"; f.report.CheckRealItem(r, on); break;
                case 2: what = "hide"; f.report.HideRealItem(r, on); break;
                case 3: what = "delete"; f.report.DeleteRealItem(r); break;
                case 4: what = "disable"; f.report.DisableRealItem(r, on); break;
                case 5: {
                    what = "append";
                    double e = 0.0, n = 0.0;
                    if (freePlace(e, n))
                        f.report.AppendRealItem(new PlanItem("N" + std::to_string(step), e, n, 1 + on));
                    break;
                }
                case 6: {
                    what = "move";
                    double e = 0.0, n = 0.0;
                    if (freePlace(e, n)) {
                        f.Item(r)->easting = e;
                        f.Item(r)->northing = n;
                        f.report.RefreshRealItem(r);
                    }
                    break;
                }
                case 7: what = "select all / invert"; on ? f.report.SelectAllItems(pick(2)) : f.report.InvertSelection(); break;
                case 8: what = "sort"; f.report.SortList(std::vector<CNyrReportView::SORT_STATE_REALCOL>{{0, on}}); break;
                case 9: what = "plan click"; QTest::mouseClick(&f.plan, Qt::LeftButton, on ? Qt::ControlModifier : Qt::NoModifier, f.ScreenOf(r)); break;
                case 10: {
                    what = "plan band";
                    const QPoint a(static_cast<int>(pick(400)), static_cast<int>(pick(300)));
                    const QPoint b(static_cast<int>(pick(400)), static_cast<int>(pick(300)));
                    if ((a - b).manhattanLength() > 10)
                        Drag(f.plan, a, b, on ? Qt::ShiftModifier | Qt::ControlModifier : Qt::ShiftModifier);
                    break;
                }
                case 11: what = "plan space"; QTest::keyClick(&f.plan, Qt::Key_Space); break;
                case 12: what = "plan delete"; if (pick(4) == 0) QTest::keyClick(&f.plan, Qt::Key_Delete); break;
                case 13:
                    what = "clean up and refill";
                    if (pick(8) == 0) {
                        f.report.CleanupRealItems(on);
                        f.AddGrid(8, 6, 10.0);
                        FixView(f);
                    }
                    break;
                case 14:
                    what = "unnotified, then rebuilt";
                    f.report.SelectRealItem(r, on, 0);
                    f.report.HideRealItem(pick(count), on, 0);
                    f.report.DisplayRealItems(1);
                    break;
                default: what = "delete checked"; if (pick(6) == 0) f.report.DeleteCheckedItems(); break;
                }
                QApplication::processEvents();
                ExpectInStep(f, "step " + std::to_string(step) + " " + what);
                if (::testing::Test::HasFailure())
                    return;
            }
        }
    }
}
