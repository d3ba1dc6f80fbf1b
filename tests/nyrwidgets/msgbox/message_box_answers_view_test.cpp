#include <gtest/gtest.h>

#include <QTest>
#include <QTreeWidget>

#include "nyr/util/profile_entries.h"
#include "nyrwidgets/msgbox/message_box.h"
#include "nyrwidgets/msgbox/message_box_answers_view.h"
#include "tests/support/temp_dir.h"

namespace {

// What a second process finds for `key` in the settings file: "6 remembered"
// or "asked <default button>".
std::string AskInAnotherProcess(const std::string& key)
{
    const auto run = nyr::test::RunProcess({NYR_MSGBOX_ANSWER_HELPER, NyrGetProfilePath(), key});
    EXPECT_EQ(run.exitCode, 0) << run.err;
    return run.out;
}

TEST(RememberedAnswers, SurviveTheProcess)
{
    nyr::test::TempDir dir;
    NyrSetProfilePath(dir.File("Nyr240.INI"));
    CNyrMessageBoxDialog::SetAnswerHook([](CNyrMessageBoxDialog& d) {
        d.SetDoNotPromptUser(true);
        return d.windowTitle() == "Yes" ? NYR_IDYES : NYR_IDCANCEL;
    });
    EXPECT_EQ(CNyrMessageBox::ShowMessageDialog("Process/Yes", nullptr, "?", "Yes", NYR_MB_YESNOCANCEL), NYR_IDYES);
    EXPECT_EQ(CNyrMessageBox::ShowMessageDialog("Process/Cancel", nullptr, "?", "No", NYR_MB_YESNOCANCEL),
              NYR_IDCANCEL);
    CNyrMessageBoxDialog::SetAnswerHook({});

    EXPECT_EQ(AskInAnotherProcess("\\process\\yes"), "6 remembered\n");
    EXPECT_EQ(AskInAnotherProcess("Process/Cancel"), "asked 6\n");
}

class AnswersViewTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        NyrSetProfilePath(m_dir.File("Nyr240.INI"));
        CNyrMessageBox::AddMessage("View/Import/Overwrite", "Overwrite?", NYR_MB_YESNO, 1, 1, NYR_IDYES);
        CNyrMessageBox::AddMessage("View/Import/Units", "Convert?", NYR_MB_YESNO | NYR_MB_YESTOALL, 1, 1,
                                   NYR_IDYESTOALL);
        CNyrMessageBox::AddMessage("View/Export", "Export\nnow?", NYR_MB_OKCANCEL);
    }

    // "name:answer:check" of the item and, depth first, of those below it.
    static std::string Describe(QTreeWidgetItem* item)
    {
        static const char kState[] = {'-', '~', '+'};  // unticked, partly, ticked
        std::string out = item->text(0).toStdString() + ":" + item->text(1).toStdString() + ":" +
                          kState[item->checkState(0)] + " ";
        for (int i = 0; i < item->childCount(); ++i)
            out += Describe(item->child(i));
        return out;
    }

    static void Untick(QTreeWidget* tree, const QString& name)
    {
        const auto found = tree->findItems(name, Qt::MatchExactly | Qt::MatchRecursive);
        ASSERT_EQ(found.size(), 1);
        tree->setCurrentItem(found.front());
        QTest::keyClick(tree, Qt::Key_Space);
    }

    nyr::test::TempDir m_dir;
};

TEST_F(AnswersViewTest, ListsByLevelAndAsksAgainForOneOrAll)
{
    CNyrMessageBoxAnswersView view(nullptr, "View");
    view.show();
    QTreeWidget* tree = view.Tree();
    ASSERT_EQ(tree->topLevelItemCount(), 1);
    QTreeWidgetItem* all = tree->topLevelItem(0);
    EXPECT_EQ(Describe(all), "View::~ Export:none:- Import::+ Overwrite:Yes:+ Units:Yes to all:+ ");
    EXPECT_EQ(tree->findItems("Export", Qt::MatchRecursive).front()->text(2), "Export now?");
    EXPECT_FALSE(view.IsModified());

    // A box that is not ticked cannot be ticked here.
    Untick(tree, "Export");
    EXPECT_EQ(Describe(all), "View::~ Export:none:- Import::+ Overwrite:Yes:+ Units:Yes to all:+ ");

    Untick(tree, "Overwrite");
    EXPECT_EQ(Describe(all), "View::~ Export:none:- Import::~ Overwrite:Yes:- Units:Yes to all:+ ");
    EXPECT_TRUE(view.IsModified());
    view.Revert();
    all = tree->topLevelItem(0);
    EXPECT_EQ(Describe(all), "View::~ Export:none:- Import::+ Overwrite:Yes:+ Units:Yes to all:+ ");

    // Nothing reaches the settings file before Apply.
    Untick(tree, "View");
    EXPECT_EQ(Describe(all), "View::- Export:none:- Import::- Overwrite:Yes:- Units:Yes to all:- ");
    EXPECT_EQ(CNyrProfileEntries::ReadNyrProfileInt("@NyrMessageBox/View/Import/Units", "DoNotPromptInFuture", -1),
              static_cast<unsigned>(-1));
    EXPECT_GE(view.Apply(), 3);
    EXPECT_FALSE(view.IsModified());
    EXPECT_EQ(AskInAnotherProcess("View/Import/Units"), "asked 102\n");
}

}  // namespace
