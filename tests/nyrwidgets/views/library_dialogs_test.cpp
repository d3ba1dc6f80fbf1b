// Every dialog and context menu of the library, in English and in German:
// each Alt+letter belongs to one control or entry, and no control, heading,
// entry or title shows an empty text.
#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QCheckBox>
#include <QGroupBox>
#include <QHeaderView>
#include <QLabel>
#include <QMenu>
#include <QPushButton>
#include <QRadioButton>
#include <map>
#include <memory>

#include "nyr/frame/resource_module.h"
#include "nyrwidgets/msgbox/message_box_answers_view.h"
#include "nyrwidgets/msgbox/message_box_dialog.h"
#include "nyrwidgets/views/list_view_find_dialog.h"
#include "nyrwidgets/views/report_view_col.h"
#include "nyrwidgets/views/report_view_columns_dlg.h"
#include "nyrwidgets/views/report_view_save_as_dlg_cv.h"
#include "nyrwidgets/views/report_view_sort_multiple_dlg.h"
#include "tests/nyrwidgets/views/views_test_p.h"

namespace {

// The letter after a single '&' (lower case), or a null character.
QChar Mnemonic(const QString& text)
{
    for (qsizetype i = 0; i + 1 < text.size(); ++i) {
        if (text[i] != QLatin1Char('&'))
            continue;
        if (text[i + 1] != QLatin1Char('&'))
            return text[i + 1].toLower();
        ++i;
    }
    return {};
}

// Collects the faults of one window or menu level: texts that share a
// mnemonic, and empty texts.
class Findings
{
public:
    explicit Findings(std::string where) : m_where(std::move(where)) {}

    void Text(const QString& text, const char* what)
    {
        if (text.trimmed().isEmpty()) {
            m_faults.push_back(m_where + ": empty " + what);
            return;
        }
        const QChar letter = Mnemonic(text);
        if (letter.isNull())
            return;
        const auto [it, added] = m_owners.emplace(letter, text);
        if (!added)
            m_faults.push_back(m_where + ": \"" + it->second.toStdString() + "\" and \"" + text.toStdString() +
                               "\" share Alt+" + QString(letter).toStdString());
    }
    std::vector<std::string> Take() { return std::move(m_faults); }

private:
    std::string m_where;
    std::map<QChar, QString> m_owners;
    std::vector<std::string> m_faults;
};

void WalkWindow(QWidget* window, const std::string& where, std::vector<std::string>& faults)
{
    Findings found(where);
    if (window->isWindow())
        found.Text(window->windowTitle(), "title");
    for (QWidget* w : window->findChildren<QWidget*>()) {
        if (!w->isVisibleTo(window))
            continue;
        // Push buttons, check boxes and radio buttons (not the tool buttons
        // and the table's corner button, which show no text).
        auto* button = qobject_cast<QAbstractButton*>(w);
        if (button && (qobject_cast<QPushButton*>(w) || qobject_cast<QCheckBox*>(w) || qobject_cast<QRadioButton*>(w)))
            found.Text(button->text(), "button");
        if (auto* label = qobject_cast<QLabel*>(w); label && label->buddy())
            found.Text(label->text(), "label");
        else if (auto* group = qobject_cast<QGroupBox*>(w); group && !group->title().isEmpty())
            found.Text(group->title(), "group");
    }
    for (std::string& f : found.Take())
        faults.push_back(std::move(f));
    // The headings: each checked on its own (they take no mnemonics).
    for (QHeaderView* header : window->findChildren<QHeaderView*>()) {
        if (header->orientation() != Qt::Horizontal || !header->isVisibleTo(window) || !header->model())
            continue;
        for (int c = 0; c < header->model()->columnCount(); ++c) {
            Findings heading(where);
            heading.Text(header->model()->headerData(c, Qt::Horizontal).toString(), "column heading");
            for (std::string& f : heading.Take())
                faults.push_back(std::move(f));
        }
    }
}

void WalkMenu(const QMenu* menu, const std::string& where, std::vector<std::string>& faults)
{
    Findings found(where);
    for (const QAction* action : menu->actions()) {
        if (action->isSeparator() || !action->isVisible())
            continue;
        found.Text(action->text().section(QLatin1Char('\t'), 0, 0), "entry");
        if (action->menu())
            WalkMenu(action->menu(), where + " > " + action->text().toStdString(), faults);
    }
    for (std::string& f : found.Take())
        faults.push_back(std::move(f));
}

// A view with every menu piece on, check boxes, a hidden column and items.
void MakeFullView(CNyrReportView& view)
{
    nyr::test::Fill(view, 3);
    view.AddRealCol(new CNyrReportViewCol(&view, 1, "Hidden"));
    view.SetCheckBoxes(true);
    view.CheckRealItem(0, 1);
    view.SelectRealItem(1, 1);
    view.SetHeaderMenu(0xFFFF, 0xFFFF);
    view.SetItemMenu(0xFFFF, 0xFFFF);
    view.SetItemBkMenu(0xFFFF, 0xFFFF);
}

std::vector<std::string> WalkEverything()
{
    std::vector<std::string> faults;
    CNyrReportView view;
    MakeFullView(view);
    CNyrListViewFind::StaticSearchCrit().searchString = "name";

    // Message boxes: every button set with every combination of the
    // extended buttons.
    constexpr unsigned kExtended[] = {NYR_MB_OKTOALL, NYR_MB_YESTOALL, NYR_MB_NOTOALL,
                                      NYR_MB_IGNOREALL, NYR_MB_SKIP,     NYR_MB_SKIPALL};
    for (unsigned set = 0; set <= NYR_MB_CANCELTRYCONTINUE; ++set) {
        for (unsigned combination = 0; combination < 64; ++combination) {
            unsigned style = set;
            for (unsigned b = 0; b < 6; ++b)
                style |= (combination >> b) & 1u ? kExtended[b] : 0u;
            CNyrMessageBoxDialog box(nullptr, "Text", "Caption", style, 0, 1);
            WalkWindow(&box, "message box style 0x" + QString::number(style, 16).toStdString(), faults);
        }
    }

    for (bool checkBoxes : {false, true}) {
        view.SetCheckBoxes(checkBoxes);
        CNyrListViewFindDialog find(&view.GetFind());
        WalkWindow(&find, checkBoxes ? "find dialog with check boxes" : "find dialog", faults);
    }
    for (bool rows : {false, true}) {
        CNyrListViewSaveAsDlgCV::SAVE_AS_INFO info;
        info.list = &view;
        info.offerRowChoice = rows;
        CNyrReportViewSaveAsDlgCV saveAs(info);
        WalkWindow(&saveAs, "save-as dialog", faults);
    }
    for (unsigned style = 0; style <= CNyrReportView::ColumnsDlgAll; ++style) {
        view.SetColumnsDlgStyle(style);
        CNyrReportViewColumnsDlg columns(&view);
        WalkWindow(&columns, "columns dialog style " + std::to_string(style), faults);
    }
    CNyrReportViewSortMultipleDlg sort(&view);
    WalkWindow(&sort, "sort dialog", faults);
    CNyrMessageBoxAnswersView answers;
    WalkWindow(&answers, "remembered answers", faults);

    for (bool shift : {false, true}) {
        const std::string variant = shift ? " (Shift)" : "";
        CNyrReportViewMenuPopUp header(&view);
        view.BuildHeaderContextMenu(header, 0, shift);
        WalkMenu(&header, "header menu" + variant, faults);
        CNyrReportViewMenuPopUp item(&view);
        view.BuildRealItemContextMenu(item, 1, shift);
        WalkMenu(&item, "item menu" + variant, faults);
        CNyrReportViewMenuPopUp background(&view);
        view.BuildItemBkContextMenu(background, shift);
        WalkMenu(&background, "background menu" + variant, faults);
    }
    CNyrListViewFind::StaticSearchCrit().searchString.clear();
    return faults;
}

TEST(LibraryDialogs, EveryMnemonicIsUniqueAndNoTextIsBlankInEnglish)
{
    EXPECT_EQ(WalkEverything(), std::vector<std::string>());
}

TEST(LibraryDialogs, EveryMnemonicIsUniqueAndNoTextIsBlankInGerman)
{
    std::string error;
    static const std::unique_ptr<CNyrResourceModule> german =
        CNyrResourceModule::LoadFromFile(NYR_SOURCE_DIR "/data/lang/de.lang", &error);
    ASSERT_TRUE(german) << error;
    NyrSetNyrResourceHandle(german.get());
    const std::vector<std::string> faults = WalkEverything();
    NyrSetNyrResourceHandle(CNyrResourceModule::Library());
    EXPECT_EQ(faults, std::vector<std::string>());
}

TEST(LibraryDialogs, AButtonWhoseLetterIsTakenMovesToAFreeOne)
{
    // "No &to all" and "&Try again" in one row: the later one moves.
    CNyrMessageBoxDialog box(nullptr, "Text", "Caption", NYR_MB_CANCELTRYCONTINUE | NYR_MB_NOTOALL, 0, 0);
    EXPECT_EQ(box.Button(NYR_IDNOTOALL)->text(), "No &to all");
    EXPECT_EQ(box.Button(NYR_IDTRYAGAIN)->text(), "Try &again");
    EXPECT_EQ(box.Button(NYR_IDCONTINUE)->text(), "&Continue");
    CNyrMessageBoxDialog plain(nullptr, "Text", "Caption", NYR_MB_CANCELTRYCONTINUE, 0, 0);
    EXPECT_EQ(plain.Button(NYR_IDTRYAGAIN)->text(), "&Try again");
}

}  // namespace
