// Sorting by the items' keys: see sort_keys_p.h.
#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstdint>
#include <utility>

#include "nyr/time/mjd_reader_p.h"
#include "nyrwidgets/views/sort_keys_p.h"

namespace nyr::views_detail {

namespace {

using SORT_KEY = CNyrReportViewItem::SORT_KEY;
using SortState = std::vector<CNyrReportView::SORT_STATE_REALCOL>;

// A key as an unsigned number that orders as the key's comparison does.
// Doubles: the sign bit flipped for positive numbers, every bit for
// negative ones; -0 as +0, and every NaN as the largest number, after
// +infinity (NyrCompare's order).
uint64_t NumberCode(double value)
{
    if (std::isnan(value))
        return ~uint64_t{0};
    const auto bits = std::bit_cast<uint64_t>(value == 0.0 ? 0.0 : value);
    return (bits >> 63) != 0 ? ~bits : (bits | uint64_t{1} << 63);
}

uint64_t KeyCode(const SORT_KEY& key, nyr::time_detail::MjdReader& mjd)
{
    switch (key.kind) {
    case SORT_KEY::KindNumber: return NumberCode(key.number);
    case SORT_KEY::KindInteger: return static_cast<uint64_t>(key.integer) ^ (uint64_t{1} << 63);
    // CNyrTime compares by MJD: local clock readings, fractions included.
    case SORT_KEY::KindTime: return key.time ? NumberCode(mjd.Mjd(*key.time)) : 0;
    default: return 0;
    }
}

// One row: its keys' codes, complemented for descending keys, and its real
// index.
template <std::size_t K>
struct KeyedRow
{
    std::array<uint64_t, K> code;
    uint32_t real;
};

// Every row's codes, in real order (reversed when the first key descends,
// which is how rows equal on every key stay); false when a key is missing or
// of another kind than the first row's for its column.
template <std::size_t K>
bool ReadKeys(const std::vector<RealItem>& rows, const std::vector<CNyrReportViewItem*>& items, const SortState& keys,
              std::vector<KeyedRow<K>>& out)
{
    std::vector<bool> onScreen(items.size());
    for (RealItem r : rows)
        onScreen[Ix(r)] = true;
    std::array<SORT_KEY::eKind, K> kinds{};
    nyr::time_detail::MjdReader mjd;
    SORT_KEY key;
    out.reserve(rows.size());
    // Items in real order lie in memory mostly in the order they were made.
    for (std::size_t r = 0; r < items.size(); ++r) {
        if (!onScreen[r])
            continue;
        KeyedRow<K> row{};
        for (std::size_t k = 0; k < K; ++k) {
            key.kind = SORT_KEY::KindNone;
            if (!items[r]->OnGetItemSortKey(keys[k].realCol, key) || key.kind == SORT_KEY::KindNone)
                return false;
            if (out.empty())
                kinds[k] = key.kind;
            else if (key.kind != kinds[k])
                return false;
            const uint64_t code = KeyCode(key, mjd);
            row.code[k] = keys[k].ascending ? code : ~code;
        }
        row.real = static_cast<uint32_t>(r);
        out.push_back(row);
    }
    if (keys.front().ascending == 0)
        std::reverse(out.begin(), out.end());
    return true;
}

// A stable least-significant-digit radix sort on the codes, 11 bits a
// pass, from the last key's lowest bits to the first key's highest; a digit
// that every row shares moves nothing and is skipped.
constexpr unsigned kDigitBits = 11, kDigits = (64 + kDigitBits - 1) / kDigitBits;
constexpr uint64_t kDigitMask = (uint64_t{1} << kDigitBits) - 1;

template <std::size_t K>
void RadixSort(std::vector<KeyedRow<K>>& rows)
{
    std::vector<KeyedRow<K>> moved(rows.size());
    std::vector<uint32_t> counts(std::size_t{kDigits} << kDigitBits);
    for (std::size_t k = K; k-- > 0;) {
        std::fill(counts.begin(), counts.end(), 0);
        for (const KeyedRow<K>& row : rows) {
            for (unsigned d = 0; d < kDigits; ++d)
                ++counts[(std::size_t{d} << kDigitBits) + (row.code[k] >> (kDigitBits * d) & kDigitMask)];
        }
        for (unsigned d = 0; d < kDigits; ++d) {
            const auto next = counts.begin() + (std::ptrdiff_t{d} << kDigitBits);
            if (std::find(next, next + (1 << kDigitBits), rows.size()) != next + (1 << kDigitBits))
                continue;
            uint32_t start = 0;
            for (auto n = next; n != next + (1 << kDigitBits); ++n)
                start += std::exchange(*n, start);
            for (const KeyedRow<K>& row : rows)
                moved[next[static_cast<std::ptrdiff_t>(row.code[k] >> (kDigitBits * d) & kDigitMask)]++] = row;
            rows.swap(moved);
        }
    }
}

template <std::size_t K>
bool SortBy(std::vector<RealItem>& rows, const std::vector<CNyrReportViewItem*>& items, const SortState& keys,
            const SortState& state)
{
    std::vector<KeyedRow<K>> keyed;
    if (!ReadKeys<K>(rows, items, keys, keyed))
        return false;
    RadixSort(keyed);
    const auto realAt = [&keyed](std::size_t s) { return keyed[s].real; };
    if (!NeighboursInOrder(keyed.size(), realAt, items, LessRealItem{state}, false))
        return false;
    for (std::size_t s = 0; s < keyed.size(); ++s)
        rows[s] = static_cast<RealItem>(keyed[s].real);
    return true;
}

}  // namespace

bool SortRowsByKeys(std::vector<RealItem>& rows, const std::vector<CNyrReportViewItem*>& items, const SortState& state)
{
    SortState keys;
    for (const CNyrReportView::SORT_STATE_REALCOL& key : state) {
        if (key.realCol == NYR_NO_INDEX)
            break;
        keys.push_back(key);
    }
    switch (keys.size()) {
    case 1: return SortBy<1>(rows, items, keys, state);
    case 2: return SortBy<2>(rows, items, keys, state);
    case 3: return SortBy<3>(rows, items, keys, state);
    default: return false;
    }
}

}  // namespace nyr::views_detail
