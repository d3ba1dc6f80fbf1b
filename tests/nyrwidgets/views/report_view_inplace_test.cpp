#include <gtest/gtest.h>

#include <QApplication>
#include <QHeaderView>
#include <QTest>
#include <memory>
#include <random>

#include "nyr/frame/notifications.h"
#include "nyr/platform/string_format.h"
#include "nyr/util/profile_entries.h"
#include "nyr/values/unit_settings.h"
#include "nyrwidgets/input/input_string.h"
#include "nyrwidgets/input/input_value.h"
#include "nyrwidgets/views/report_view_save_as_dlg_cv.h"
#include "tests/nyrwidgets/views/views_test_p.h"
#include "tests/support/temp_dir.h"

using nyr::test::Subscriber;

namespace {

constexpr double kDegree = 3.141592653589793 / 180.0;

// A survey point: a name (a text of at most 8 characters), a height in
// metres that must not be negative, a note that cannot be edited, an azimuth.
class PointItem : public CNyrReportViewItem
{
public:
    PointItem(std::string pointName, double metres, double radians)
        : name(std::move(pointName)), height(metres), azimuth(radians)
    {
    }

    std::string name;
    double height;
    double azimuth;

    using CNyrReportViewItem::OnGetItemText;
    int OnGetItemText(unsigned int realCol, unsigned int, std::string& text) override
    {
        switch (realCol) {
        case 0: text = name; break;
        case 1: text = NyrFormat("%.3f", height); break;
        case 2: text = "note"; break;
        default: text = NyrFormat("%.6f", azimuth / kDegree); break;
        }
        return 1;
    }
    int OnCompareItem(const CNyrReportViewItem* other, unsigned int realCol) override
    {
        const auto* o = static_cast<const PointItem*>(other);
        return realCol == 1 ? Compare(height, o->height) : CompareIS(name, o->name);
    }
    int OnEditItemKind(unsigned int realCol) override
    {
        static constexpr int kKinds[] = {NYR_INPUT_STRING, NYR_INPUT_DISTANCE, NYR_INPUT_NONE, NYR_INPUT_ANGLE};
        return realCol < 4 ? kKinds[realCol] : NYR_INPUT_NONE;
    }
    void OnEditItemBegin(unsigned int realCol, CNyrInputControl& field) override
    {
        if (realCol == 0) {
            auto& text = static_cast<CNyrInputString&>(field);
            text.SetMaxChars(8);
            text.SetValue(name);
        } else {
            static_cast<CNyrInputValue&>(field).SetValue(realCol == 1 ? height : azimuth);
        }
    }
    int OnEditItemSave(unsigned int realCol, CNyrInputControl& field, std::string& message) override
    {
        if (realCol == 0) {
            name = static_cast<CNyrInputString&>(field).GetValue();
            return 1;
        }
        const double value = static_cast<CNyrInputValue&>(field).GetValue();
        if (realCol == 1 && value < 0) {
            message = "Height must not be negative";
            return 0;
        }
        (realCol == 1 ? height : azimuth) = value;
        return 1;
    }
};

class Inplace : public ::testing::Test
{
protected:
    void SetUp() override
    {
        NyrSetProfilePath(m_dir.File("Nyr240.INI"));
        CNyrUnitSettingsDistance::Default().Unit(NYR_UNIT_METRES);
        CNyrUnitSettingsDistance::Default().Precision(3);
        CNyrUnitSettingsAngle::Default().Unit(NYR_UNIT_DEGREE);
        view.AddRealCols(std::vector<std::string>{"Name", "Height", "Note", "Azimuth"});
        for (int i = 0; i < 6; ++i)
            view.AddRealItem(new PointItem("p" + std::to_string(i), 10.0 * i, i * kDegree));
        view.DisplayRealItems(1);
        view.resize(500, 300);
        view.AddItemNotification(&subscriber, CNyrReportView::NotifyItemAll);
        view.show();
        view.activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(&view));
    }
    void TearDown() override
    {
        CNyrUnitSettingsDistance::Default().Precision(6);
        CNyrUnitSettingsAngle::Default().Unit(NYR_UNIT_DMS);
        NyrSetProfilePath("");
    }

    PointItem& Item(unsigned int realItem) { return *static_cast<PointItem*>(view.GetRealItem(realItem)); }
    QRect CellRect(unsigned int realItem, unsigned int realCol)
    {
        return view.visualRect(
            view.model()->index(view.ScreenItemFromReal(realItem), view.ScreenColFromReal(realCol)));
    }
    QPoint CellCenter(unsigned int realItem, unsigned int realCol) { return CellRect(realItem, realCol).center(); }
    // Keys go where the focus is: the editor while one is open.
    void Key(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier)
    {
        QWidget* focus = QApplication::focusWidget();
        QTest::keyClick(focus ? focus : &view, key, modifiers);
        Settle();
    }
    // Editors that closed go (they are deleted later, by the event loop).
    static void Settle()
    {
        QApplication::processEvents();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
    void Type(const QString& text)
    {
        CNyrInputControl* editor = view.GetInplaceEditor();
        ASSERT_NE(editor, nullptr);
        editor->selectAll();
        QTest::keyClicks(editor, text);
    }
    std::vector<long> Refreshes() const
    {
        std::vector<long> items;
        for (const auto& m : subscriber.received)
            if (m.message == WM_NYR_REPORTVIEW_ITEM_REFRESH)
                items.push_back(static_cast<long>(m.lParam));
        return items;
    }

    nyr::test::TempDir m_dir;
    Subscriber subscriber;
    CNyrReportView view;
};

TEST_F(Inplace, F2EditsEnterSavesEscapeCancelsAndARefusedValueKeepsTheEditor)
{
    view.SelectRealItem(2, 1);
    view.FocusRealItem(2);
    view.setFocus();
    Key(Qt::Key_F2);
    CNyrInputControl* editor = view.GetInplaceEditor();
    ASSERT_NE(editor, nullptr);
    EXPECT_EQ(editor->Kind(), NYR_INPUT_STRING);
    EXPECT_EQ(editor->text(), "p2");
    EXPECT_EQ(editor->geometry(), CellRect(2, 0));
    EXPECT_EQ(editor->accessibleName(), "Name");
    EXPECT_TRUE(editor->hasFocus());
    Type("renamed");
    Key(Qt::Key_Return);
    EXPECT_EQ(view.GetInplaceEditor(), nullptr);
    EXPECT_TRUE(view.hasFocus());
    EXPECT_EQ(Item(2).name, "renamed");
    EXPECT_EQ(Refreshes(), std::vector<long>{2});

    view.setCurrentIndex(view.model()->index(view.ScreenItemFromReal(2), 1));
    Key(Qt::Key_F2);
    ASSERT_NE(view.GetInplaceEditor(), nullptr);
    EXPECT_EQ(view.GetInplaceEditor()->Kind(), NYR_INPUT_DISTANCE);
    EXPECT_EQ(view.GetInplaceEditor()->text(), "20.000");
    Type("-1");
    Key(Qt::Key_Return);
    ASSERT_NE(view.GetInplaceEditor(), nullptr);  // refused: stays open with the item's message
    EXPECT_EQ(view.GetInplaceEditor()->GetMessage(), "Height must not be negative");
    Type("12x");  // the field's own rule: refused before the item is asked
    EXPECT_EQ(view.GetInplaceEditor()->text(), "12");
    Key(Qt::Key_Escape);
    EXPECT_EQ(view.GetInplaceEditor(), nullptr);
    EXPECT_EQ(Item(2).height, 20.0);
    EXPECT_EQ(Refreshes(), std::vector<long>{2});
}

TEST_F(Inplace, SortFindAndExportSeeTheNewValueAtOnce)
{
    view.SortList(std::vector<CNyrReportView::SORT_STATE_REALCOL>{{0, 1}});
    ASSERT_EQ(view.EditRealItem(4, 0), 1);
    Type("a4");
    Key(Qt::Key_Return);
    EXPECT_EQ(view.RealItemFromScreen(0), 4);  // sorted by name: first now
    EXPECT_EQ(view.GetItemText(0, 0), "a4");

    CNyrListViewFind::CSearchCrit crit;
    crit.searchString = "a4";
    EXPECT_EQ(view.GetFind().FindNextScreenItem(crit, 0), 0);

    CNyrListViewSaveAsDlgCV::SAVE_AS_INFO info;
    info.list = &view;
    info.fileType = CNyrListViewSaveAsDlgCV::FileTypeCsv;
    info.includeHeader = false;
    info.fileName = m_dir.File("points.csv");
    CNyrReportViewSaveAsDlgCV save(info);
    ASSERT_EQ(save.SaveData(), 1);
    EXPECT_EQ(nyr::test::ReadFile(info.fileName).substr(0, 25), "a4,40.000,note,4.000000\r\n");
}

TEST_F(Inplace, TabMovesThroughTheEditableCellsOfTheRowInDisplayOrder)
{
    view.horizontalHeader()->moveSection(3, 0);  // Azimuth, Name, Height, Note
    ASSERT_EQ(view.EditRealItem(1, 3), 1);
    Type("45");
    Key(Qt::Key_Tab);
    unsigned int item = 0, col = 0;
    ASSERT_EQ(view.GetInplaceEditCell(item, col), 1);
    EXPECT_EQ(col, 0u);
    EXPECT_EQ(Item(1).azimuth, 45 * kDegree);
    Key(Qt::Key_Tab);
    ASSERT_EQ(view.GetInplaceEditCell(item, col), 1);
    EXPECT_EQ(col, 1u);
    EXPECT_EQ(view.GetInplaceEditor()->geometry(), CellRect(1, 1));
    Key(Qt::Key_Backtab);
    ASSERT_EQ(view.GetInplaceEditCell(item, col), 1);
    EXPECT_EQ(col, 0u);
    Key(Qt::Key_Tab);
    Key(Qt::Key_Tab);  // Note cannot be edited and is the last: editing ends
    EXPECT_EQ(view.GetInplaceEditCell(item, col), 0);
    EXPECT_TRUE(view.hasFocus());
}

TEST_F(Inplace, ASlowDoubleClickEditsADoubleClickDoesNot)
{
    QWidget* viewport = view.viewport();
    QTest::mouseClick(viewport, Qt::LeftButton, {}, CellCenter(3, 0));  // selects the row
    QApplication::processEvents();
    EXPECT_EQ(view.GetInplaceEditor(), nullptr);
    QTest::mouseClick(viewport, Qt::LeftButton, {}, CellCenter(3, 0));  // the same cell, a while later
    QTRY_VERIFY(view.GetInplaceEditor() != nullptr);
    unsigned int item = 0, col = 0;
    view.GetInplaceEditCell(item, col);
    EXPECT_EQ(item, 3u);
    Key(Qt::Key_Escape);

    QTest::mousePress(viewport, Qt::LeftButton, {}, CellCenter(3, 0));
    QTest::mouseRelease(viewport, Qt::LeftButton, {}, CellCenter(3, 0));
    QTest::mouseDClick(viewport, Qt::LeftButton, {}, CellCenter(3, 0));
    QTest::qWait(2 * QApplication::doubleClickInterval());
    EXPECT_EQ(view.GetInplaceEditor(), nullptr);

    // A host may ask for it too; a cell that cannot be edited refuses.
    EXPECT_EQ(NyrSendMessage(&view, WM_NYR_DBLCLK_SLOW, 5, 2), 0);
    EXPECT_EQ(NyrSendMessage(&view, WM_NYR_DBLCLK_SLOW, 5, 3), 1);
    EXPECT_EQ(view.GetInplaceEditor()->Kind(), NYR_INPUT_ANGLE);
}

TEST_F(Inplace, TheEditorFollowsItsCellAndGoesWithIt)
{
    ASSERT_EQ(view.EditRealItem(4, 1), 1);
    view.SortList(std::vector<CNyrReportView::SORT_STATE_REALCOL>{{1, 0}});
    ASSERT_NE(view.GetInplaceEditor(), nullptr);
    EXPECT_EQ(view.GetInplaceEditor()->geometry(), CellRect(4, 1));
    view.horizontalHeader()->resizeSection(0, 200);
    EXPECT_EQ(view.GetInplaceEditor()->geometry(), CellRect(4, 1));
    // The unit changes under an open editor: it shows the same value anew.
    CNyrUnitSettingsDistance::Default().Unit(NYR_UNIT_INTERNATIONAL_FEET);
    NyrSendMessageToDescendants(&view, WM_NYR_UNIT_CHANGED_DISTANCE, NYR_UNIT_METRES, NYR_UNIT_INTERNATIONAL_FEET);
    EXPECT_EQ(view.GetInplaceEditor()->text(), "131.234");
    Key(Qt::Key_Return);
    EXPECT_EQ(Item(4).height, 40.0);
    CNyrUnitSettingsDistance::Default().Unit(NYR_UNIT_METRES);

    ASSERT_EQ(view.EditRealItem(4, 1), 1);
    view.HideRealCol(1, 1);
    QApplication::processEvents();
    EXPECT_EQ(view.GetInplaceEditor(), nullptr);
    ASSERT_EQ(view.EditRealItem(4, 0), 1);
    view.HideRealItem(4, 1);
    QApplication::processEvents();
    EXPECT_EQ(view.GetInplaceEditor(), nullptr);
    EXPECT_EQ(view.EditRealItem(4, 0), 0);  // not on screen
    view.SetDisableRealItemsEnabled(true);
    view.DisableRealItem(2, 1);
    EXPECT_EQ(view.EditRealItem(2, 0), 0);
    ASSERT_EQ(view.EditRealItem(3, 0), 1);
    view.CleanupRealItems();
    Settle();
    EXPECT_EQ(view.GetInplaceEditor(), nullptr);
    EXPECT_TRUE(view.viewport()->findChildren<CNyrInputControl*>().isEmpty());
}

TEST_F(Inplace, ARefusedEditorKeepsItsCellWhenAnotherIsAskedFor)
{
    ASSERT_EQ(view.EditRealItem(1, 1), 1);
    Type("-5");
    EXPECT_EQ(view.EditRealItem(2, 0), 0);
    unsigned int item = 0, col = 0;
    ASSERT_EQ(view.GetInplaceEditCell(item, col), 1);
    EXPECT_EQ(item, 1u);
    EXPECT_EQ(view.EndInplaceEdit(1), 0);
    EXPECT_EQ(view.EndInplaceEdit(0), 1);
    EXPECT_EQ(Item(1).height, 10.0);
}

TEST(InplaceView, GoingAwayWhileEditingLosesNothingElse)
{
    auto view = std::make_unique<CNyrReportView>();
    view->AddRealCols(std::vector<std::string>{"Name"});
    auto* item = new PointItem("p", 1, 0);
    view->AddRealItem(item);
    view->DisplayRealItems(1);
    view->show();
    view->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(view.get()));
    ASSERT_EQ(view->EditRealItem(0, 0), 1);
    QTest::keyClicks(view->GetInplaceEditor(), "x");
    view.reset();  // the editor has the focus; the items go first
    QApplication::processEvents();
}

// Random steps of editing, typing, keys, hiding, sorting, deleting and unit
// changes; after every step the editor (if any) lies over an editable cell
// on screen and no other editor is left behind.
TEST_F(Inplace, RandomStepsKeepTheEditorOnAnEditableCell)
{
    std::mt19937 random(1234);
    const auto pick = [&random](unsigned int n) { return n ? static_cast<unsigned int>(random() % n) : 0u; };
    for (int step = 0; step < 400; ++step) {
        const unsigned int items = view.GetRealItemCount();
        CNyrInputControl* editor = view.GetInplaceEditor();
        switch (pick(12)) {
        case 0: view.EditRealItem(pick(items + 1), pick(5)); break;
        case 1:
            if (editor)
                QTest::keyClick(editor, "0123456789.-ab "[pick(15)]);
            break;
        case 2: Key(Qt::Key_Return); break;
        case 3: Key(Qt::Key_Escape); break;
        case 4: Key(pick(2) ? Qt::Key_Tab : Qt::Key_Backtab); break;
        case 5: view.HideRealItem(pick(items), static_cast<int>(pick(2))); break;
        case 6: view.SortList({CNyrReportView::SORT_STATE_REALCOL{pick(4), static_cast<int>(pick(2))}}); break;
        case 7: view.DeleteRealItem(pick(items)); break;
        case 8: view.AppendRealItem(new PointItem("n" + std::to_string(step), step, 0)); break;
        case 9: {
            const long unit = 21 + static_cast<long>(pick(3));
            const long old = CNyrUnitSettingsDistance::Default().Unit();
            CNyrUnitSettingsDistance::Default().Unit(unit);
            NyrSendMessageToDescendants(&view, WM_NYR_UNIT_CHANGED_DISTANCE, old, unit);
            break;
        }
        case 10: view.EndInplaceEdit(static_cast<int>(pick(2))); break;
        default: view.HideRealCol(pick(4), static_cast<int>(pick(2))); break;
        }
        Settle();

        const auto editors = view.viewport()->findChildren<CNyrInputControl*>();
        unsigned int item = 0, col = 0;
        if (view.GetInplaceEditCell(item, col)) {
            ASSERT_EQ(editors.size(), 1) << "step " << step;
            const CNyrReportViewItem* edited = view.GetRealItem(item);
            ASSERT_NE(edited, nullptr) << "step " << step;
            EXPECT_TRUE(edited->IsVisible()) << "step " << step;
            EXPECT_NE(const_cast<CNyrReportViewItem*>(edited)->OnEditItemKind(col), NYR_INPUT_NONE);
            ASSERT_GE(view.ScreenColFromReal(col), 0) << "step " << step;
            EXPECT_EQ(view.GetInplaceEditor()->geometry(), CellRect(item, col)) << "step " << step;
        } else {
            ASSERT_TRUE(editors.isEmpty()) << "step " << step;
        }
    }
}

}  // namespace
