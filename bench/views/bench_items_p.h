#pragma once

// The benchmark's table: 1,000,000 rows of six columns (an id, a double, a
// text, a CNyrTime, a second double and a second text), as report view items
// and as the same values for a plain Qt table model.

#include <chrono>
#include <cstdint>
#include <cstdio>
#include <string>
#include <vector>

#include "nyr/time/time.h"
#include "nyrwidgets/views/report_view.h"
#include "nyrwidgets/views/report_view_item.h"

namespace nyr::bench {

inline constexpr int kColumns = 6;
inline constexpr unsigned kColId = 0, kColValue = 1, kColText = 2, kColTime = 3, kColValue2 = 4, kColText2 = 5;

struct Row
{
    int id;
    double value;
    std::string text;
    int64_t seconds;  // since 1970, spread over 1990..2030
    double value2;
    std::string text2;
};

// Deterministic pseudo-random rows.
inline std::vector<Row> MakeRows(int n)
{
    static const char* const kSyllables[] = {"ka", "lo", "mi", "nu", "pe", "ra", "si", "to", "vu", "ze",
                                             "Ba", "Do", "Fi", "Gu", "Ha", "Je"};
    std::vector<Row> rows(static_cast<std::size_t>(n));
    uint64_t x = 0x9E3779B97F4A7C15ULL;
    auto next = [&x] {
        x ^= x << 13, x ^= x >> 7, x ^= x << 17;
        return x;
    };
    for (int i = 0; i < n; ++i) {
        Row& r = rows[static_cast<std::size_t>(i)];
        r.id = i;
        r.value = static_cast<double>(next() % 100000000) / 1000.0;
        for (int s = 0; s < 4; ++s)
            r.text += kSyllables[next() % 16];
        r.seconds = 631152000 + static_cast<int64_t>(next() % 1262304000ULL);
        r.value2 = static_cast<double>(next() % 1000) / 10.0;
        r.text2 = "P" + std::to_string(next() % 5000);
    }
    return rows;
}

class BenchItem : public CNyrReportViewItem
{
public:
    explicit BenchItem(const Row& r)
        : m_id(r.id), m_value(r.value), m_text(r.text), m_time(r.seconds), m_value2(r.value2), m_text2(r.text2)
    {
    }

    using CNyrReportViewItem::OnGetItemText;
    int OnGetItemText(unsigned int realCol, unsigned int, std::string& text) override
    {
        char buffer[32];
        switch (realCol) {
        case kColId: text = std::to_string(m_id); break;
        case kColValue: std::snprintf(buffer, sizeof buffer, "%.3f", m_value), text = buffer; break;
        case kColText: text = m_text; break;
        case kColTime: text = m_time.Format(CNyrTime::eTimeFormatDMY4Dot24); break;
        case kColValue2: std::snprintf(buffer, sizeof buffer, "%.1f", m_value2), text = buffer; break;
        default: text = m_text2; break;
        }
        return 1;
    }

    // The numeric columns offer their values as sort keys, as an application
    // that wants its sorts fast would; the comparison below still checks the
    // order (CNyrReportViewItem::OnGetItemSortKey). `offerKeys` off measures
    // the sort through the comparison alone.
    static inline bool offerKeys = true;
    int OnGetItemSortKey(unsigned int realCol, SORT_KEY& key) const override
    {
        if (!offerKeys)
            return 0;
        switch (realCol) {
        case kColId: key.SetInteger(m_id); return 1;
        case kColValue: key.SetNumber(m_value); return 1;
        case kColTime: key.SetTime(m_time); return 1;
        case kColValue2: key.SetNumber(m_value2); return 1;
        default: return 0;
        }
    }

    int OnCompareItem(const CNyrReportViewItem* other, unsigned int realCol) override
    {
        const auto* o = static_cast<const BenchItem*>(other);
        switch (realCol) {
        case kColId: return Compare(m_id, o->m_id);
        case kColValue: return Compare(m_value, o->m_value);
        case kColText: return Compare(m_text, o->m_text);
        case kColTime: return Compare(m_time, o->m_time);
        case kColValue2: return Compare(m_value2, o->m_value2);
        default: return Compare(m_text2, o->m_text2);
        }
    }

private:
    int m_id;
    double m_value;
    std::string m_text;
    CNyrTime m_time;
    double m_value2;
    std::string m_text2;
};

// Seconds that f() takes.
template <class F>
double Seconds(F&& f)
{
    const auto start = std::chrono::steady_clock::now();
    f();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

inline void AddColumns(CNyrReportView& view)
{
    view.AddRealCols(std::vector<std::string>{"Id", "Value", "Name", "Time", "Height", "Code"},
                     {60, 90, 120, 140, 70, 70});
}

}  // namespace nyr::bench
