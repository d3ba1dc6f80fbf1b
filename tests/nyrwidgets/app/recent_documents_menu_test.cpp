#include "nyrwidgets/app/recent_documents_menu.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QCoreApplication>
#include <QMenu>
#include <random>

#include "nyr/app/recent_documents.h"
#include "nyr/util/profile_entries.h"
#include "tests/support/temp_dir.h"

namespace {

using nyr::test::TempDir;
using nyr::test::WriteFile;

struct MenuFixture : ::testing::Test
{
    TempDir dir;
    void SetUp() override { NyrSetProfilePath(dir.File("settings.ini")); }
    void TearDown() override { NyrSetProfilePath(""); }

    std::string Touch(const std::string& name)
    {
        WriteFile(dir.File(name), "x");
        return dir.File(name);
    }
};

// The menu's entries as "text|tool tip|enabled", separators as "-".
QStringList Entries(const QMenu& menu)
{
    QStringList entries;
    for (const QAction* action : menu.actions())
        entries << (action->isSeparator() ? QString("-")
                                          : action->text() + "|" + action->toolTip() + "|" +
                                                (action->isEnabled() ? "on" : "off"));
    return entries;
}

QAction* EntryAt(const QMenu& menu, int index)
{
    return menu.actions().value(index);
}

TEST_F(MenuFixture, FollowsTheListAndOpensWhatIsChosen)
{
    CNyrRecentDocuments documents("Recent", 12);
    QMenu menu;
    CNyrRecentDocumentsMenu helper(documents, &menu);
    EXPECT_EQ(Entries(menu), QStringList{"(No recent documents)|(No recent documents)|off"});

    for (int i = 1; i <= 11; ++i)
        documents.Add(Touch("f" + std::to_string(i) + ".nyr"));
    const QStringList entries = Entries(menu);
    ASSERT_EQ(entries.size(), 13);
    EXPECT_EQ(entries[0], QString("&1 f11.nyr|%1|on").arg(QString::fromStdString(dir.File("f11.nyr"))));
    EXPECT_TRUE(entries[9].startsWith("1&0 f2.nyr|"));
    EXPECT_TRUE(entries[10].startsWith("11 f1.nyr|"));
    EXPECT_EQ(entries[11], "-");
    EXPECT_TRUE(entries[12].startsWith("&Clear List|"));

    QStringList chosen;
    QObject::connect(&helper, &CNyrRecentDocumentsMenu::documentSelected, [&](const QString& path) {
        chosen << path;
        documents.Add(path.toStdString());  // the host opens it: it moves up, inside the entry's own signal
    });
    EntryAt(menu, 2)->trigger();
    EXPECT_EQ(chosen, QStringList{QString::fromStdString(dir.File("f9.nyr"))});
    EXPECT_TRUE(Entries(menu)[0].startsWith("&1 f9.nyr|"));

    EntryAt(menu, 12)->trigger();  // Clear List, which rebuilds the menu from inside its own signal
    EXPECT_TRUE(documents.Files().empty());
    EXPECT_EQ(Entries(menu).size(), 1);
    QCoreApplication::processEvents();  // the old entries go now
}

TEST_F(MenuFixture, AlikeNamesShowTheirPathsAndAmpersandsStayText)
{
    mkdir(dir.File("a").c_str(), 0700);
    mkdir(dir.File("b").c_str(), 0700);
    CNyrRecentDocuments documents("Recent", 9);
    QMenu menu;
    CNyrRecentDocumentsMenu helper(documents, &menu);
    documents.Add(Touch("a/plan.nyr"));
    documents.Add(Touch("b/plan.nyr"));
    documents.Add(Touch("R&D.nyr"));
    const QStringList entries = Entries(menu);
    EXPECT_TRUE(entries[0].startsWith("&1 R&&D.nyr|")) << entries[0].toStdString();
    EXPECT_TRUE(entries[1].startsWith(QString("&2 %1|").arg(QString::fromStdString(dir.File("b/plan.nyr")))));
    EXPECT_TRUE(entries[2].startsWith(QString("&3 %1|").arg(QString::fromStdString(dir.File("a/plan.nyr")))));
}

TEST_F(MenuFixture, MissingFilesAreMarkedWhenTheMenuOpensOrDropped)
{
    CNyrRecentDocuments documents("Recent", 9);
    documents.Add(Touch("kept.nyr"));
    documents.Add(Touch("gone.nyr"));
    auto menu = std::make_unique<QMenu>();
    CNyrRecentDocumentsMenu helper(documents, menu.get());
    unlink(dir.File("gone.nyr").c_str());
    emit menu->aboutToShow();
    EXPECT_TRUE(Entries(*menu)[0].startsWith("&1 gone.nyr (missing)|")) << Entries(*menu)[0].toStdString();
    EXPECT_TRUE(Entries(*menu)[0].endsWith("|off"));
    EXPECT_TRUE(Entries(*menu)[1].endsWith("|on"));

    documents.SetMissingPolicy(CNyrRecentDocuments::eDropMissing);
    EXPECT_TRUE(Entries(*menu)[0].startsWith("&1 kept.nyr|"));

    menu.reset();  // the menu may go before the helper
    documents.Add(Touch("later.nyr"));
}

// Random operations, with a subscriber that changes the list inside its
// notification: after every step the menu shows exactly the list.
TEST_F(MenuFixture, RandomSequencesKeepTheMenuInStep)
{
    std::mt19937 random(1821);
    CNyrRecentDocuments documents("Recent", 4);
    documents.Subscribe([&] {
        if (documents.Files().size() == 3)
            documents.Remove(documents.Files().back());  // this host keeps 1, 2 or 4
    });
    QMenu menu;
    CNyrRecentDocumentsMenu helper(documents, &menu);
    for (int step = 0; step < 300; ++step) {
        const std::string name = "n" + std::to_string(random() % 7);
        switch (random() % 5) {
        case 0:
        case 1: documents.Add(Touch(name)); break;
        case 2: documents.Remove(dir.File(name)); break;
        case 3: unlink(dir.File(name).c_str()); emit menu.aboutToShow(); break;
        case 4: documents.SetMissingPolicy(random() % 2 ? CNyrRecentDocuments::eDropMissing
                                                        : CNyrRecentDocuments::eMarkMissing); break;
        }
        const std::vector<std::string>& files = documents.Files();
        ASSERT_NE(files.size(), 3u);
        const QStringList entries = Entries(menu);
        SCOPED_TRACE("step " + std::to_string(step));
        if (files.empty()) {
            ASSERT_EQ(entries.size(), 1);
            continue;
        }
        ASSERT_EQ(entries.size(), static_cast<int>(files.size()) + 2);
        for (int i = 0; i < static_cast<int>(files.size()); ++i) {
            const QStringList parts = entries[i].split('|');
            ASSERT_EQ(parts[1].toStdString(), files[i]);
            ASSERT_EQ(parts[2] == "off", documents.IsMissing(i));
            ASSERT_EQ(parts[0].endsWith(" (missing)"), documents.IsMissing(i));
        }
        QCoreApplication::processEvents();
    }
}

}  // namespace
