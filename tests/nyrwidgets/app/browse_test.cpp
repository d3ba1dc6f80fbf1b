#include "nyrwidgets/app/browse.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <QFileDialog>
#include <QLabel>
#include <functional>
#include <memory>
#include <utility>

#include "nyr/util/profile_entries.h"
#include "nyrwidgets/msgbox/message_box_dialog.h"
#include "tests/support/dialog_answer.h"
#include "tests/support/temp_dir.h"

namespace {

using nyr::test::TempDir;
using nyr::test::WriteFile;

// What the file dialog looked like when it would have been shown.
struct Seen
{
    QString title, prompt, accept, directory, selectedFilter;
    QStringList filters;
    QFileDialog::FileMode mode = QFileDialog::AnyFile;
    bool executablesOnly = false;
    QFileDialog::AcceptMode acceptMode = QFileDialog::AcceptOpen;
    bool dontConfirmOverwrite = false;
};

struct BrowseFixture : ::testing::Test
{
    TempDir dir;
    Seen seen;
    int shown = 0;
    std::unique_ptr<nyr::test::DialogAnswer> answer;

    void SetUp() override { NyrSetProfilePath(dir.File("settings.ini")); }
    void TearDown() override
    {
        answer.reset();
        NyrSetProfilePath("");
        CNyrMessageBoxDialog::SetAnswerHook({});
    }

    // Answers the next dialogs: `choose` picks a file (an empty name
    // cancels) and may switch the filter.
    void Answer(std::function<QString(QFileDialog&)> choose)
    {
        answer.reset();
        answer = std::make_unique<nyr::test::DialogAnswer>([this, choose = std::move(choose)](QDialog& dialog) {
            auto& files = dynamic_cast<QFileDialog&>(dialog);
            ++shown;
            seen = {files.windowTitle(), files.labelText(QFileDialog::FileName),
                    files.labelText(QFileDialog::Accept), files.directory().absolutePath(),
                    files.selectedNameFilter(), files.nameFilters(), files.fileMode(),
                    (files.filter() & QDir::Executable) != 0,
                    files.acceptMode(), files.testOption(QFileDialog::DontConfirmOverwrite)};
            const QString name = choose(files);
            if (name.isEmpty())
                return files.reject();
            files.selectFile(name);
            dialog.done(QDialog::Accepted);  // as the user's choice, without Qt's checks of it
        });
    }
    void Choose(const QString& path)
    {
        Answer([path](QFileDialog&) { return path; });
    }
};

TEST(BrowseFilters, TheLibrarysFilterFormBecomesQtNameFilters)
{
    const struct
    {
        QString in;
        QStringList out;
    } cases[] = {
        {"All Files (*.*)|*.*||", {"All Files (*)"}},
        {"Text Files (*.txt)|*.txt|All Files (*.*)|*.*||", {"Text Files (*.txt)", "All Files (*)"}},
        {"Points|*.pts;*.csv|", {"Points (*.pts *.csv)"}},
        {"Odd (keep) text (*.x)|*.x||", {"Odd (keep) text (*.x)"}},
        {"No patterns||Next|*.n||", {"Next (*.n)"}},  // an empty pattern list is no filter, and ends nothing
        {"Unpaired", {}},
        {"", {}},
        {"|*.x||", {}},
    };
    for (const auto& c : cases)
        EXPECT_EQ(CNyrBrowse::NameFilters(c.in), c.out) << c.in.toStdString();
    EXPECT_EQ(CNyrBrowse::SettingsSection("Im]port\nx"), "CNyrBrowse/Im_port_x");
}

TEST_F(BrowseFixture, EachKindHasItsTitlePromptAndFilters)
{
    const std::string file = dir.File("a.txt");
    WriteFile(file, "x");
    const struct
    {
        CNyrBrowse::eKind kind;
        const char *title, *prompt;
        QStringList filters;
        QFileDialog::FileMode mode;
        bool executables;
    } kinds[] = {
        {CNyrBrowse::eFolder, "Browse for Folder", "Select a directory:", {}, QFileDialog::Directory, false},
        {CNyrBrowse::eFile, "Browse for File", "Select a file:", {"All Files (*)"}, QFileDialog::ExistingFile, false},
        {CNyrBrowse::eExecutable, "Browse for Executable", "Select an executable file:", {"All Files (*)"},
         QFileDialog::ExistingFile, true},
        {CNyrBrowse::eProgram, "Browse for Program", "Select a program:", {"All Files (*)"},
         QFileDialog::ExistingFile, true},
        {CNyrBrowse::eLibrary, "Browse for Library", "Select a library:", {"Libraries (*.so)", "All Files (*)"},
         QFileDialog::ExistingFile, false},
    };
    for (const auto& k : kinds) {
        Answer([](QFileDialog&) { return QString(); });
        EXPECT_EQ(CNyrBrowse::Browse(nullptr, k.kind), "");
        EXPECT_EQ(seen.title, k.title);
        EXPECT_EQ(seen.prompt, k.prompt);
        EXPECT_EQ(seen.accept, "Open");
        if (k.kind != CNyrBrowse::eFolder) {
            EXPECT_EQ(seen.filters, k.filters) << k.title;
        }
        EXPECT_EQ(seen.mode, k.mode) << k.title;
        EXPECT_EQ(seen.executablesOnly, k.executables) << k.title;
    }
    EXPECT_EQ(shown, 5);

    Answer([](QFileDialog&) { return QString(); });
    CNyrBrowse::BrowseForFile(nullptr, "Import", {}, "Points (*.pts)|*.pts|Text|*.txt||");
    EXPECT_EQ(seen.filters, (QStringList{"Points (*.pts)", "Text (*.txt)"}));
    CNyrBrowse::BrowseForProgram(nullptr);
    EXPECT_EQ(seen.directory, "/usr/bin");  // where programs are, until one was chosen
    EXPECT_EQ(CNyrBrowse::Browse(nullptr, static_cast<CNyrBrowse::eKind>(9)), "");
    EXPECT_EQ(shown, 7);
}

TEST_F(BrowseFixture, LastFolderAndFileTypeAreRememberedPerPurpose)
{
    mkdir(dir.File("points").c_str(), 0700);
    mkdir(dir.File("plans").c_str(), 0700);
    WriteFile(dir.File("points/p.txt"), "1");
    const std::string filter = "Points (*.pts)|*.pts|Text (*.txt)|*.txt||";

    Answer([this](QFileDialog& files) {
        files.selectNameFilter("Text (*.txt)");
        return QString::fromStdString(dir.File("points/p.txt"));
    });
    EXPECT_EQ(CNyrBrowse::BrowseForFile(nullptr, "Import", {}, QString::fromStdString(filter)).toStdString(),
              dir.File("points/p.txt"));
    EXPECT_EQ(CNyrProfileEntries::ReadNyrProfileString("CNyrBrowse/Import", "Last Folder", ""), dir.File("points"));
    EXPECT_EQ(CNyrProfileEntries::ReadNyrProfileInt("CNyrBrowse/Import", "FileType", -1), 1u);

    Choose(QString::fromStdString(dir.File("plans")));
    EXPECT_EQ(CNyrBrowse::BrowseForFolder(nullptr, "Export").toStdString(), dir.File("plans"));

    // Each purpose starts where it ended; a cancelled dialog changes nothing.
    Answer([](QFileDialog&) { return QString(); });
    CNyrBrowse::BrowseForFile(nullptr, "Import", {}, QString::fromStdString(filter));
    EXPECT_EQ(seen.directory.toStdString(), dir.File("points"));
    EXPECT_EQ(seen.selectedFilter, "Text (*.txt)");
    CNyrBrowse::BrowseForFolder(nullptr, "Export");
    EXPECT_EQ(seen.directory.toStdString(), dir.File("plans"));
    CNyrBrowse::BrowseForFile(nullptr, "Other");
    EXPECT_EQ(seen.directory, QDir::homePath());

    // A given start wins over the remembered folder; a remembered folder
    // that is gone is not used.
    CNyrBrowse::BrowseForFile(nullptr, "Import", QString::fromStdString(dir.File("plans")));
    EXPECT_EQ(seen.directory.toStdString(), dir.File("plans"));
    rmdir(dir.File("plans").c_str());
    CNyrBrowse::BrowseForFolder(nullptr, "Export");
    EXPECT_EQ(seen.directory, QDir::homePath());
}

TEST_F(BrowseFixture, AFileThatIsNoProgramIsRefusedWithTheLibrarysMessage)
{
    WriteFile(dir.File("tool"), "#!/bin/sh\n");
    chmod(dir.File("tool").c_str(), 0700);
    WriteFile(dir.File("notes.txt"), "x");
    std::string message;
    CNyrMessageBoxDialog::SetAnswerHook([&](CNyrMessageBoxDialog& box) {
        message = box.findChild<QLabel*>("text")->text().toStdString();
        return 1;
    });
    Choose(QString::fromStdString(dir.File("tool")));
    EXPECT_EQ(CNyrBrowse::BrowseForExecutable(nullptr).toStdString(), dir.File("tool"));
    EXPECT_EQ(message, "");
    Choose(QString::fromStdString(dir.File("notes.txt")));
    EXPECT_EQ(CNyrBrowse::BrowseForProgram(nullptr), "");
    EXPECT_EQ(message, "The file " + dir.File("notes.txt") + " is not an executable program.");
}

TEST_F(BrowseFixture, SaveFileAddsTheChosenTypesSuffixAndNeverAsksItself)
{
    const QString filter = "Points (*.csv)|*.csv|Anything|*.*||";
    const struct
    {
        const char* typed;
        const char* type;
        const char* chosen;
    } cases[] = {
        {"points", "Points (*.csv)", "points.csv"},
        {"points.txt", "Points (*.csv)", "points.txt"},  // a suffix of its own is kept
        {"plain", "Anything (*)", "plain"},
    };
    for (const auto& c : cases) {
        Answer([&](QFileDialog& files) {
            files.selectNameFilter(c.type);
            return QString::fromStdString(dir.File(c.typed));
        });
        EXPECT_EQ(CNyrBrowse::BrowseForSaveFile(nullptr, "Export", {}, filter).toStdString(), dir.File(c.chosen));
    }
    EXPECT_EQ(seen.title, "Save As");
    EXPECT_EQ(seen.prompt, "File &name:");
    EXPECT_EQ(seen.accept, "Save");
    EXPECT_EQ(seen.acceptMode, QFileDialog::AcceptSave);
    EXPECT_EQ(seen.mode, QFileDialog::AnyFile);
    EXPECT_TRUE(seen.dontConfirmOverwrite);  // Qt's question would bypass the library's
    Answer([](QFileDialog&) { return QString(); });
    CNyrBrowse::Browse(nullptr, CNyrBrowse::eSaveFile, "Export", {}, filter, "Export Plan");
    EXPECT_EQ(seen.title, "Export Plan");
    EXPECT_EQ(seen.directory.toStdString(), dir.Path());  // where the last save went
}

TEST_F(BrowseFixture, ReplacingAFileIsAskedPlainlyOrWithTheHostsRememberedAnswer)
{
    const QString file = QString::fromStdString(dir.File("old.csv"));
    WriteFile(dir.File("old.csv"), "x");
    std::vector<std::string> asked;
    int reply = NYR_IDNO;
    bool tick = false;
    CNyrMessageBoxDialog::SetAnswerHook([&](CNyrMessageBoxDialog& box) {
        asked.push_back(box.findChild<QLabel*>("text")->text().toStdString());
        box.SetDoNotPromptUser(tick);
        return reply;
    });
    EXPECT_TRUE(CNyrBrowse::ConfirmReplace(nullptr, QString::fromStdString(dir.File("new.csv"))));
    EXPECT_TRUE(asked.empty());  // nothing to replace, nothing asked
    EXPECT_FALSE(CNyrBrowse::ConfirmReplace(nullptr, file, "Export"));
    ASSERT_EQ(asked.size(), 1u);
    EXPECT_EQ(asked[0], "The file " + dir.File("old.csv") + " already exists.\nDo you want to replace it?");
    tick = true;  // the plain question offers no remembered answer
    reply = NYR_IDYES;
    EXPECT_TRUE(CNyrBrowse::ConfirmReplace(nullptr, file));
    EXPECT_TRUE(CNyrBrowse::ConfirmReplace(nullptr, file));
    EXPECT_EQ(asked.size(), 3u);

    // With the host's managed message the user's "Do not prompt in future"
    // answers every later question, in the settings file too.
    CNyrBrowse::ReplaceMessageKeyDefault("Files/Replace");
    EXPECT_TRUE(CNyrBrowse::ConfirmReplace(nullptr, file));
    reply = NYR_IDNO;
    EXPECT_TRUE(CNyrBrowse::ConfirmReplace(nullptr, file));
    EXPECT_EQ(asked.size(), 4u);
    EXPECT_EQ(CNyrProfileEntries::ReadNyrProfileInt("@NyrMessageBox/Files/Replace", "DoNotPromptInFuture", 0), 1u);
    CNyrBrowse::ReplaceMessageKeyDefault("");
    EXPECT_FALSE(CNyrBrowse::ConfirmReplace(nullptr, file));
    EXPECT_EQ(asked.size(), 5u);
}

}  // namespace
