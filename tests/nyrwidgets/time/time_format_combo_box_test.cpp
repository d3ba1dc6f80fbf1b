#include "nyrwidgets/time/time_format_combo_box.h"

#include <gtest/gtest.h>

#include <QTest>
#include <QWidget>
#include <string>
#include <vector>

#include "nyr/frame/notifications.h"
#include "nyr/util/profile_entries.h"
#include "nyrwidgets/frame/message_event.h"
#include "tests/support/temp_dir.h"

namespace {

using nyr::test::WriteFile;

// A view that keeps the format-change notifications it receives.
class View : public QWidget
{
public:
    explicit View(QWidget* parent = nullptr) : QWidget(parent) {}
    std::vector<std::pair<quintptr, qintptr>> changes;

protected:
    bool event(QEvent* e) override
    {
        if (auto* m = CNyrMessageEvent::From(e); m && m->Message() == WM_NYR_FORMAT_CHANGED_TIME) {
            changes.emplace_back(m->WParam(), m->LParam());
            return true;
        }
        return QWidget::event(e);
    }
};

class TimeFormatComboBoxTest : public ::testing::Test
{
protected:
    void Use(const std::string& content)
    {
        const std::string file = m_dir.File("Nyr240-" + std::to_string(++m_files) + ".INI");
        WriteFile(file, content);
        NyrSetProfilePath(file);
    }
    nyr::test::TempDir m_dir;
    int m_files = 0;
};

TEST_F(TimeFormatComboBoxTest, RowsShowNowInEachFormatAndTheStoredOneIsSelected)
{
    const struct
    {
        const char* stored;
        int selected;
    } cases[] = {{"", 0}, {"Time Format (###)=17", 17}, {"Time Format (###)=32", 0}, {"Time Format (###)=77", 0}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.stored);
        Use(std::string("[CNyrTime]\n") + c.stored + "\n");
        CNyrTime::CTimeFormatComboBox box;
        const CNyrTime before;
        CNyrTime::InitializeTimeFormatComboBox(box);
        const CNyrTime after;
        ASSERT_EQ(box.count(), 32);
        for (int row = 0; row < 32; ++row) {
            const std::string text = box.itemText(row).toStdString();
            const auto format = static_cast<CNyrTime::eTimeFormat>(row);
            EXPECT_TRUE(text == before.Format(format) || text == after.Format(format)) << row << ": " << text;
        }
        EXPECT_EQ(box.currentIndex(), c.selected);
        EXPECT_EQ(CNyrTime::GetCurrentSelection(box), c.selected);
        CNyrTime::InitializeTimeFormatComboBox(box);  // filling again does not add rows
        EXPECT_EQ(box.count(), 32);
    }
}

TEST_F(TimeFormatComboBoxTest, SavingAChangedChoiceTellsEveryDescendantOnce)
{
    Use("[CNyrTime]\nTime Format (###)=17\n");
    QWidget window;
    auto* top = new View(&window);
    auto* nested = new View(new QWidget(top));
    auto* box = new CNyrTime::CTimeFormatComboBox(&window);
    CNyrTime::InitializeTimeFormatComboBox(*box);
    window.show();

    // The user picks row 5 with the keyboard.
    box->setFocus();
    for (int i = 0; i < 12; ++i)
        QTest::keyClick(box, Qt::Key_Up);
    EXPECT_EQ(CNyrTime::GetCurrentSelection(*box), 5);
    CNyrTime::SaveCurrentSelection(*box, &window);
    const std::vector<std::pair<quintptr, qintptr>> expected = {{17, 5}};
    EXPECT_EQ(top->changes, expected);
    EXPECT_EQ(nested->changes, expected);
    EXPECT_EQ(CNyrTime::CurrentTimeFormatIndex(), 5);
    EXPECT_EQ(CNyrProfileEntries::ReadNyrProfileString("CNyrTime", "Time Format (str)", ""), "%d/%m/%y %H:%M:%S");

    // Saving the same choice again, or without a window, notifies nobody.
    CNyrTime::SaveCurrentSelection(*box, &window);
    box->setCurrentIndex(9);
    CNyrTime::SaveCurrentSelection(*box, nullptr);
    EXPECT_EQ(top->changes.size(), 1u);
    EXPECT_EQ(CNyrTime::CurrentTimeFormatIndex(), 9);

    // No selection saves row 0.
    box->setCurrentIndex(-1);
    CNyrTime::SaveCurrentSelection(*box, &window);
    EXPECT_EQ(CNyrTime::CurrentTimeFormatIndex(), 0);
    EXPECT_EQ(nested->changes.back(), (std::pair<quintptr, qintptr>{9, 0}));
}

}  // namespace
