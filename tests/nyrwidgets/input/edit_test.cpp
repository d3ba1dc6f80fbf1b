#include <gtest/gtest.h>

#include <QApplication>
#include <QClipboard>
#include <QMenu>
#include <QSignalSpy>
#include <QTest>
#include <memory>

#include "nyr/frame/notifications.h"
#include "nyrwidgets/input/edit.h"
#include "tests/nyrwidgets/input/input_test_p.h"

using nyr::test::Window;

namespace {

struct State
{
    QString text;
    QString selected;
    int cursor;
};

State Now(const QLineEdit& edit)
{
    return {edit.text(), edit.selectedText(), edit.cursorPosition()};
}

void ExpectState(const QLineEdit& edit, const State& expected)
{
    EXPECT_EQ(edit.text(), expected.text);
    EXPECT_EQ(edit.selectedText(), expected.selected);
    EXPECT_EQ(edit.cursorPosition(), expected.cursor);
}

TEST(Edit, UndoesEveryStepWithCursorAndSelectionAndRedoesThem)
{
    CNyrEdit edit;
    QTest::keyClicks(&edit, "abc");
    EXPECT_EQ(edit.GetUndoCount(), 3);
    edit.setSelection(1, 1);  // "b"
    const State beforeReplace = Now(edit);
    QTest::keyClicks(&edit, "XY");
    EXPECT_EQ(edit.text(), "aXYc");

    QTest::keyClick(&edit, Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(edit.text(), "aXc");
    QTest::keyClick(&edit, Qt::Key_Z, Qt::ControlModifier);
    ExpectState(edit, beforeReplace);  // the selection comes back with the text
    for (int i = 0; i < 3; ++i)
        edit.Undo();
    EXPECT_EQ(edit.text(), "");
    EXPECT_FALSE(edit.CanUndo());
    edit.Undo();  // nothing left: no change
    EXPECT_EQ(edit.GetRedoCount(), 5);

    QTest::keyClick(&edit, Qt::Key_Y, Qt::ControlModifier);
    QTest::keyClick(&edit, Qt::Key_Z, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_EQ(edit.text(), "ab");
    // A change after undoing drops what could have been redone.
    QTest::keyClicks(&edit, "!");
    EXPECT_EQ(edit.text(), "ab!");
    EXPECT_FALSE(edit.CanRedo());
    edit.Undo();
    EXPECT_EQ(edit.text(), "ab");
}

TEST(Edit, EveryChangeOutsideTheHistoryIsAStepAndTheLimitDropsTheOldest)
{
    CNyrEdit edit;
    edit.insert("12");  // a program's change counts too
    edit.setText("345");
    QTest::keyClick(&edit, Qt::Key_Backspace);
    edit.setReadOnly(true);
    edit.Undo();  // read-only: no step back
    EXPECT_EQ(edit.text(), "34");
    edit.setReadOnly(false);
    edit.Undo();
    edit.Undo();
    EXPECT_EQ(edit.text(), "12");

    edit.ClearHistory();
    edit.SetUndoLimit(3);
    QTest::keyClicks(&edit, "abcdef");
    EXPECT_EQ(edit.GetUndoCount(), 3);
    while (edit.CanUndo())
        edit.Undo();
    EXPECT_EQ(edit.text(), "12abc");
    edit.SetUndoLimit(0);  // no limit
    QTest::keyClicks(&edit, QString(1500, u'x'));
    EXPECT_EQ(edit.GetUndoCount(), 1500);
    edit.SetUndoLimit(10);  // lowering drops the oldest at once
    EXPECT_EQ(edit.GetUndoCount(), 10);
}

struct MenuCase
{
    const char* name;
    const char* text;
    int selectFrom, selectLength;
    bool readOnly, password, clipboard, undo, redo;
    // Expected: undo redo cut copy paste delete selectAll
    std::vector<bool> enabled;
};

class EditMenu : public ::testing::TestWithParam<MenuCase> {};

TEST_P(EditMenu, EnablesWhatCanBeDone)
{
    const MenuCase& c = GetParam();
    CNyrEdit edit;
    QTest::keyClicks(&edit, c.text);
    if (c.redo)
        edit.Undo();
    if (!c.undo)
        edit.ClearHistory();
    if (c.clipboard)
        QApplication::clipboard()->setText("clip");
    else
        QApplication::clipboard()->clear();
    edit.setSelection(c.selectFrom, c.selectLength);
    edit.setReadOnly(c.readOnly);
    edit.setEchoMode(c.password ? QLineEdit::Password : QLineEdit::Normal);
    std::unique_ptr<QMenu> menu(edit.CreateEditMenu());
    std::vector<bool> enabled;
    std::vector<QString> texts;
    for (QAction* action : menu->actions()) {
        if (!action->isSeparator()) {
            enabled.push_back(action->isEnabled());
            texts.push_back(action->text());
        }
    }
    EXPECT_EQ(enabled, c.enabled);
    EXPECT_EQ(texts, (std::vector<QString>{"&Undo\tCtrl+Z", "&Redo\tCtrl+Y", "Cu&t\tCtrl+X", "&Copy\tCtrl+C",
                                           "&Paste\tCtrl+V", "&Delete\tDEL", "Select &All\tCtrl+A"}));
}

INSTANTIATE_TEST_SUITE_P(
    States, EditMenu,
    ::testing::Values(
        MenuCase{"Empty", "", 0, 0, false, false, false, false, false, {0, 0, 0, 0, 0, 0, 0}},
        MenuCase{"TextNoSelection", "abc", 0, 0, false, false, true, true, false, {1, 0, 0, 0, 1, 0, 1}},
        MenuCase{"Selection", "abc", 0, 2, false, false, false, true, true, {1, 1, 1, 1, 0, 1, 1}},
        MenuCase{"ReadOnly", "abc", 0, 2, true, false, true, true, true, {0, 0, 0, 1, 0, 0, 1}},
        MenuCase{"PasswordNeverCopies", "abc", 0, 2, false, true, true, true, false, {1, 0, 0, 0, 1, 1, 1}}),
    [](const auto& param) { return std::string(param.param.name); });

TEST(Edit, MenuActionsActAndTellTheOwner)
{
    Window window;
    auto* edit = new CNyrEdit(&window);
    QTest::keyClicks(edit, "hello world");
    edit->setSelection(0, 6);
    const auto trigger = [edit](const char* name) {
        std::unique_ptr<QMenu> menu(edit->CreateEditMenu());
        menu->findChild<QAction*>(name)->trigger();
    };
    trigger("cut");
    EXPECT_EQ(QApplication::clipboard()->text(), "hello ");
    trigger("undo");
    EXPECT_EQ(edit->text(), "hello world");
    trigger("redo");
    EXPECT_EQ(edit->text(), "world");
    edit->setCursorPosition(5);
    trigger("paste");
    EXPECT_EQ(edit->text(), "worldhello ");
    trigger("selectAll");
    EXPECT_EQ(edit->selectedText(), "worldhello ");
    trigger("delete");
    EXPECT_EQ(edit->text(), "");
    EXPECT_EQ(window.LParams(WM_NYR_EDIT_SELECT_ALL), std::vector<qintptr>{11});
    EXPECT_EQ(window.LParams(WM_NYR_EDIT_DELETE), std::vector<qintptr>{11});
    for (const Window::Message& m : window.received)
        EXPECT_EQ(m.wParam, reinterpret_cast<quintptr>(edit));
}

TEST(Edit, KeysTellTheOwnerAndTheOwnerMayTakeEnterAndEscape)
{
    Window window;
    auto* edit = new CNyrEdit(&window);
    QSignalSpy returns(edit, &QLineEdit::returnPressed);
    QTest::keyClicks(edit, "abcdef");
    edit->setSelection(1, 3);
    QTest::keyClick(edit, Qt::Key_Delete);
    EXPECT_EQ(edit->text(), "aef");
    QTest::keyClick(edit, Qt::Key_Delete);  // no selection: the character, not told
    QTest::keyClick(edit, Qt::Key_A, Qt::ControlModifier);
    EXPECT_EQ(window.LParams(WM_NYR_EDIT_DELETE), std::vector<qintptr>{3});
    EXPECT_EQ(window.LParams(WM_NYR_EDIT_SELECT_ALL), std::vector<qintptr>{2});

    QTest::keyClick(edit, Qt::Key_Return);
    EXPECT_EQ(returns.count(), 1);  // the owner left it: the edit goes on as usual
    window.answers[WM_NYR_KEYDOWN_EE] = 1;
    QTest::keyClick(edit, Qt::Key_Enter);
    QTest::keyClick(edit, Qt::Key_Escape);
    EXPECT_EQ(returns.count(), 1);
    EXPECT_EQ(window.LParams(WM_NYR_KEYDOWN_EE), (std::vector<qintptr>{Qt::Key_Return, Qt::Key_Enter, Qt::Key_Escape}));
}

TEST(Edit, AnEditWithoutAWindowTellsNobody)
{
    CNyrEdit edit;  // its own window: never a message to itself
    QTest::keyClicks(&edit, "abc");
    QTest::keyClick(&edit, Qt::Key_A, Qt::ControlModifier);
    QTest::keyClick(&edit, Qt::Key_Delete);
    EXPECT_EQ(edit.text(), "");
    Window owner;
    edit.SetOwner(&owner);
    QTest::keyClicks(&edit, "x");
    QTest::keyClick(&edit, Qt::Key_A, Qt::ControlModifier);
    EXPECT_EQ(owner.LParams(WM_NYR_EDIT_SELECT_ALL), std::vector<qintptr>{1});
}

}  // namespace
