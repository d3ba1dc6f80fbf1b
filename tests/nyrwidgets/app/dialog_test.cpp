#include "nyrwidgets/app/dialog.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QClipboard>
#include <QDialogButtonBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QScreen>
#include <QTest>
#include <QVBoxLayout>

#include "nyr/frame/resource_module.h"
#include "nyr/util/profile_entries.h"
#include "nyrwidgets/app/about_dialog.h"
#include "nyrwidgets/frame/help_app.h"
#include "tests/support/dialog_answer.h"
#include "tests/support/temp_dir.h"

namespace {

using nyr::test::TempDir;

struct DialogFixture : ::testing::Test
{
    TempDir dir;
    void SetUp() override { NyrSetProfilePath(dir.File("settings.ini")); }
    void TearDown() override { NyrSetProfilePath(""); }
};

// A dialog with one field that OK and Apply refuse while it is empty.
class NameDialog : public CNyrDialog
{
public:
    explicit NameDialog(const std::string& section = "NameDialog")
        : CNyrDialog(nullptr, section, eOK | eCancel | eApply | eHelp)
    {
        ContentLayout()->addWidget(edit);
    }
    QLineEdit* edit = new QLineEdit;
    int applies = 0;

protected:
    bool OnApply() override
    {
        ++applies;
        return !edit->text().isEmpty();
    }
};

TEST_F(DialogFixture, ButtonsAskedForCarryTheLibrarysTextsInAnyLanguage)
{
    const struct
    {
        unsigned buttons;
        QStringList texts;
    } cases[] = {
        {CNyrDialog::eOK, {"OK"}},
        {CNyrDialog::eOK | CNyrDialog::eCancel, {"OK", "Cancel"}},
        {CNyrDialog::eOK | CNyrDialog::eCancel | CNyrDialog::eApply | CNyrDialog::eHelp,
         {"OK", "Cancel", "&Apply", "&Help"}},
        {CNyrDialog::eCancel | CNyrDialog::eHelp, {"Cancel", "&Help"}},
        {0, {}},
    };
    for (const auto& c : cases) {
        CNyrDialog dialog(nullptr, {}, c.buttons);
        QStringList texts;
        for (const auto b : {CNyrDialog::eOK, CNyrDialog::eCancel, CNyrDialog::eApply, CNyrDialog::eHelp})
            if (QPushButton* button = dialog.Button(b))
                texts << button->text();
        EXPECT_EQ(texts, c.texts) << c.buttons;
        if (dialog.Button(CNyrDialog::eOK)) {
            EXPECT_TRUE(dialog.Button(CNyrDialog::eOK)->isDefault());
        }
    }

    auto german = CNyrResourceModule::LoadFromFile(NYR_SOURCE_DIR "/data/lang/de.lang");
    ASSERT_TRUE(german);
    NyrSetNyrResourceHandle(german.get());
    CNyrDialog dialog(nullptr, {}, CNyrDialog::eCancel | CNyrDialog::eApply | CNyrDialog::eHelp);
    NyrSetNyrResourceHandle(CNyrResourceModule::Library());
    EXPECT_EQ(dialog.Button(CNyrDialog::eCancel)->text(), "Abbrechen");
    EXPECT_EQ(dialog.Button(CNyrDialog::eApply)->text(), QString::fromUtf8("Ü&bernehmen"));
    EXPECT_EQ(dialog.Button(CNyrDialog::eHelp)->text(), "&Hilfe");
}

TEST_F(DialogFixture, OkAndApplyCheckTheValuesCancelDoesNot)
{
    NameDialog dialog;
    int applied = 0;
    QObject::connect(&dialog, &CNyrDialog::applied, [&] { ++applied; });
    // Answered through the seam: the hook works the real buttons of the
    // dialog on screen.
    nyr::test::DialogAnswer answer([&](QDialog& shown) {
        EXPECT_EQ(&shown, &dialog);
        EXPECT_TRUE(shown.isVisible());
        QTest::mouseClick(dialog.Button(CNyrDialog::eOK), Qt::LeftButton);  // refused: empty
        EXPECT_TRUE(shown.isVisible());
        QTest::mouseClick(dialog.Button(CNyrDialog::eApply), Qt::LeftButton);  // refused too
        dialog.edit->setText("Ann");
        QTest::mouseClick(dialog.Button(CNyrDialog::eApply), Qt::LeftButton);
        QTest::mouseClick(dialog.Button(CNyrDialog::eOK), Qt::LeftButton);
    });
    EXPECT_EQ(dialog.Exec(), QDialog::Accepted);
    EXPECT_EQ(dialog.applies, 4);
    EXPECT_EQ(applied, 2);

    // Cancel, and a hook that leaves the dialog open: rejected, nothing taken.
    for (const bool click : {true, false}) {
        NameDialog cancelled;
        cancelled.edit->setText("Bob");
        nyr::test::DialogAnswer leave([&](QDialog&) {
            if (click)
                QTest::mouseClick(cancelled.Button(CNyrDialog::eCancel), Qt::LeftButton);
        });
        EXPECT_EQ(cancelled.Exec(), QDialog::Rejected);
        EXPECT_FALSE(cancelled.isVisible());
        EXPECT_EQ(cancelled.applies, 0);
        EXPECT_EQ(leave.opened, 1);
    }
}

quint32 g_context = 0;
unsigned g_command = 0;
int g_calls = 0;
void RecordHelp(quint32& context, unsigned& command)
{
    g_context = context;
    g_command = command;
    ++g_calls;
}

TEST_F(DialogFixture, HelpButtonAndF1AskTheHelpApplicationForTheContext)
{
    const CNyrHelpApp::HelpHook previous = NyrGetHelpApp().SetHelpHook(RecordHelp);
    NameDialog dialog;
    dialog.SetHelpContext(4711);
    QTest::mouseClick(dialog.Button(CNyrDialog::eHelp), Qt::LeftButton);
    EXPECT_EQ(g_calls, 1);
    EXPECT_EQ(g_context, 4711u);
    EXPECT_EQ(g_command, 1u);
    dialog.show();
    QTest::keyClick(&dialog, Qt::Key_F1);
    EXPECT_EQ(g_calls, 2);
    QTest::keyClick(dialog.edit, Qt::Key_F1);  // from inside a control too
    EXPECT_EQ(g_calls, 3);
    EXPECT_TRUE(dialog.isVisible());
    NyrGetHelpApp().SetHelpHook(previous);
}

TEST_F(DialogFixture, PositionAndSizeComeBackOntoAScreenThatExists)
{
    const QRect screen = QGuiApplication::primaryScreen()->availableGeometry();
    {
        NameDialog dialog;
        dialog.show();
        dialog.resize(screen.width() / 2, screen.height() / 2);
        dialog.move(screen.left() + 30, screen.top() + 40);
        dialog.hide();
    }
    NameDialog again;
    again.show();
    EXPECT_EQ(again.pos(), QPoint(screen.left() + 30, screen.top() + 40));
    EXPECT_EQ(again.size(), QSize(screen.width() / 2, screen.height() / 2));
    again.hide();

    // Stored where no screen is now, or larger than any: moved and shrunk.
    const struct
    {
        int x, y, w, h;
    } far[] = {{5000, 5000, 300, 200}, {-4000, 20, 300, 200}, {10, -900, 300, 200}, {0, 0, 9000, 7000},
               {screen.right() - 50, screen.bottom() - 50, 400, 300}};
    for (const auto& f : far) {
        for (const auto& [entry, value] : {std::pair{"Window Left", f.x}, {"Window Top", f.y},
                                           {"Window Width", f.w}, {"Window Height", f.h}})
            CNyrProfileEntries::WriteNyrProfileInt("NameDialog", entry, value);
        NameDialog dialog;
        dialog.show();
        EXPECT_TRUE(screen.contains(dialog.frameGeometry())) << f.x << "," << f.y << " " << f.w << "x" << f.h;
        dialog.hide();
    }

    // Values not ours (a size of 0, an absent position) are left to the window system.
    CNyrProfileEntries::WriteNyrProfileInt("NameDialog", "Window Width", 0);
    NameDialog unsized;
    unsized.show();
    NameDialog plain("");
    plain.show();
    EXPECT_EQ(unsized.size(), plain.size());
}

TEST_F(DialogFixture, AboutBoxShowsVersionsAndRequirementsAndCopiesThem)
{
    CNyrAboutDialog about(nullptr, "Survey", "3.1");
    EXPECT_EQ(about.windowTitle(), "About Survey");
    const std::string text = about.Text();
    for (const std::string& line : {std::string("Application: Survey 3.1\n"), std::string("Library: Nyr240 "),
                                    std::string("Qt libraries: ") + qVersion() + " (built with " QT_VERSION_STR ")\n",
                                    std::string("Operating system: Linux "),
                                    std::string("System requirements: All requirements are met.\n")})
        EXPECT_NE(text.find(line), std::string::npos) << line << " in\n" << text;
    // What the box shows is what is copied.
    QStringList shown;
    for (const QLabel* label : about.findChildren<QLabel*>())
        shown << label->text();
    EXPECT_TRUE(shown.contains("Survey 3.1"));
    EXPECT_EQ(about.Button(CNyrDialog::eCancel), nullptr);

    QGuiApplication::clipboard()->clear();
    QTest::mouseClick(about.CopyButton(), Qt::LeftButton);
    EXPECT_EQ(QGuiApplication::clipboard()->text().toStdString(), text);

    int seen = 0;
    nyr::test::DialogAnswer answer([&](QDialog& dialog) {
        seen += dialog.windowTitle() == "About NyrTests";
        dialog.accept();
    });
    CNyrAboutDialog::ShowAbout(nullptr, {{"GeographicLib", "2.1"}});
    EXPECT_EQ(seen, 1);
    // A host's own lines come after Qt's, before the system's.
    const std::string more = CNyrAboutDialog(nullptr, "Survey", "3.1", {{"GeographicLib", "2.1"}}).Text();
    const std::size_t qt = more.find("Qt libraries: "), own = more.find("GeographicLib: 2.1\n"),
                      os = more.find("Operating system: ");
    EXPECT_TRUE(qt < own && own < os) << more;
}

}  // namespace
