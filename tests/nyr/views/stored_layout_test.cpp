#include <gtest/gtest.h>

#include "nyr/views/stored_layout_p.h"

using namespace nyr::detail;

namespace {

TEST(StoredSortState, RefusedWholeOrTakenWhole)
{
    const struct
    {
        std::vector<int> values;
        bool taken;
        std::vector<StoredSortKey> keys;
    } cases[] = {
        {{}, false, {}},
        {{1, 0, 2, 1, 0, 1, 2}, false, {}},  // seven integers
        {{1, 0, -1, 1}, false, {}},
        {{1, 0, 4, 1}, false, {}},               // past the column count
        {{3, 7, 0, 0}, true, {{3, 1}, {0, 0}}},  // the column count itself passes
        {{2, -5}, true, {{2, 1}}},
    };
    for (const auto& c : cases) {
        std::vector<StoredSortKey> keys{{9, 9}};
        EXPECT_EQ(ParseSortState(c.values, 3, keys), c.taken) << ::testing::PrintToString(c.values);
        EXPECT_EQ(keys, c.keys) << ::testing::PrintToString(c.values);
    }
    EXPECT_EQ(FormatSortState({{3, 1}, {0, 0}}), (std::vector<int>{3, 1, 0, 0}));
}

TEST(StoredColumnLayout, FillRulesForShortAndMissingValues)
{
    std::vector<int> widths{120, -1};
    EXPECT_TRUE(FillColWidths(widths, 4));
    EXPECT_EQ(widths, (std::vector<int>{120, -1, 80, 80}));
    widths = {};
    EXPECT_FALSE(FillColWidths(widths, 4));
    widths = {1, 2, 3};
    EXPECT_FALSE(FillColWidths(widths, 0));
    EXPECT_TRUE(widths.empty());

    std::vector<int> order;
    EXPECT_TRUE(FillColOrder(order, 4));
    EXPECT_EQ(order, (std::vector<int>{0, 1, 2, 3}));
    order = {2, 2, 9, 0, 0};  // duplicates and extra entries pass
    EXPECT_TRUE(FillColOrder(order, 3));
    EXPECT_EQ(order, (std::vector<int>{2, 2, 9, 0, 0}));
}

TEST(StoredColumnLayout, WidthsPlanEachColumnAndNeverLeaveNoneOnScreen)
{
    const std::vector<ColumnNow> now{{false, true}, {false, false}, {true, false}, {false, true}};
    std::vector<ColumnAction> actions;
    ASSERT_TRUE(PlanColWidths({-1, 5, 100, -7}, now, 20, actions));
    EXPECT_EQ(actions, (std::vector<ColumnAction>{{ColumnChange::Hide, 0},
                                                  {ColumnChange::Show, 20},  // up to the least width
                                                  {ColumnChange::Keep, 0},   // deleted stays deleted
                                                  {ColumnChange::Keep, 0}}));
    ASSERT_TRUE(PlanColWidths({-2, 99999}, now, 20, actions));
    EXPECT_EQ(actions[1], (ColumnAction{ColumnChange::Show, kStoredWidthMax}));

    // Nothing left on screen: refused whole.
    EXPECT_FALSE(PlanColWidths({-1, -2, 50, -1}, now, 20, actions));
    EXPECT_EQ(actions, std::vector<ColumnAction>(4));
    // A column the value does not reach keeps showing.
    EXPECT_TRUE(PlanColWidths({-1}, now, 20, actions));
}

TEST(StoredColumnLayout, DisplayOrderShowsEveryVisibleColumnOnce)
{
    const std::vector<bool> visible{true, true, false, true, true};
    EXPECT_EQ(DisplayOrder({3, 1, 0, 1, -4}, visible), (std::vector<unsigned int>{4, 1, 3, 0}));
    EXPECT_EQ(DisplayOrder({}, visible), (std::vector<unsigned int>{0, 1, 3, 4}));
    EXPECT_EQ(DisplayOrder({2147483647, -2147483647 - 1}, visible), (std::vector<unsigned int>{1, 3, 4, 0}));
}

}  // namespace
