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
#include "nyrwidgets/msgbox/message_box_p.h"

namespace {

using ButtonRow = nyr::msgbox::ButtonRow;
using B = ButtonRow::Button;

// Captions in the text table.
constexpr unsigned kOk = 26099, kCancel = 26100, kYes = 26101, kNo = 26102, kAbort = 26103, kIgnore = 26104,
                   kRetry = 26105, kSkip = 26106, kSkipAll = 26107, kNoToAll = 26108, kYesToAll = 26109,
                   kIgnoreAll = 26110, kOkToAll = 26112, kTryAgain = 26113, kContinue = 26114;

TEST(ButtonChoice, SetsExtendedButtonsCancelValueAndDefault)
{
    const struct
    {
        const char* name;
        unsigned style;
        int defaultValue;
        std::vector<B> buttons;
        int cancelValue;
        int defaultResult;
    } rows[] = {
        {"OK", NYR_MB_OK, 0, {{1, kOk}}, 1, 1},
        {"OK, Cancel, second", NYR_MB_OKCANCEL | NYR_MB_DEFBUTTON2, 0, {{1, kOk}, {2, kCancel}}, 2, 2},
        {"Abort, Retry, Ignore, third", NYR_MB_ABORTRETRYIGNORE | NYR_MB_DEFBUTTON3, 0,
         {{3, kAbort}, {4, kRetry}, {5, kIgnore}}, 3, 5},
        {"Yes, No, Cancel", NYR_MB_YESNOCANCEL, 0, {{6, kYes}, {7, kNo}, {2, kCancel}}, 2, 6},
        {"Yes, No: Escape is No", NYR_MB_YESNO | NYR_MB_DEFBUTTON2, 0, {{6, kYes}, {7, kNo}}, 7, 7},
        {"Retry, Cancel", NYR_MB_RETRYCANCEL, 0, {{4, kRetry}, {2, kCancel}}, 2, 4},
        {"Try again, Continue, Cancel", NYR_MB_CANCELTRYCONTINUE, 0,
         {{10, kTryAgain}, {11, kContinue}, {2, kCancel}}, 2, 10},
        {"sets 7 to 15 are OK", 0xF, 0, {{1, kOk}}, 1, 1},
        {"icon bits change nothing", NYR_MB_YESNO | NYR_MB_ICONQUESTION, 0, {{6, kYes}, {7, kNo}}, 7, 6},
        {"fourth button of two is the first", NYR_MB_YESNO | NYR_MB_DEFBUTTON4, 0, {{6, kYes}, {7, kNo}}, 7, 6},
        {"the remembered answer is the default", NYR_MB_YESNO, 7, {{6, kYes}, {7, kNo}}, 7, 7},
        {"an answer not shown leaves the style's", NYR_MB_YESNO | NYR_MB_DEFBUTTON2, 104, {{6, kYes}, {7, kNo}},
         7, 7},
        {"Yes to all, No to all", NYR_MB_YESNOCANCEL | NYR_MB_YESTOALL | NYR_MB_NOTOALL, 0,
         {{6, kYes}, {102, kYesToAll}, {7, kNo}, {103, kNoToAll}, {2, kCancel}}, 2, 6},
        {"OK to all, Skip, Skip all", NYR_MB_OKCANCEL | NYR_MB_OKTOALL | NYR_MB_SKIP | NYR_MB_SKIPALL, 0,
         {{1, kOk}, {101, kOkToAll}, {5, kSkip}, {104, kSkipAll}, {2, kCancel}}, 2, 1},
        {"Skip renames the set's Ignore", NYR_MB_ABORTRETRYIGNORE | NYR_MB_SKIP | NYR_MB_IGNOREALL, 0,
         {{3, kAbort}, {4, kRetry}, {5, kSkip}, {104, kIgnoreAll}}, 3, 3},
        {"Ignore all and Skip all are one button", NYR_MB_OK | NYR_MB_IGNOREALL | NYR_MB_SKIPALL, 104,
         {{1, kOk}, {104, kSkipAll}}, 1, 104},
        {"extended buttons never change the cancel value", NYR_MB_YESNO | NYR_MB_NOTOALL | NYR_MB_DEFBUTTON3, 0,
         {{6, kYes}, {7, kNo}, {103, kNoToAll}}, 7, 103},
    };
    for (const auto& r : rows) {
        const ButtonRow row = nyr::msgbox::ChooseButtons(r.style, r.defaultValue);
        EXPECT_EQ(row.buttons, r.buttons) << r.name;
        EXPECT_EQ(row.cancelValue, r.cancelValue) << r.name;
        ASSERT_LT(row.defaultIndex, row.buttons.size()) << r.name;
        EXPECT_EQ(row.buttons[row.defaultIndex].result, r.defaultResult) << r.name;
    }
}

TEST(DialogButtons, ShowTheChosenRowOneWidthWithUniqueMnemonics)
{
    // "No &to all" beside "&Try again" would share T: the later one moves.
    const unsigned styles[] = {NYR_MB_YESNO | NYR_MB_DEFBUTTON2,
                               NYR_MB_CANCELTRYCONTINUE | NYR_MB_NOTOALL | NYR_MB_YESTOALL | NYR_MB_SKIPALL};
    for (const unsigned style : styles) {
        CNyrMessageBoxDialog dialog(nullptr, "Text", "Caption", style, 0, 1);
        const ButtonRow row = nyr::msgbox::ChooseButtons(style, 0);
        std::vector<int> results;
        for (const B& b : row.buttons)
            results.push_back(b.result);
        EXPECT_EQ(dialog.ButtonResults(), results);
        EXPECT_EQ(dialog.CancelValue(), row.cancelValue);
        EXPECT_EQ(dialog.DefaultResult(), results[row.defaultIndex]);
        EXPECT_TRUE(dialog.Button(dialog.DefaultResult())->isDefault());
        QString mnemonics;
        for (int result : results) {
            const QPushButton* button = dialog.Button(result);
            EXPECT_EQ(button->width(), dialog.Button(results.front())->width()) << button->text().toStdString();
            EXPECT_GE(button->width(), button->fontMetrics().horizontalAdvance(button->text()));
            const qsizetype amp = button->text().indexOf(QLatin1Char('&'));
            if (amp >= 0) {
                const QChar letter = button->text().at(amp + 1).toLower();
                EXPECT_FALSE(mnemonics.contains(letter)) << button->text().toStdString();
                mnemonics += letter;
            }
        }
    }
}

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
