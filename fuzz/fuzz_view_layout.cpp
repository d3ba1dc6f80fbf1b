// A report view's stored sort state and column layout as a settings file
// holds them. Input: one byte for the number of columns (1 to 8), one for
// which of them are hidden, one for which are deleted, then the texts of
// "SortState", "ColWidth" and "ColOrder", one a line.
// Properties: a refused value leaves the default (no keys, no column
// changed); an accepted one leaves a layout that can be shown, and storing
// that layout and reading it back gives the same layout.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>
#include <vector>

#include "nyr/util/profile_text_p.h"
#include "nyr/views/stored_layout_p.h"

using namespace nyr::detail;

namespace {

constexpr int kMinWidth = 10;

struct Column
{
    bool deleted;
    bool visible;
    int width;
    bool operator==(const Column&) const = default;
};

void Check(bool ok)
{
    if (!ok)
        std::abort();
}

std::vector<int> Values(std::string_view& text)
{
    const std::size_t end = text.find('\n');
    std::vector<int> values;
    ParseIntVector(text.substr(0, end), values);
    text = end == std::string_view::npos ? std::string_view() : text.substr(end + 1);
    return values;
}

// Stored, read back through the text form, as the settings file does.
std::vector<int> ThroughText(const std::vector<int>& values)
{
    std::vector<int> again;
    ParseIntVector(FormatIntVector(values), again);
    return again;
}

void SortState(const std::vector<int>& values, unsigned int columns)
{
    std::vector<StoredSortKey> keys;
    if (!ParseSortState(values, columns, keys)) {
        Check(keys.empty());
        return;
    }
    Check(keys.size() * 2 == values.size());
    for (const StoredSortKey& key : keys)
        Check(key.realCol <= columns && (key.ascending == 0 || key.ascending == 1));
    std::vector<StoredSortKey> again;
    Check(ParseSortState(ThroughText(FormatSortState(keys)), columns, again) && again == keys);
}

// Applies a planned change as the view does (no column vetoes).
std::vector<Column> Apply(std::vector<Column> cols, const std::vector<ColumnAction>& actions)
{
    for (std::size_t c = 0; c < cols.size(); ++c) {
        switch (actions[c].change) {
        case ColumnChange::Delete: cols[c] = {true, false, cols[c].width}; break;
        case ColumnChange::Hide: cols[c].visible = false; break;
        case ColumnChange::Show: cols[c] = {false, true, actions[c].width}; break;
        case ColumnChange::Keep: break;
        }
    }
    return cols;
}

std::vector<Column> Widths(std::vector<int> values, const std::vector<Column>& cols)
{
    const auto columns = static_cast<unsigned int>(cols.size());
    const bool given = !values.empty();
    Check(FillColWidths(values, columns) == given);
    std::vector<ColumnNow> now;
    for (const Column& c : cols)
        now.push_back({c.deleted, c.visible});
    std::vector<ColumnAction> actions;
    if (!PlanColWidths(values, now, kMinWidth, actions)) {
        Check(actions == std::vector<ColumnAction>(cols.size()));
        return cols;
    }
    const std::vector<Column> after = Apply(cols, actions);
    bool anyVisible = false;
    for (std::size_t c = 0; c < after.size(); ++c) {
        Check(!cols[c].deleted || after[c] == cols[c]);
        Check(!after[c].visible || (after[c].width >= kMinWidth && after[c].width <= kStoredWidthMax) ||
              after[c].width == cols[c].width);
        anyVisible = anyVisible || after[c].visible;
    }
    Check(anyVisible);
    // Stored as the view stores it and read back: the same layout.
    std::vector<int> stored;
    for (const Column& c : after)
        stored.push_back(c.deleted ? kStoredWidthDeleted : !c.visible ? kStoredWidthHidden : c.width);
    stored = ThroughText(stored);
    Check(FillColWidths(stored, columns));
    std::vector<ColumnNow> nowAfter;
    for (const Column& c : after)
        nowAfter.push_back({c.deleted, c.visible});
    Check(PlanColWidths(stored, nowAfter, kMinWidth, actions) && Apply(after, actions) == after);
    return after;
}

void Order(std::vector<int> values, const std::vector<Column>& cols)
{
    const auto columns = static_cast<unsigned int>(cols.size());
    Check(FillColOrder(values, columns) && values.size() >= columns);
    std::vector<bool> visible;
    for (const Column& c : cols)
        visible.push_back(c.visible);
    const std::vector<unsigned int> shown = DisplayOrder(values, visible);
    // Every visible column exactly once.
    std::vector<int> seen(cols.size(), 0);
    for (unsigned int c : shown) {
        Check(c < cols.size() && visible[c]);
        ++seen[c];
    }
    for (std::size_t c = 0; c < cols.size(); ++c)
        Check(seen[c] == (visible[c] ? 1 : 0));
    // Stored as the view stores it (a visible column's display position, a
    // hidden one's real index) and read back: the same display order.
    std::vector<int> stored(cols.size());
    for (std::size_t c = 0; c < cols.size(); ++c)
        stored[c] = static_cast<int>(c);
    for (std::size_t v = 0; v < shown.size(); ++v)
        stored[shown[v]] = static_cast<int>(v);
    stored = ThroughText(stored);
    Check(FillColOrder(stored, columns) && DisplayOrder(stored, visible) == shown);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    if (size < 3)
        return 0;
    const unsigned int columns = 1 + (data[0] & 7u);
    std::vector<Column> cols;
    for (unsigned int c = 0; c < columns; ++c) {
        const bool deleted = (data[2] >> c) & 1u;
        cols.push_back({deleted, !deleted && !((data[1] >> c) & 1u), 80});
    }
    std::string_view text(reinterpret_cast<const char*>(data + 3), size - 3);
    SortState(Values(text), columns);
    cols = Widths(Values(text), cols);
    Order(Values(text), cols);
    return 0;
}
