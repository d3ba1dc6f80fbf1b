#include <gtest/gtest.h>

#include <QApplication>
#include <QDialogButtonBox>
#include <QPushButton>
#include <QTabWidget>
#include <QTest>
#include <QVBoxLayout>

#include "nyr/frame/notifications.h"
#include "nyrwidgets/input/input_dialog.h"
#include "nyrwidgets/input/input_number.h"
#include "nyrwidgets/input/input_string.h"
#include "tests/nyrwidgets/input/input_test_p.h"

using nyr::test::Retype;
using nyr::test::ShowActive;

namespace {

// A dialog of three required integer fields in the range 1..10 and OK and
// Cancel buttons; Tab visits the fields c, a, b. It counts the validations
// its fields ask it about.
class PointDialog : public CNyrInputDialog
{
public:
    PointDialog()
    {
        auto* layout = new QVBoxLayout(this);
        for (CNyrInputInteger** field : {&a, &b, &c}) {
            *field = new CNyrInputInteger(this);
            (*field)->SetRange(1, 10);
            (*field)->SetValue(5);
            layout->addWidget(*field);
        }
        buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
        layout->addWidget(buttons);
        connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
        connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
        setTabOrder(c, a);
        setTabOrder(a, b);
        setTabOrder(b, buttons);
    }

    CNyrInputInteger* a;
    CNyrInputInteger* b;
    CNyrInputInteger* c;
    QDialogButtonBox* buttons;
    int validations = 0;

protected:
    bool event(QEvent* e) override
    {
        if (CNyrMessageEvent* m = CNyrMessageEvent::From(e); m && m->Message() == WM_NYR_INPUT_CONTROL_VALIDATE) {
            ++validations;
            return true;
        }
        return CNyrInputDialog::event(e);
    }
};

TEST(InputDialog, OkValidatesInTabOrderAndStopsAtTheFirstFailure)
{
    PointDialog dialog;
    ASSERT_TRUE(ShowActive(dialog));
    dialog.a->setText("0");
    dialog.c->setText("11");
    dialog.buttons->button(QDialogButtonBox::Ok)->click();
    EXPECT_TRUE(dialog.isVisible());
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
}

TEST(InputDialog, CancelNeverValidates)
{
    PointDialog dialog;
    ASSERT_TRUE(ShowActive(dialog));
    Retype(*dialog.a, "99");
    dialog.buttons->button(QDialogButtonBox::Cancel)->setFocus(Qt::MouseFocusReason);
    dialog.buttons->button(QDialogButtonBox::Cancel)->click();
    EXPECT_EQ(dialog.result(), QDialog::Rejected);
    EXPECT_FALSE(dialog.a->IsMessageShown());
    EXPECT_EQ(dialog.validations, 0);
    EXPECT_EQ(dialog.a->GetValue(), 5);
}

TEST(InputDialog, ShowsTheFieldOnItsPageAndSkipsWhatTheUserCannotReach)
{
    CNyrInputDialog dialog;
    auto* layout = new QVBoxLayout(&dialog);
    auto* tabs = new QTabWidget(&dialog);
    layout->addWidget(tabs);
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

}  // namespace
