#include <gtest/gtest.h>

#include <QGuiApplication>
#include <QLabel>
#include <QTimer>

#include "nyr/util/profile_entries.h"
#include "nyrwidgets/frame/wait_cursor.h"
#include "nyrwidgets/msgbox/message_box.h"
#include "nyrwidgets/msgbox/message_box_settings_lookup_table.h"
#include "tests/support/temp_dir.h"
#include "tests/support/turkish_locale.h"

namespace {

// The pair stored in a section of the settings file, -1 where absent.
std::pair<int, int> Stored(const std::string& section)
{
    return {static_cast<int>(CNyrProfileEntries::ReadNyrProfileInt(section, "DoNotPromptInFuture", -1)),
            static_cast<int>(CNyrProfileEntries::ReadNyrProfileInt(section, "defaultvalue", -1))};
}

// A fresh settings file and an answer seam that records what it was shown.
class MessageBoxTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        NyrSetProfilePath(m_dir.File("Nyr240.INI"));
        CNyrMessageBoxDialog::SetAnswerHook([this](CNyrMessageBoxDialog& dialog) {
            ++asked;
            title = dialog.windowTitle().toStdString();
            text = dialog.findChild<QLabel*>("text")->text().toStdString();
            defaultResult = dialog.DefaultResult();
            waitCursorDuringDialog = CNyrWaitCursor::IsShown();
            dialog.SetDoNotPromptUser(tick);
            return answer;
        });
    }
    void TearDown() override { CNyrMessageBoxDialog::SetAnswerHook({}); }

    nyr::test::TempDir m_dir;
    int answer = NYR_IDYES, asked = 0, defaultResult = 0;
    bool tick = true, waitCursorDuringDialog = false;
    std::string title, text;
};

TEST(MessageBoxKeys, NormalisationWellFormednessFirstAndRest)
{
    struct Row { const char* key; const char* normalised; int wellFormed; };
    for (const Row& row : {Row{" \\Import\\Overwrite/ ", "Import/Overwrite", 1}, Row{"\t/Delete", "Delete", 1},
                           Row{"//", "", 0}, Row{"a//b", "a//b", 0}, Row{"/ a /", " a ", 1},  // blanks go first
                           Row{"1/2/3/4/5/6/7/8", "1/2/3/4/5/6/7/8", 1},
                           Row{"1/2/3/4/5/6/7/8/9", "1/2/3/4/5/6/7/8/9", 0},
                           Row{"Units[1]", "Units[1]", 0}, Row{"Units[", "Units[", 1},
                           Row{"line\nbreak", "line\nbreak", 0}}) {
        std::string key = row.key;
        EXPECT_EQ(CNyrMessageBox::CheckKey(key), row.wellFormed) << row.key;
        EXPECT_EQ(key, row.normalised) << row.key;
    }
    struct Split { const char* path; const char* first; const char* rest; };
    for (const Split& row : {Split{"@NyrMessageBox/Import/Units/Angle", "Import", "Units/Angle"},
                             Split{"Import\\Overwrite", "Import", "Overwrite"}, Split{"Delete", "Delete", ""},
                             Split{"@NyrMessageBox\\Delete", "Delete", ""}, Split{"", "", ""}, Split{"/x", "", "x"}}) {
        EXPECT_EQ(CNyrMessageBox::GetFirst(row.path), row.first) << row.path;
        EXPECT_EQ(CNyrMessageBox::GetRest(row.path), row.rest) << row.path;
    }
}

// One question asked twice: what the first answer leaves behind.
TEST_F(MessageBoxTest, WhichAnswersAreRemembered)
{
    struct Row
    {
        const char* key;
        unsigned style;
        int offer;
        unsigned neverRemembered;
        int answer;
        bool tick, askedAgain;
        std::pair<int, int> stored;
    };
    const unsigned yesNo = NYR_MB_YESNOCANCEL | NYR_MB_YESTOALL, ari = NYR_MB_ABORTRETRYIGNORE;
    const Row rows[] = {
        {"Yes/Ticked", yesNo, 1, ~0u, NYR_IDYES, true, false, {1, 6}},
        {"Yes/Unticked", yesNo, 1, ~0u, NYR_IDYES, false, true, {0, 6}},
        {"YesToAll/Ticked", yesNo, 1, ~0u, NYR_IDYESTOALL, true, false, {1, 102}},
        {"Cancel/Ticked", yesNo, 1, ~0u, NYR_IDCANCEL, true, true, {-1, -1}},
        {"Abort/Ticked", ari, 1, ~0u, NYR_IDABORT, true, true, {-1, -1}},
        {"Ignore/Ticked", ari, 1, ~0u, NYR_IDIGNORE, true, false, {1, 5}},
        {"NeverNo/No", yesNo, 1, NYR_IDNO, NYR_IDNO, true, true, {0, 7}},
        {"NeverNo/Yes", yesNo, 1, NYR_IDNO, NYR_IDYES, true, false, {1, 6}},
        {"NotOffered/Ticked", yesNo, 0, ~0u, NYR_IDYES, true, true, {0, 6}},
    };
    for (const Row& row : rows) {
        ASSERT_EQ(CNyrMessageBox::AddMessage(row.key, "?", row.style, 0, row.offer, 0, row.neverRemembered), 1);
        asked = 0;
        answer = row.answer;
        tick = row.tick;
        EXPECT_EQ(CNyrMessageBox::ShowMessage(nullptr, row.key), row.answer) << row.key;
        EXPECT_EQ(CNyrMessageBox::ShowMessage(nullptr, row.key), row.answer) << row.key;
        EXPECT_EQ(asked, row.askedAgain ? 2 : 1) << row.key;
        EXPECT_EQ(Stored(CNyrMessageBox::SectionName(row.key)), row.stored) << row.key;
    }
}

TEST_F(MessageBoxTest, KeysCaptionsAndTextsAsShown)
{
    CNyrMessageBox::ShowMessageDialog(" \\Import\\Overwrite/", nullptr, "Overwrite?", "Import", NYR_MB_YESNO);
    EXPECT_NE(nyr::test::ReadFile(NyrGetProfilePath()).find("[@NyrMessageBox/Import/Overwrite]"), std::string::npos);
    EXPECT_EQ(CNyrMessageBox::ShowMessageDialog("import/OVERWRITE", nullptr, "?", "", NYR_MB_YESNO), NYR_IDYES);
    EXPECT_EQ(asked, 1);

    // An empty key takes the caption; an empty caption the application's name.
    CNyrMessageBox::ShowMessageDialog("", nullptr, "Delete it?", "Delete", NYR_MB_YESNO);
    EXPECT_EQ(Stored("@NyrMessageBox/Delete"), std::make_pair(1, 6));
    CNyrMessageBox::ShowMessageDialog(nullptr, nullptr, "Quit?", nullptr, NYR_MB_YESNO);
    EXPECT_EQ(title, "NyrTests");
    EXPECT_EQ(Stored("@NyrMessageBox/NyrTests"), std::make_pair(1, 6));

    // ShowMessage knows registered keys only and falls back to their text.
    EXPECT_EQ(CNyrMessageBox::ShowMessage(nullptr, "Never/Registered", "x"), -1);
    EXPECT_EQ(asked, 3);
    CNyrMessageBox::AddMessage("Export/Replace", "Replace the file?", NYR_MB_OKCANCEL | NYR_MB_OKTOALL);
    tick = false;
    answer = NYR_IDOKTOALL;
    EXPECT_EQ(CNyrMessageBox::ShowMessage(nullptr, "Export/Replace", ""), NYR_IDOKTOALL);
    EXPECT_EQ(text, "Replace the file?");
    CNyrMessageBox::ShowMessage(nullptr, "Export/Replace", "Replace a.csv?");
    EXPECT_EQ(text, "Replace a.csv?");
    EXPECT_EQ(defaultResult, NYR_IDOKTOALL);  // the last answer is the default button now
}

TEST_F(MessageBoxTest, KeysFoldOnlyAsciiCaseWhateverTheLocale)
{
    const nyr::test::ScopedTurkishLocale turkish;  // as a QApplication sets it in a Turkish session
    NYR_REQUIRE_TURKISH_LOCALE(turkish);
    ASSERT_EQ(CNyrMessageBox::AddMessage("file/edit", "Edit it?", NYR_MB_YESNO), 1);
    CNyrMessageBox::PERSISTENT_MSG msg;
    for (const char* key : {"file/edit", "FILE/EDIT", "File/Edit", "\\FILE\\edit\\"})
        EXPECT_TRUE(CNyrMessageBox::LookUpMessage(key, msg)) << key;
    EXPECT_FALSE(CNyrMessageBox::LookUpMessage("F\xC4\xB0LE/ED\xC4\xB0T", msg));  // dotted capital I: not ASCII

    // The answer remembered under one spelling answers the other.
    EXPECT_EQ(CNyrMessageBox::ShowMessage(nullptr, "FILE/EDIT"), NYR_IDYES);
    EXPECT_EQ(CNyrMessageBox::ShowMessage(nullptr, "file/edit"), NYR_IDYES);
    EXPECT_EQ(asked, 1);

    CNyrMessageBoxSettingsLookupTable table;
    for (const char* key : {"Import/Items", "IMPORT/Index", "import/ITEMS"})
        table.AddMessage(CNyrMessageBox::SectionName(key), {});
    EXPECT_EQ(table.GetSize(), 2);
    EXPECT_TRUE(table.LookUpMessage("@NYRMESSAGEBOX\\IMPORT\\ITEMS", msg));
    EXPECT_EQ(table.GetMessageSubKeys("@nyrmessagebox/IMPORT"), (std::vector<std::string>{"Index", "Items"}));
}

TEST_F(MessageBoxTest, TheWaitCursorGivesWayToTheDialogAndComesBack)
{
    {
        const CNyrWaitCursor wait;
        CNyrMessageBox::ShowMessageDialog("Cursor/Waiting", nullptr, "t", "c", NYR_MB_YESNO);
        EXPECT_FALSE(waitCursorDuringDialog);
        EXPECT_TRUE(CNyrWaitCursor::IsShown());
    }
    CNyrMessageBox::ShowMessageDialog("Cursor/Normal", nullptr, "t", "c", NYR_MB_YESNO);
    EXPECT_EQ(QGuiApplication::overrideCursor(), nullptr);
}

TEST(MessageBoxRegression, ParentDestroyedWhileTheDialogIsUpDoesNotCrashOrStore)
{
    nyr::test::TempDir dir;
    NyrSetProfilePath(dir.File("Nyr240.INI"));
    auto* parent = new QWidget;
    parent->show();
    QTimer::singleShot(0, parent, [parent] { delete parent; });
    EXPECT_EQ(CNyrMessageBox::ShowMessageDialog("Gone/Parent", parent, "t", "c", NYR_MB_YESNO), NYR_IDNO);
    EXPECT_EQ(nyr::test::ReadFile(NyrGetProfilePath()), "");
}

TEST_F(MessageBoxTest, StoredPairsAreReadDefensively)
{
    const std::pair<const char*, std::pair<int, int>> rows[] = {
        {"DoNotPromptInFuture=1\ndefaultvalue=102\n", {1, 102}}, {"DoNotPromptInFuture=0\ndefaultvalue=7\n", {0, 7}},
        {"DoNotPromptInFuture=2\ndefaultvalue=6\n", {0, 0}},     {"DoNotPromptInFuture=1\ndefaultvalue=9\n", {0, 0}},
        {"DoNotPromptInFuture=1\ndefaultvalue=-1\n", {0, 0}},    {"DoNotPromptInFuture=1\n", {0, 0}},
        {"DoNotPromptInFuture=abc\ndefaultvalue=6\n", {0, 0}},   {"DoNotPromptInFuture=1\ndefaultvalue=6x\n", {0, 0}},
    };
    std::string file;
    for (std::size_t i = 0; i < std::size(rows); ++i)
        file += "[@NyrMessageBox/Read/" + std::to_string(i) + "]\n" + rows[i].first;
    nyr::test::WriteFile(NyrGetProfilePath(), file);
    for (std::size_t i = 0; i < std::size(rows); ++i) {
        const std::string key = "Read/" + std::to_string(i);
        CNyrMessageBox::AddMessage(key.c_str(), "t", NYR_MB_YESNO);
        CNyrMessageBox::PERSISTENT_MSG msg;
        ASSERT_TRUE(CNyrMessageBox::LookUpMessage(key.c_str(), msg));
        EXPECT_EQ(std::make_pair(msg.doNotPromptInFuture, msg.defaultValue), rows[i].second) << rows[i].first;
    }
    EXPECT_EQ(nyr::test::ReadFile(NyrGetProfilePath()), file);  // reading never writes
}

TEST_F(MessageBoxTest, TableRefusesUnansweredUpdatesAndWritesEveryEntry)
{
    CNyrMessageBoxSettingsLookupTable table;
    CNyrMessageBox::PERSISTENT_MSG msg;
    ASSERT_EQ(table.AddMessage("@NyrMessageBox/A/One", msg), 1);
    ASSERT_EQ(table.AddMessage("@NyrMessageBox/A/Two", msg), 1);
    EXPECT_EQ(table.AddMessage(" / ", msg), 0);

    msg.doNotPromptInFuture = 1;  // without an answer: neither table nor file change
    EXPECT_EQ(table.UpdateMessage("@NyrMessageBox/A/One", msg, 1), 0);
    CNyrMessageBox::PERSISTENT_MSG found;
    ASSERT_TRUE(table.LookUpMessage("@NyrMessageBox\\A\\One\\", found));
    EXPECT_EQ(found.doNotPromptInFuture, 0);
    EXPECT_EQ(Stored("@NyrMessageBox/A/One"), std::make_pair(-1, -1));

    msg.defaultValue = NYR_IDNOTOALL;
    EXPECT_EQ(table.UpdateMessage("@NyrMessageBox/A/One", msg, 0), 1);
    EXPECT_EQ(Stored("@NyrMessageBox/A/One"), std::make_pair(-1, -1));
    EXPECT_EQ(table.WriteIniFile(), 2);
    EXPECT_EQ(Stored("@NyrMessageBox/A/One"), std::make_pair(1, 103));
    EXPECT_EQ(Stored("@NyrMessageBox/A/Two"), std::make_pair(0, 0));
}

TEST(MessageBoxListing, KeyLevels)
{
    nyr::test::TempDir dir;
    NyrSetProfilePath(dir.File("Nyr240.INI"));
    CNyrMessageBoxSettingsLookupTable table;
    for (const char* key : {"Import", "Import/Overwrite", "import/Units/Angle", "Import/Units/Distance", "Importer",
                            "Export/Replace"})
        table.AddMessage(CNyrMessageBox::SectionName(key), {});
    using Keys = std::vector<std::string>;
    struct Row { const char* prefix; Keys keys, subKeys; };
    for (const Row& row : {
             Row{"", {"Export/Replace", "Import", "Import/Overwrite", "import/Units/Angle", "Import/Units/Distance",
                      "Importer"}, {"Export", "Import", "Importer"}},
             Row{"Import", {"Import", "Import/Overwrite", "import/Units/Angle", "Import/Units/Distance"},
                 {"Overwrite", "Units"}},
             Row{"@NyrMessageBox/IMPORT/units/", {"import/Units/Angle", "Import/Units/Distance"},
                 {"Angle", "Distance"}},
             Row{"Import/Overwrite", {"Import/Overwrite"}, {}},
             Row{"Imp", {}, {}},
         }) {
        EXPECT_EQ(table.GetMessageKeys(row.prefix), row.keys) << row.prefix;
        EXPECT_EQ(table.GetMessageSubKeys(row.prefix), row.subKeys) << row.prefix;
    }
}

}  // namespace
