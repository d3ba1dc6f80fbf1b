#include "nyr/app/recent_documents.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <random>
#include <set>
#include <string>
#include <vector>

#include "nyr/util/profile_entries.h"
#include "tests/support/temp_dir.h"

namespace {

using nyr::test::TempDir;
using nyr::test::WriteFile;
using Files = std::vector<std::string>;

struct RecentFixture : ::testing::Test
{
    TempDir dir;
    std::string settings = dir.File("settings.ini");
    void SetUp() override { NyrSetProfilePath(settings); }
    void TearDown() override { NyrSetProfilePath(""); }

    std::string Touch(const std::string& name)
    {
        WriteFile(dir.File(name), "x");
        return dir.File(name);
    }
    // "" for an empty or absent entry.
    static std::string Stored(int position)
    {
        return CNyrProfileEntries::ReadNyrProfileString("Recent", "Doc_" + std::to_string(position), "");
    }
};

TEST_F(RecentFixture, NewestFirstUpToTheMaximumInTheSettingsFile)
{
    CNyrRecentDocuments recent("Recent", 3);
    EXPECT_EQ(recent.Load(), 0);
    for (const char* name : {"a", "b", "c", "d"})
        EXPECT_EQ(recent.Add(Touch(name)), 1);
    EXPECT_EQ(recent.Files(), (Files{dir.File("d"), dir.File("c"), dir.File("b")}));
    EXPECT_EQ(recent.Add(dir.File("b")), 1);  // moves up, nothing dropped
    EXPECT_EQ(recent.Files(), (Files{dir.File("b"), dir.File("d"), dir.File("c")}));
    EXPECT_EQ(Stored(1), dir.File("b"));
    EXPECT_EQ(Stored(3), dir.File("c"));
    EXPECT_EQ(Stored(4), "");

    recent.SetMaxCount(2);
    EXPECT_EQ(Stored(3), "");
    CNyrRecentDocuments again("Recent", 9);
    EXPECT_EQ(again.Load(), 2);
    EXPECT_EQ(again.Files(), (Files{dir.File("b"), dir.File("d")}));

    EXPECT_EQ(again.Remove(dir.File("d")), 1);
    EXPECT_EQ(again.Remove(dir.File("d")), 0);
    again.Clear();
    EXPECT_EQ(Stored(1), "");
}

TEST_F(RecentFixture, OneFileThroughTwoPathsTakesOnePlace)
{
    const std::string file = Touch("plan.nyr");
    mkdir(dir.File("sub").c_str(), 0700);
    ASSERT_EQ(symlink(dir.Path().c_str(), dir.File("link").c_str()), 0);
    ASSERT_EQ(link(file.c_str(), dir.File("hard.nyr").c_str()), 0);
    ASSERT_EQ(chdir(dir.File("sub").c_str()), 0);

    CNyrRecentDocuments recent("Recent", 9);
    for (const std::string& path : {file, dir.File("link/plan.nyr"), dir.File("sub/../plan.nyr"),
                                    std::string("../plan.nyr"), dir.File("hard.nyr"), dir.File("./link/./plan.nyr")})
        ASSERT_EQ(recent.Add(path), 1) << path;
    EXPECT_EQ(recent.Files(), (Files{dir.File("link/plan.nyr")}));  // the last path, cleaned

    // A missing file is one by its resolved path.
    recent.Add(dir.File("gone.nyr"));
    recent.Add(dir.File("link/gone.nyr"));
    EXPECT_EQ(recent.Files().size(), 2u);
    ASSERT_EQ(chdir("/"), 0);
}

TEST_F(RecentFixture, MissingFilesAreMarkedOrDroppedAsTheHostChooses)
{
    CNyrRecentDocuments recent("Recent", 9);
    recent.Add(Touch("kept"));
    recent.Add(Touch("gone"));
    unlink(dir.File("gone").c_str());
    EXPECT_FALSE(recent.IsMissing(0));  // checked at Add, not on every read
    recent.Refresh();
    EXPECT_TRUE(recent.IsMissing(0));
    EXPECT_FALSE(recent.IsMissing(1));
    EXPECT_FALSE(recent.IsMissing(7));
    EXPECT_EQ(recent.Files().size(), 2u);

    recent.SetMissingPolicy(CNyrRecentDocuments::eDropMissing);
    EXPECT_EQ(recent.Files(), (Files{dir.File("kept")}));
    EXPECT_EQ(Stored(2), "");

    // Loading drops from the file too.
    CNyrProfileEntries::WriteNyrProfileString("Recent", "Doc_1", dir.File("absent"));
    CNyrProfileEntries::WriteNyrProfileString("Recent", "Doc_2", dir.File("kept"));
    EXPECT_EQ(recent.Load(), 1);
    EXPECT_EQ(Stored(1), dir.File("kept"));
}

TEST_F(RecentFixture, RefusesWhatTheSettingsFileCannotHoldAndSkipsDamagedEntries)
{
    CNyrRecentDocuments recent("Recent", 9);
    for (const std::string& bad : {std::string(), std::string("/a\nb"), std::string("/a\rb"),
                                   std::string("/a\0b", 4), std::string("/trailing "), std::string("/tab\t")})
        EXPECT_EQ(recent.Add(bad), 0) << bad;
    EXPECT_TRUE(recent.Files().empty());
    EXPECT_EQ(recent.Add("/leading/ blank/\"quoted\""), 1);

    recent.Clear();
    for (const auto& [entry, value] : {std::pair{"Doc_1", "relative/path"}, {"Doc_2", "/x/one"}, {"Doc_3", ""},
                                       {"Doc_4", "/x/../x/one"}, {"Doc_9", "/x/two"}, {"Doc_65", "/x/beyond"}})
        CNyrProfileEntries::WriteNyrProfileString("Recent", entry, value);
    EXPECT_EQ(recent.Load(), 2);
    EXPECT_EQ(recent.Files(), (Files{"/x/one", "/x/two"}));
    EXPECT_EQ(Stored(2), "/x/two");  // written back in order, without the gaps
    EXPECT_EQ(Stored(9), "");
}

// A subscriber that changes the list inside its notification, one that
// unsubscribes itself, and a seeded random sequence of operations; after
// every step the list, the settings file and what the subscribers last saw
// agree.
TEST_F(RecentFixture, RandomSequencesKeepListFileAndSubscribersInStep)
{
    std::mt19937 random(2404);
    CNyrRecentDocuments recent("Recent", 5);
    Files seen;
    int selfRemovingCalls = 0;
    recent.Subscribe([&] {
        // Never keep a file called "banned" in the list.
        for (const std::string& path : recent.Files())
            if (path.ends_with("/banned"))
                recent.Remove(path);
    });
    const int once = recent.Subscribe([&] { ++selfRemovingCalls; });
    recent.Subscribe([&] { seen = recent.Files(); });
    recent.Subscribe([&, &r = recent, id = once] { r.Unsubscribe(id); });

    const char* names[] = {"a", "b", "c", "d", "e", "f", "g", "banned"};
    for (int step = 0; step < 600; ++step) {
        const std::string name = names[random() % 8];
        switch (random() % 7) {
        case 0: recent.Add(Touch(name)); break;
        case 1: recent.Add(dir.File(name)); break;
        case 2: recent.Remove(dir.File(name)); break;
        case 3: unlink(dir.File(name).c_str()); recent.Refresh(); break;
        case 4: recent.SetMaxCount(1 + static_cast<int>(random() % 6)); break;
        case 5: recent.SetMissingPolicy(random() % 2 ? CNyrRecentDocuments::eDropMissing
                                                     : CNyrRecentDocuments::eMarkMissing); break;
        case 6: recent.Load(); break;
        }
        const Files& files = recent.Files();
        SCOPED_TRACE("step " + std::to_string(step));
        ASSERT_LE(static_cast<int>(files.size()), recent.MaxCount());
        ASSERT_EQ(std::set<std::string>(files.begin(), files.end()).size(), files.size());
        for (std::size_t i = 0; i < files.size(); ++i) {
            ASSERT_FALSE(files[i].ends_with("/banned"));
            ASSERT_EQ(Stored(static_cast<int>(i) + 1), files[i]);
            if (recent.MissingPolicy() == CNyrRecentDocuments::eDropMissing) {
                ASSERT_FALSE(recent.IsMissing(static_cast<int>(i)));
            }
        }
        ASSERT_EQ(Stored(static_cast<int>(files.size()) + 1), "");
        ASSERT_EQ(seen, files);
        CNyrRecentDocuments fresh("Recent", recent.MaxCount());
        fresh.SetMissingPolicy(CNyrRecentDocuments::eMarkMissing);
        fresh.Load();
        ASSERT_EQ(fresh.Files(), files);
    }
    EXPECT_EQ(selfRemovingCalls, 1);
}

}  // namespace
