#include <gtest/gtest.h>

#include <QApplication>
#include <QDialogButtonBox>
#include <QFileDialog>
#include <QPushButton>
#include <QTabWidget>
#include <QTest>
#include <QVBoxLayout>

#include "nyr/frame/notifications.h"
#include "nyrwidgets/app/dialog.h"
#include "nyrwidgets/input/input_dialog.h"
#include "nyrwidgets/input/input_number.h"
#include "nyrwidgets/input/input_string.h"
#include "tests/nyrwidgets/input/input_test_p.h"
#include "tests/support/dialog_answer.h"
#include "tests/support/temp_dir.h"

using nyr::test::Retype;
using nyr::test::ShowActive;

namespace {

// The library's dialog with three required integer fields in the range
// 1..10, OK, Cancel and Apply; Tab visits the fields c, a, b. It counts the
// validations its fields ask it about and the times its values were taken.
class PointDialog : public CNyrDialog
{
public:
    PointDialog() : CNyrDialog(nullptr, {}, eOK | eCancel | eApply)
    {
        for (CNyrInputInteger** field : {&a, &b, &c}) {
            *field = new CNyrInputInteger(this);
            (*field)->SetRange(1, 10);
            (*field)->SetValue(5);
            ContentLayout()->addWidget(*field);
        }
        setTabOrder(c, a);
        setTabOrder(a, b);
        setTabOrder(b, ButtonBox());
    }

    CNyrInputInteger* a;
    CNyrInputInteger* b;
    CNyrInputInteger* c;
    int validations = 0;
    int applied = 0;

protected:
    bool OnApply() override
    {
        ++applied;
        return true;
    }
    bool event(QEvent* e) override
    {
        if (CNyrMessageEvent* m = CNyrMessageEvent::From(e); m && m->Message() == WM_NYR_INPUT_CONTROL_VALIDATE) {
            ++validations;
            return true;
        }
        return CNyrDialog::event(e);
    }
};

TEST(InputDialog, OkValidatesInTabOrderAndStopsAtTheFirstFailure)
{
    PointDialog dialog;
    ASSERT_TRUE(ShowActive(dialog));
    dialog.a->setText("0");
    dialog.c->setText("11");
    dialog.Button(CNyrDialog::eApply)->click();
    EXPECT_EQ(QApplication::focusWidget(), dialog.c);
    dialog.Button(CNyrDialog::eOK)->click();
    EXPECT_TRUE(dialog.isVisible());
    EXPECT_EQ(dialog.applied, 0);  // nothing taken while a field fails
    EXPECT_EQ(QApplication::focusWidget(), dialog.c);  // first in tab order, though made last
    EXPECT_EQ(dialog.c->selectedText(), "11");
    EXPECT_EQ(dialog.c->GetMessage(), "Value must be between 1 and 10");
    EXPECT_FALSE(dialog.a->IsMessageShown());  // not reached yet

    QTest::keyClicks(dialog.c, "2");
    QTest::keyClick(dialog.c, Qt::Key_Return);  // the default button
    EXPECT_EQ(QApplication::focusWidget(), dialog.a);
    EXPECT_EQ(dialog.c->GetValue(), 2);
    Retype(*dialog.a, "3");
    dialog.accept();
    EXPECT_FALSE(dialog.isVisible());
    EXPECT_EQ(dialog.result(), QDialog::Accepted);
    EXPECT_EQ(dialog.a->GetValue(), 3);
    EXPECT_EQ(dialog.applied, 1);
}

TEST(InputDialog, CancelNeverValidates)
{
    PointDialog dialog;
    ASSERT_TRUE(ShowActive(dialog));
    Retype(*dialog.a, "99");
    dialog.Button(CNyrDialog::eCancel)->setFocus(Qt::MouseFocusReason);
    dialog.Button(CNyrDialog::eCancel)->click();
    EXPECT_EQ(dialog.result(), QDialog::Rejected);
    EXPECT_FALSE(dialog.a->IsMessageShown());
    EXPECT_EQ(dialog.validations, 0);
    EXPECT_EQ(dialog.a->GetValue(), 5);
}

TEST(InputDialog, ShowsTheFieldOnItsPageAndSkipsWhatTheUserCannotReach)
{
    CNyrDialog dialog;
    auto* tabs = new QTabWidget(&dialog);
    dialog.ContentLayout()->addWidget(tabs);
    auto* first = new QWidget;
    auto* second = new QWidget;
    tabs->addTab(first, "First");
    tabs->addTab(second, "Second");
    auto* disabled = new CNyrInputInteger(first);
    disabled->setEnabled(false);
    auto* readOnly = new CNyrInputInteger(first);
    readOnly->setReadOnly(true);
    auto* hidden = new CNyrInputInteger(first);
    hidden->hide();
    auto* onSecondPage = new CNyrInputString(second);
    new QVBoxLayout(first);
    first->layout()->addWidget(disabled);
    first->layout()->addWidget(readOnly);
    first->layout()->addWidget(hidden);
    ASSERT_TRUE(ShowActive(dialog));
    EXPECT_EQ(tabs->currentIndex(), 0);

    EXPECT_EQ(NyrValidateInputControls(&dialog), onSecondPage);  // empty, required
    EXPECT_EQ(tabs->currentIndex(), 1);
    EXPECT_TRUE(onSecondPage->isVisible());
    EXPECT_EQ(QApplication::focusWidget(), onSecondPage);
    EXPECT_FALSE(disabled->IsMessageShown() || readOnly->IsMessageShown() || hidden->IsMessageShown());
    onSecondPage->SetValue("x");
    EXPECT_EQ(NyrValidateInputControls(&dialog), nullptr);
}

TEST(InputDialog, AnOwnerThatRemovesFieldsWhileAnsweringDoesNotBreakTheWalk)
{
    PointDialog dialog;
    ASSERT_TRUE(ShowActive(dialog));
    // The owner answers the first validation by taking the next two fields away.
    class Remover : public QObject
    {
    public:
        explicit Remover(PointDialog& d) : dialog(d) {}
        PointDialog& dialog;
        bool event(QEvent* e) override
        {
            if (CNyrMessageEvent::From(e)) {
                delete dialog.a;
                delete dialog.b;
                dialog.a = dialog.b = nullptr;
                return true;
            }
            return QObject::event(e);
        }
    } remover(dialog);
    dialog.c->SetOwner(&remover);
    EXPECT_EQ(NyrValidateInputControls(&dialog), nullptr);
    EXPECT_EQ(dialog.a, nullptr);
}

TEST(InputFileName, BrowsesThroughTheDialogSeamAsOneUndoableStep)
{
    nyr::test::TempDir dir;
    nyr::test::WriteFile(dir.File("a.txt"), "a");
    const struct
    {
        CNyrInputFileName::eMode mode;
        const char* title;
        QFileDialog::FileMode fileMode;
        QFileDialog::AcceptMode acceptMode;
        std::string chosen;
    } cases[] = {
        {CNyrInputFileName::eFileMustExist, "Browse for File", QFileDialog::ExistingFile, QFileDialog::AcceptOpen,
         dir.File("a.txt")},
        {CNyrInputFileName::eMayBeNew, "Browse for File", QFileDialog::AnyFile, QFileDialog::AcceptSave,
         dir.File("new.txt")},
        {CNyrInputFileName::eFolderMustExist, "Browse for Folder", QFileDialog::Directory, QFileDialog::AcceptOpen,
         dir.Path()},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.title);
        CNyrInputFileName field(nullptr, c.mode);
        field.SetValue(dir.File("start.txt"));
        ASSERT_TRUE(ShowActive(field));
        nyr::test::DialogAnswer answer([&](QDialog& d) {
            auto& files = static_cast<QFileDialog&>(d);
            EXPECT_EQ(files.windowTitle(), c.title);
            EXPECT_EQ(files.fileMode(), c.fileMode);
            EXPECT_EQ(files.acceptMode(), c.acceptMode);
            EXPECT_EQ(files.directory().absolutePath().toStdString(), dir.Path());  // where the name is
            files.selectFile(QString::fromStdString(c.chosen));
            d.done(QDialog::Accepted);
        });
        QTest::keyClick(&field, Qt::Key_F4);
        EXPECT_EQ(answer.opened, 1);
        EXPECT_EQ(field.GetValue(), c.chosen);
        field.Undo();
        EXPECT_EQ(field.text().toStdString(), dir.File("start.txt"));
    }
    // Cancelled: the name stays.
    CNyrInputFileName field;
    field.SetValue("kept");
    nyr::test::DialogAnswer cancel([](QDialog& d) { d.reject(); });
    EXPECT_FALSE(field.Browse());
    EXPECT_EQ(field.GetValue(), "kept");
}

}  // namespace
