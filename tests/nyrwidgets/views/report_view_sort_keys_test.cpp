#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <limits>
#include <random>

#include "tests/nyr/time/scoped_zone_p.h"
#include "tests/nyrwidgets/views/views_test_p.h"

using nyr::test::ScreenOrder;
using SortKey = CNyrReportView::SORT_STATE_REALCOL;
using SORT_KEY = CNyrReportViewItem::SORT_KEY;

namespace {

enum : unsigned int
{
    ColNumber,
    ColInteger,
    ColTime,
    ColNone
};

struct Values
{
    double number;
    long long integer;
    int64_t seconds;
    double fraction;
};

// What the items of one view share: whether they offer keys, a comparison
// that replaces the library's, and the count of comparisons made.
struct Rules
{
    bool offerKeys = true;
    int noKeyItem = -1;      // this item offers none
    int otherKindItem = -1;  // this item's number is offered as an integer
    std::function<int(const Values&, const Values&, unsigned int)> compare;
    long compares = 0;
    long keyReads = 0;
};

class KeyedItem : public CNyrReportViewItem
{
public:
    KeyedItem(int index, const Values& v, Rules& rules) : m_index(index), m_v(v), m_time(v.seconds), m_rules(rules)
    {
        m_time.SetFracSecond(v.fraction);
    }

    int OnGetItemSortKey(unsigned int realCol, SORT_KEY& key) const override
    {
        ++m_rules.keyReads;
        if (!m_rules.offerKeys || m_index == m_rules.noKeyItem)
            return 0;
        switch (realCol) {
        case ColNumber:
            if (m_index == m_rules.otherKindItem)
                key.SetInteger(static_cast<long long>(m_v.number));
            else
                key.SetNumber(m_v.number);
            return 1;
        case ColInteger: key.SetInteger(m_v.integer); return 1;
        case ColTime: key.SetTime(m_time); return 1;
        default: return 0;
        }
    }

    int OnCompareItem(const CNyrReportViewItem* other, unsigned int realCol) override
    {
        ++m_rules.compares;
        if (m_rules.compare)
            return m_rules.compare(m_v, static_cast<const KeyedItem*>(other)->m_v, realCol);
        return CNyrReportViewItem::OnCompareItem(other, realCol);
    }

private:
    int m_index;
    Values m_v;
    CNyrTime m_time;
    Rules& m_rules;
};

// Values with many ties, both zeroes, infinities and NaNs, integers at their
// limits, and times inside the hour Berlin's clock ran twice on 2024-10-27
// (00:00 to 02:00 UTC), apart by fractions of a second, or outside years
// 1..9999 (MJD 0.0).
std::vector<Values> MakeValues(int n, unsigned seed)
{
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const double inf = std::numeric_limits<double>::infinity();
    const double numbers[] = {nan, -nan, -0.0, 0.0, inf, -inf, 4.9e-324, -1.5, 2.5, 2.5000000000000004, 1e300};
    const long long integers[] = {std::numeric_limits<long long>::min(), -1, 0, 1,
                                  std::numeric_limits<long long>::max()};
    std::mt19937 rng(seed);
    std::vector<Values> values;
    for (int i = 0; i < n; ++i) {
        Values v{};
        v.number = rng() % 3 == 0 ? numbers[rng() % std::size(numbers)] : static_cast<double>(rng() % 50) / 4.0;
        v.integer = rng() % 3 == 0 ? integers[rng() % std::size(integers)] : static_cast<long long>(rng() % 40) - 20;
        const int64_t fold = 1729987200;  // 2024-10-27 00:00 UTC
        v.seconds = rng() % 10 == 0 ? -62135596800 - 86400 * 3 : fold + static_cast<int64_t>(rng() % 7200);
        v.fraction = rng() % 2 == 0 ? 0.0 : static_cast<double>(rng() % 4) / 4.0;
        values.push_back(v);
    }
    return values;
}

long Long(const Values& v)
{
    return static_cast<long>(v.integer);
}

// The library's comparison of each column, on the values themselves.
int CompareValues(const Values& a, const Values& b, unsigned int realCol)
{
    const auto time = [](const Values& v) {
        CNyrTime t(v.seconds);
        t.SetFracSecond(v.fraction);
        return t;
    };
    switch (realCol) {
    case ColNumber: return NyrCompare(a.number, b.number);
    case ColInteger: return NyrCompare(Long(a), Long(b));
    case ColTime: return NyrCompare(time(a), time(b));
    default: return 0;
    }
}

void FillView(CNyrReportView& view, const std::vector<Values>& values, Rules& rules)
{
    view.AddRealCols(std::vector<std::string>{"Number", "Integer", "Time", "None"});
    for (std::size_t i = 0; i < values.size(); ++i)
        view.AddRealItem(new KeyedItem(static_cast<int>(i), values[i], rules));
    view.DisplayRealItems();
}

// The most comparisons a sort by the keys makes: each pair of neighbouring
// rows once per key column, and a few more where the view first looks
// whether the rows are in order or reversed already. A sort through the
// comparison alone makes about n log n.
long Pairs(const std::vector<Values>& values)
{
    return static_cast<long>(values.size()) - 1;
}

long ByKeysAtMost(const std::vector<Values>& values, const std::vector<SortKey>& state)
{
    long columns = 0;
    while (columns < static_cast<long>(state.size()) && state[static_cast<std::size_t>(columns)].realCol != 0xFFFFFFFFu)
        ++columns;
    return (Pairs(values) + 50) * columns;
}

// Rows sorted by their keys come out as the comparison alone puts them, for
// every state of one to three keys: ties in the first key's direction, NaN
// after +infinity, -0 equal to 0, the twice-run hour by local reading.
TEST(ReportViewSortKeys, KeysSortAsTheComparisonWould)
{
    const nyr::test::ScopedZone zone("Europe/Berlin");
    const std::vector<std::vector<SortKey>> states = {
        {{ColNumber, 1}},
        {{ColNumber, 0}},
        {{ColInteger, 1}},
        {{ColInteger, 0}},
        {{ColTime, 1}},
        {{ColTime, 0}},
        {{ColNumber, 1}, {ColTime, 0}},
        {{ColTime, 0}, {ColInteger, 1}, {ColNumber, 0}},
        {{ColInteger, 0}, {0xFFFFFFFFu, 1}, {ColTime, 1}},
    };
    for (unsigned seed : {1u, 2u, 3u}) {
        const std::vector<Values> values = MakeValues(3000, seed);
        Rules rules;
        CNyrReportView view;
        FillView(view, values, rules);
        for (const std::vector<SortKey>& state : states) {
            rules.offerKeys = false;
            rules.compare = CompareValues;
            view.SortList(std::vector<SortKey>{});
            view.SortList(state);
            const std::vector<int> byComparison = ScreenOrder(view);
            // By the keys, checked with the same comparison, then with the
            // default one, which compares the keys.
            rules.offerKeys = true;
            for (bool ownComparison : {true, false}) {
                if (!ownComparison)
                    rules.compare = nullptr;
                view.SortList(std::vector<SortKey>{});
                rules.compares = 0;
                view.SortList(state);
                EXPECT_EQ(ScreenOrder(view), byComparison)
                    << "seed " << seed << ", first column " << state[0].realCol << ", own " << ownComparison;
                EXPECT_LE(rules.compares, ByKeysAtMost(values, state)) << "seed " << seed;
            }
        }
    }
}

// The item's comparison decides wherever it differs from the keys: one that
// reverses the keys' order, and one finer than the keys (the keys tie where
// the comparison does not).
TEST(ReportViewSortKeys, AComparisonThatDisagreesWithTheKeysDecides)
{
    const std::vector<Values> values = MakeValues(2000, 9);
    struct Case
    {
        const char* name;
        std::function<int(const Values&, const Values&, unsigned int)> compare;
    };
    const Case cases[] = {
        {"reversed", [](const Values& a, const Values& b, unsigned) { return NyrCompare(Long(b), Long(a)); }},
        {"finer",
         [](const Values& a, const Values& b, unsigned) {
             const int byKey = NyrCompare(Long(a), Long(b));
             return byKey != 0 ? byKey : NyrCompare(a.fraction, b.fraction);
         }},
    };
    for (const Case& c : cases) {
        Rules rules;
        rules.compare = c.compare;
        CNyrReportView view;
        FillView(view, values, rules);
        view.SortList(std::vector<SortKey>{{ColInteger, 1}});
        const std::vector<int> withKeys = ScreenOrder(view);
        rules.offerKeys = false;
        view.SortList(std::vector<SortKey>{});
        view.SortList(std::vector<SortKey>{{ColInteger, 1}});
        EXPECT_EQ(withKeys, ScreenOrder(view)) << c.name;
        for (std::size_t s = 1; s < withKeys.size(); ++s) {
            const Values& a = values[static_cast<std::size_t>(withKeys[s - 1])];
            const Values& b = values[static_cast<std::size_t>(withKeys[s])];
            ASSERT_LE(c.compare(a, b, ColInteger), 0) << c.name << " row " << s;
        }
    }
}

// When the keys may sort: every row offers a key of one kind for each sort
// column. Otherwise the comparison sorts alone (many more calls than the
// neighbouring pairs), and a state without a key column sorts by index.
TEST(ReportViewSortKeys, KeysSortOnlyWhenEveryRowOffersOneOfOneKind)
{
    const std::vector<Values> values = MakeValues(1000, 4);
    const long pairs = Pairs(values);
    struct Case
    {
        const char* name;
        std::vector<SortKey> state;
        int noKeyItem, otherKindItem;
        bool byKeys;
    };
    const Case cases[] = {
        {"all rows", {{ColNumber, 1}}, -1, -1, true},
        {"all rows, three columns", {{ColNumber, 0}, {ColInteger, 1}, {ColTime, 1}}, -1, -1, true},
        {"one row without", {{ColNumber, 1}}, 517, -1, false},
        {"the last row without", {{ColNumber, 1}}, 999, -1, false},
        {"the second row of another kind", {{ColNumber, 1}}, -1, 1, false},
        {"a column no row has keys for", {{ColTime, 1}, {ColNone, 1}}, -1, -1, false},
    };
    for (const Case& c : cases) {
        Rules rules;
        rules.noKeyItem = c.noKeyItem;
        rules.otherKindItem = c.otherKindItem;
        rules.compare = CompareValues;  // reads no keys
        CNyrReportView view;
        FillView(view, values, rules);
        view.SortList(std::vector<SortKey>{{ColInteger, 0}});  // out of order for each state
        rules.compares = 0;
        rules.keyReads = 0;
        view.SortList(c.state);
        if (c.byKeys)
            EXPECT_LE(rules.compares, ByKeysAtMost(values, c.state)) << c.name;
        else
            EXPECT_GT(rules.compares, 4 * pairs) << c.name;
        if (c.otherKindItem >= 0) {
            EXPECT_EQ(rules.keyReads, 2) << "the keys are read no further than the row of another kind";
        }
    }
    Rules rules;
    CNyrReportView view;
    FillView(view, values, rules);
    view.SortList(std::vector<SortKey>{{0xFFFFFFFFu, 0}});
    EXPECT_EQ(rules.compares, 0);
    EXPECT_EQ(ScreenOrder(view).front(), 999);
}

// The default comparison compares the keys by their kind's comparison, and
// answers 0 for a missing key or two kinds.
TEST(ReportViewSortKeys, TheDefaultComparisonComparesTheKeys)
{
    class OneKey : public CNyrReportViewItem
    {
    public:
        explicit OneKey(std::function<void(SORT_KEY&)> set) : m_set(std::move(set)) {}
        int OnGetItemSortKey(unsigned int, SORT_KEY& key) const override
        {
            if (!m_set)
                return 0;
            m_set(key);
            return 1;
        }

    private:
        std::function<void(SORT_KEY&)> m_set;
    };
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const auto number = [](double v) { return [v](SORT_KEY& k) { k.SetNumber(v); }; };
    const auto integer = [](long long v) { return [v](SORT_KEY& k) { k.SetInteger(v); }; };
    const auto time = [](int64_t s) { return [s](SORT_KEY& k) { k.SetTime(CNyrTime(s)); }; };
    struct Case
    {
        std::function<void(SORT_KEY&)> a, b;
        int expected;
    };
    const Case cases[] = {
        {number(1.0), number(2.0), -1}, {number(nan), number(1e308), 1}, {number(nan), number(-nan), 0},
        {number(-0.0), number(0.0), 0}, {integer(-5), integer(-7), 1},   {time(1000), time(999), 1},
        {time(1000), time(1000), 0},    {number(1.0), integer(2), 0},    {nullptr, number(2.0), 0},
        {number(1.0), nullptr, 0},
    };
    for (std::size_t i = 0; i < std::size(cases); ++i) {
        OneKey a(cases[i].a), b(cases[i].b);
        EXPECT_EQ(a.OnCompareItem(&b, 0), cases[i].expected) << "case " << i;
    }
    OneKey plain(nullptr);
    EXPECT_EQ(plain.OnCompareItem(nullptr, 0), 0);
}

}  // namespace
