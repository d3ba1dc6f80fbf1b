#include <gtest/gtest.h>

#include <QApplication>
#include <QCheckBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTest>
#include <QTimer>
#include <QVBoxLayout>
#include <functional>

#include "nyr/frame/ui_hooks.h"
#include "nyrwidgets/msgbox/message_box_dialog.h"

namespace {

struct StyleCase
{
    const char* name;
    unsigned style;
    int defaultValue;
    std::vector<int> results;  // left to right
    QStringList captions;
    int cancelValue, defaultResult;
};
class DialogStyle : public ::testing::TestWithParam<StyleCase> {};

TEST_P(DialogStyle, ChoosesButtonsOrderCancelValueAndDefault)
{
    const StyleCase& c = GetParam();
    CNyrMessageBoxDialog dialog(nullptr, "Text", "Caption", c.style, c.defaultValue, 1);
    EXPECT_EQ(dialog.ButtonResults(), c.results);
    QStringList captions;
    int width = -1;
    for (int result : dialog.ButtonResults()) {
        QPushButton* button = dialog.Button(result);
        captions << button->text();
        // One width for all, enough for the widest caption.
        if (width < 0)
            width = button->width();
        EXPECT_EQ(button->width(), width) << button->text().toStdString();
        EXPECT_GE(width, button->fontMetrics().horizontalAdvance(button->text()));
    }
    EXPECT_EQ(captions, c.captions);
    EXPECT_EQ(dialog.CancelValue(), c.cancelValue);
    EXPECT_EQ(dialog.DefaultResult(), c.defaultResult);
    EXPECT_TRUE(dialog.Button(c.defaultResult)->isDefault());
}

INSTANTIATE_TEST_SUITE_P(
    Styles, DialogStyle,
    ::testing::Values(
        StyleCase{"Ok", NYR_MB_OK, 0, {1}, {"OK"}, 1, 1},
        StyleCase{"OkCancelSecond", NYR_MB_OKCANCEL | NYR_MB_DEFBUTTON2, 0, {1, 2}, {"OK", "Cancel"}, 2, 2},
        StyleCase{"AbortRetryIgnoreThird", NYR_MB_ABORTRETRYIGNORE | NYR_MB_DEFBUTTON3, 0, {3, 4, 5},
                  {"Abort", "Retry", "Ignore"}, 3, 5},
        StyleCase{"YesNoEscapeIsNo", NYR_MB_YESNO | NYR_MB_DEFBUTTON2, 0, {6, 7}, {"Yes", "No"}, 7, 7},
        StyleCase{"CancelTryContinue", NYR_MB_CANCELTRYCONTINUE, 0, {10, 11, 2},
                  {"&Try again", "&Continue", "Cancel"}, 2, 10},
        StyleCase{"UnknownSetIsOk", 0x9, 0, {1}, {"OK"}, 1, 1},
        StyleCase{"DefaultBeyondRowIsFirst", NYR_MB_YESNO | NYR_MB_DEFBUTTON4, 0, {6, 7}, {"Yes", "No"}, 7, 6},
        StyleCase{"RememberedAnswerIsDefault", NYR_MB_YESNO, 7, {6, 7}, {"Yes", "No"}, 7, 7},
        StyleCase{"AnswerNotShownLeavesStyleDefault", NYR_MB_YESNO | NYR_MB_DEFBUTTON2, 104, {6, 7}, {"Yes", "No"}, 7,
                  7},
        StyleCase{"YesNoToAll", NYR_MB_YESNOCANCEL | NYR_MB_YESTOALL | NYR_MB_NOTOALL, 0, {6, 102, 7, 103, 2},
                  {"Yes", "Y&es to all", "No", "No &to all", "Cancel"}, 2, 6},
        StyleCase{"OkToAllSkipSkipAll", NYR_MB_OKCANCEL | NYR_MB_OKTOALL | NYR_MB_SKIP | NYR_MB_SKIPALL, 0,
                  {1, 101, 5, 104, 2}, {"OK", "OK to a&ll", "&Skip", "Skip &all", "Cancel"}, 2, 1},
        StyleCase{"SkipRenamesIgnore", NYR_MB_ABORTRETRYIGNORE | NYR_MB_SKIP | NYR_MB_IGNOREALL, 0, {3, 4, 5, 104},
                  {"Abort", "Retry", "&Skip", "I&gnore all"}, 3, 3}),
    [](const ::testing::TestParamInfo<StyleCase>& row) { return std::string(row.param.name); });

TEST(DialogLayout, IconCheckBoxAndPlainText)
{
    for (const unsigned icon : {0x00u, 0x10u, 0x20u, 0x30u, 0x40u, 0x50u}) {
        CNyrMessageBoxDialog dialog(nullptr, "<b>a</b>", "C", NYR_MB_OK | icon, 0, 0);
        auto* label = dialog.findChild<QLabel*>("icon");
        EXPECT_EQ(label != nullptr && !label->pixmap().isNull(), icon >= 0x10 && icon <= 0x40) << icon;
        EXPECT_EQ(dialog.findChild<QLabel*>("text")->textFormat(), Qt::PlainText);
        EXPECT_EQ(dialog.findChild<QCheckBox*>(), nullptr);
    }
    CNyrMessageBoxDialog offered(nullptr, "a", "C", NYR_MB_OK, 0, 1);
    ASSERT_NE(offered.findChild<QCheckBox*>(), nullptr);
    EXPECT_EQ(offered.findChild<QCheckBox*>()->text(), "Do not prompt in future");
}

// Runs the real dialog modally; `act` works on it once it is up.
int RunDialog(unsigned style, int offer, const std::function<void(CNyrMessageBoxDialog&)>& act, int* ticked = nullptr,
              QWidget* parent = nullptr)
{
    CNyrMessageBoxDialog dialog(parent, "Overwrite?", "Import", style, 0, offer);
    QTimer::singleShot(0, &dialog, [&] {
        dialog.activateWindow();
        EXPECT_TRUE(QTest::qWaitForWindowActive(&dialog));
        act(dialog);
    });
    const int result = dialog.ShowMessageBox();
    if (ticked)
        *ticked = dialog.GetDoNotPromptUser();
    return result;
}

TEST(DialogRun, ClicksKeysCheckBoxAndTheCloseBoxGiveTheirResults)
{
    using Act = std::function<void(CNyrMessageBoxDialog&)>;
    const auto click = [](int result, bool tick = false) -> Act {
        return [=](CNyrMessageBoxDialog& d) {
            if (auto* box = d.findChild<QCheckBox*>(); box && tick)
                QTest::mouseClick(box, Qt::LeftButton, {}, QPoint(5, box->height() / 2));
            QTest::mouseClick(d.Button(result), Qt::LeftButton);
        };
    };
    const auto key = [](Qt::Key k, Qt::KeyboardModifiers m = Qt::NoModifier) -> Act {
        return [=](CNyrMessageBoxDialog&) { QTest::keyClick(QApplication::focusWidget(), k, m); };
    };
    struct Row { const char* name; unsigned style; int offer; Act act; int expected, ticked; };
    const Row rows[] = {
        {"click Yes", NYR_MB_YESNOCANCEL, 1, click(6), 6, 0},
        {"tick, click Yes", NYR_MB_YESNOCANCEL, 1, click(6, true), 6, 1},
        {"tick not offered", NYR_MB_YESNOCANCEL, 0, click(6, true), 6, 0},
        {"click Skip all", NYR_MB_OKCANCEL | NYR_MB_SKIPALL, 1, click(104), 104, 0},
        {"Escape on OK", NYR_MB_OK, 1, key(Qt::Key_Escape), 1, 0},
        {"Escape on Yes/No", NYR_MB_YESNO, 1, key(Qt::Key_Escape), 7, 0},
        {"Escape on Abort/Retry/Ignore", NYR_MB_ABORTRETRYIGNORE, 1, key(Qt::Key_Escape), 3, 0},
        {"close box", NYR_MB_YESNOCANCEL, 1, [](CNyrMessageBoxDialog& d) { d.close(); }, 2, 0},
        {"Return takes the default", NYR_MB_YESNO | NYR_MB_DEFBUTTON2, 1, key(Qt::Key_Return), 7, 0},
        {"mnemonic Alt+S", NYR_MB_OKCANCEL | NYR_MB_SKIP, 1, key(Qt::Key_S, Qt::AltModifier), 5, 0},
    };
    for (const Row& row : rows) {
        int ticked = -1;
        EXPECT_EQ(RunDialog(row.style, row.offer, row.act, &ticked), row.expected) << row.name;
        EXPECT_EQ(ticked, row.ticked) << row.name;
    }
}

TEST(DialogRun, FocusGoesBackToTheWidgetThatHadIt)
{
    QWidget owner;
    auto* layout = new QVBoxLayout(&owner);
    layout->addWidget(new QLineEdit(&owner));
    auto* second = new QLineEdit(&owner);
    layout->addWidget(second);
    owner.show();
    owner.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&owner));
    second->setFocus();
    ASSERT_EQ(QApplication::focusWidget(), second);

    // The dialog belongs to another window, which would take the focus.
    QWidget other;
    other.show();
    const int result = RunDialog(NYR_MB_OK, 0, [](CNyrMessageBoxDialog& d) { QTest::keyClick(&d, Qt::Key_Return); },
                                 nullptr, &other);
    EXPECT_EQ(result, NYR_IDOK);
    QTest::qWait(0);
    EXPECT_EQ(QApplication::focusWidget(), second);
}

TEST(DialogSeam, AnAnswerNoButtonGivesCountsAsClosing)
{
    struct Row { unsigned style; int answer, expected, ticked; };
    for (const Row& row : {Row{NYR_MB_YESNO, NYR_IDYES, NYR_IDYES, 1}, Row{NYR_MB_YESNO, NYR_IDOK, NYR_IDNO, 0},
                           Row{NYR_MB_OKCANCEL, NYR_IDOKTOALL, NYR_IDCANCEL, 0},
                           Row{NYR_MB_OKCANCEL | NYR_MB_OKTOALL, NYR_IDOKTOALL, NYR_IDOKTOALL, 1}}) {
        CNyrMessageBoxDialog::SetAnswerHook([&](CNyrMessageBoxDialog& d) {
            EXPECT_FALSE(d.isVisible());
            d.SetDoNotPromptUser(true);
            return row.answer;
        });
        CNyrMessageBoxDialog dialog(nullptr, "t", "c", row.style, 0, 1);
        EXPECT_EQ(dialog.ShowMessageBox(), row.expected) << row.answer;
        EXPECT_EQ(dialog.GetDoNotPromptUser(), row.ticked) << row.answer;
    }
    CNyrMessageBoxDialog::SetAnswerHook({});
}

}  // namespace

// The core library's message boxes (export errors, mail hand-off failures)
// are this dialog too, so they read the same style word and hosts' tests
// answer them through the same seam.
TEST(DialogSeam, CoreMessagesUseTheLibraryDialog)
{
    std::vector<int> shown;
    std::string title;
    CNyrMessageBoxDialog::SetAnswerHook([&](CNyrMessageBoxDialog& d) {
        shown = d.ButtonResults();
        title = d.windowTitle().toStdString();
        return 7;
    });
    EXPECT_EQ(NyrMessageBox("Replace the file?", "", 4 /* Yes, No */ | 0x20), 7);
    CNyrMessageBoxDialog::SetAnswerHook({});
    EXPECT_EQ(shown, (std::vector<int>{6, 7}));
    EXPECT_EQ(title, QApplication::applicationName().toStdString());
}
