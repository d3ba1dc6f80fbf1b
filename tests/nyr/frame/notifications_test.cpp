#include <gtest/gtest.h>

#include <set>

#include "nyr/frame/notifications.h"
#include "tests/support/turkish_locale.h"

namespace {

TEST(Notifications, AllHundredAndOneAreRegisteredUnderTheirOwnNamesWithDistinctNumbers)
{
    const auto all = NyrLibraryNotifications();
    ASSERT_EQ(all.size(), 101u);
    std::set<unsigned int> numbers;
    for (const auto& [name, number] : all) {
        EXPECT_GE(number, kNyrFirstRegisteredMessage) << name;
        EXPECT_EQ(NyrRegisteredMessageName(number), name);
        numbers.insert(number);
    }
    EXPECT_EQ(numbers.size(), 101u);
    EXPECT_EQ(all.front().first, "WM_NYR_PROPERTIES");
    EXPECT_EQ(all.back().first, "WM_NYR_TABCTRL_SEL");
}

TEST(Notifications, TheSameNameAlwaysGivesTheSameNumber)
{
    // The exported variable was set at load; a host registering the name agrees.
    EXPECT_EQ(NyrRegisterWindowMessage("WM_NYR_REPORTVIEW_ITEM_SELECT"), WM_NYR_REPORTVIEW_ITEM_SELECT);
    EXPECT_EQ(NyrRegisterWindowMessage("WM_NYR_REPORTVIEW_ITEM_SELECT"), WM_NYR_REPORTVIEW_ITEM_SELECT);
    EXPECT_EQ(NyrRegisterWindowMessage("wm_nyr_reportview_item_select"), WM_NYR_REPORTVIEW_ITEM_SELECT);
    EXPECT_NE(WM_NYR_REPORTVIEW_ITEM_SELECT, WM_NYR_REPORTVIEW_ITEM_DESELECT);
}

TEST(Notifications, NamesFoldOnlyAsciiCaseWhateverTheLocale)
{
    const nyr::test::ScopedTurkishLocale turkish;  // as a QApplication in a Turkish session sets it
    NYR_REQUIRE_TURKISH_LOCALE(turkish);
    for (const char* spelling : {"wm_nyr_reportview_item_select", "WM_NYR_REPORTVIEW_ITEM_SELECT",
                                 "Wm_Nyr_ReportView_Item_Select", "wm_nyr_REPORTVIEW_item_SELECT"})
        EXPECT_EQ(NyrRegisterWindowMessage(spelling), WM_NYR_REPORTVIEW_ITEM_SELECT) << spelling;
    // Letters beyond ASCII are not folded: the Turkish capital dotted I is another name.
    EXPECT_NE(NyrRegisterWindowMessage("WM_NYR_REPORTV\xC4\xB0" "EW_ITEM_SELECT"), WM_NYR_REPORTVIEW_ITEM_SELECT);
    const unsigned int host = NyrRegisterWindowMessage("HostApp.Ident");
    EXPECT_EQ(NyrRegisterWindowMessage("HOSTAPP.IDENT"), host);
    EXPECT_EQ(NyrRegisterWindowMessage("hostapp.ident"), host);
}

TEST(Notifications, HostNamesGetNewNumbersAndBadNamesNone)
{
    const unsigned int host = NyrRegisterWindowMessage("HostApp.Refresh");
    EXPECT_GE(host, kNyrFirstRegisteredMessage);
    EXPECT_EQ(NyrRegisterWindowMessage("HostApp.Refresh"), host);
    EXPECT_NE(NyrRegisterWindowMessage("HostApp.Other"), host);
    EXPECT_EQ(NyrRegisterWindowMessage(""), 0u);
    EXPECT_EQ(NyrRegisterWindowMessage(nullptr), 0u);
    EXPECT_EQ(NyrRegisteredMessageName(0x10), "");
    EXPECT_EQ(NyrRegisteredMessageName(0xFFFF), "");
}

}  // namespace
