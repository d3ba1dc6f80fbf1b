#include "nyr/views/stored_layout_p.h"

#include <algorithm>
#include <numeric>

namespace nyr::detail {

bool ParseSortState(const std::vector<int>& values, unsigned int columns, std::vector<StoredSortKey>& keys)
{
    keys.clear();
    if (values.empty() || values.size() % 2 != 0)
        return false;
    for (std::size_t i = 0; i < values.size(); i += 2) {
        // A column equal to the column count passes: intended.
        if (values[i] < 0 || static_cast<long long>(values[i]) > static_cast<long long>(columns)) {
            keys.clear();
            return false;
        }
        keys.push_back({static_cast<unsigned int>(values[i]), values[i + 1] != 0 ? 1 : 0});
    }
    return true;
}

std::vector<int> FormatSortState(const std::vector<StoredSortKey>& keys)
{
    std::vector<int> values;
    values.reserve(2 * keys.size());
    for (const StoredSortKey& key : keys) {
        values.push_back(static_cast<int>(key.realCol));
        values.push_back(key.ascending ? 1 : 0);
    }
    return values;
}

bool FillColWidths(std::vector<int>& widths, unsigned int columns)
{
    if (columns == 0 || widths.empty()) {
        widths.clear();
        return false;
    }
    if (widths.size() < columns)
        widths.resize(columns, kStoredWidthNew);
    return true;
}

bool PlanColWidths(const std::vector<int>& widths, const std::vector<ColumnNow>& now, int minWidth,
                   std::vector<ColumnAction>& actions)
{
    actions.assign(now.size(), ColumnAction{});
    bool anyShown = false;
    for (std::size_t c = 0; c < now.size(); ++c) {
        if (now[c].deleted)
            continue;
        const int width = c < widths.size() ? widths[c] : kStoredWidthDeleted - 1;
        if (width == kStoredWidthDeleted) {
            actions[c].change = ColumnChange::Delete;
        } else if (width == kStoredWidthHidden) {
            actions[c].change = ColumnChange::Hide;
        } else if (width >= 0) {
            actions[c] = {ColumnChange::Show, std::clamp(width, minWidth, std::max(minWidth, kStoredWidthMax))};
            anyShown = true;
        } else {
            anyShown = anyShown || now[c].visible;
        }
    }
    // With no column left the view would have no header to bring one back.
    if (!anyShown) {
        actions.assign(now.size(), ColumnAction{});
        return false;
    }
    return true;
}

bool FillColOrder(std::vector<int>& order, unsigned int columns)
{
    if (columns == 0) {
        order.clear();
        return false;
    }
    while (order.size() < columns)
        order.push_back(static_cast<int>(order.size()));
    return true;
}

std::vector<unsigned int> DisplayOrder(const std::vector<int>& order, const std::vector<bool>& visible)
{
    std::vector<unsigned int> shown;
    for (std::size_t c = 0; c < visible.size(); ++c) {
        if (visible[c])
            shown.push_back(static_cast<unsigned int>(c));
    }
    const auto key = [&order](unsigned int c) { return c < order.size() ? order[c] : static_cast<int>(c); };
    std::stable_sort(shown.begin(), shown.end(), [&key](unsigned int a, unsigned int b) { return key(a) < key(b); });
    return shown;
}

}  // namespace nyr::detail
