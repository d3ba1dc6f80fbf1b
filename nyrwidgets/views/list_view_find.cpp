// Find in list views: the criteria, the search walk and the matching rules.
#include "nyrwidgets/views/list_view_find.h"

#include <QLineEdit>
#include <QString>
#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>

#include "nyr/frame/resource_module.h"
#include "nyr/frame/ui_hooks.h"
#include "nyr/platform/ascii_p.h"
#include "nyr/platform/text_p.h"
#include "nyr/util/profile_entries.h"
#include "nyrwidgets/views/list_view.h"
#include "nyrwidgets/views/list_view_find_dialog.h"

namespace {

constexpr unsigned kMbOk = 0;

bool IsBlank(char c)
{
    return c == ' ' || c == '\t';
}

constexpr std::array<unsigned char, 256> MakeLowerTable()
{
    std::array<unsigned char, 256> table{};
    for (int c = 0; c < 256; ++c)
        table[static_cast<std::size_t>(c)] = static_cast<unsigned char>(c >= 'A' && c <= 'Z' ? c + ('a' - 'A') : c);
    return table;
}
constexpr std::array<unsigned char, 256> kLower = MakeLowerTable();

// The first occurrence of `needle` in `hay` with ASCII letters folded; other
// bytes compare as they are. npos for none. Candidates for the first byte
// are found eight at a time: OR-ing 0x20 folds exactly the two cases of a
// letter, and the zero-byte test flags every byte equal to the pattern (and
// at most some false candidates above one, which the full compare drops).
std::size_t FindFoldedAscii(const std::string& hay, const std::string& needle)
{
    const std::size_t n = needle.size();
    if (n == 0)
        return 0;
    if (n > hay.size())
        return std::string::npos;
    const auto* h = reinterpret_cast<const unsigned char*>(hay.data());
    const auto* s = reinterpret_cast<const unsigned char*>(needle.data());
    const unsigned char first = kLower[s[0]];
    const std::size_t last = hay.size() - n;  // the last possible start
    const auto matchesAt = [&](std::size_t i) {
        std::size_t k = 1;
        while (k < n && kLower[h[i + k]] == kLower[s[k]])
            ++k;
        return k == n;
    };
    constexpr std::uint64_t kOnes = 0x0101010101010101ULL;
    const std::uint64_t fold = first >= 'a' && first <= 'z' ? 0x20 * kOnes : 0;
    const std::uint64_t pattern = first * kOnes;
    std::size_t i = 0;
    for (; i + 8 <= last + 1; i += 8) {
        std::uint64_t word;
        std::memcpy(&word, h + i, 8);
        const std::uint64_t x = (word | fold) ^ pattern;
        std::uint64_t zero = (x - kOnes) & ~x & (0x80 * kOnes);
        while (zero != 0) {
            const std::size_t at = i + static_cast<std::size_t>(__builtin_ctzll(zero)) / 8;
            if (kLower[h[at]] == first && matchesAt(at))
                return at;
            zero &= zero - 1;
        }
    }
    for (; i <= last; ++i) {
        if (kLower[h[i]] == first && matchesAt(i))
            return i;
    }
    return std::string::npos;
}

// Whether any byte is 0x80 or above, eight bytes at a time.
bool HasHighByte(const std::string& text)
{
    const char* p = text.data();
    std::size_t n = text.size();
    std::uint64_t any = 0;
    for (; n >= 8; p += 8, n -= 8) {
        std::uint64_t word;
        std::memcpy(&word, p, 8);
        any |= word;
    }
    std::uint64_t tail = 0;
    std::memcpy(&tail, p, n);
    return ((any | tail) & 0x8080808080808080ULL) != 0;
}

bool HasAsciiLetter(const std::string& text)
{
    return std::any_of(text.begin(), text.end(), [](char c) {
        const char lower = static_cast<char>(c | 0x20);
        return lower >= 'a' && lower <= 'z';
    });
}

// Whether a text is valid UTF-8 (given that it has bytes above 0x7F).
bool IsUtf8(const std::string& text)
{
    const auto* p = reinterpret_cast<const unsigned char*>(text.data());
    const auto* end = p + text.size();
    while (p < end) {
        if (*p < 0x80) {
            ++p;
            continue;
        }
        int more;
        unsigned min;
        if ((*p & 0xE0) == 0xC0)
            more = 1, min = 0x80;
        else if ((*p & 0xF0) == 0xE0)
            more = 2, min = 0x800;
        else if ((*p & 0xF8) == 0xF0)
            more = 3, min = 0x10000;
        else
            return false;
        if (end - p <= more)
            return false;
        unsigned cp = *p & (0x3Fu >> more);
        for (int k = 1; k <= more; ++k) {
            if ((p[k] & 0xC0) != 0x80)
                return false;
            cp = (cp << 6) | (p[k] & 0x3Fu);
        }
        if (cp < min || cp > 0x10FFFF || (cp >= 0xD800 && cp <= 0xDFFF))
            return false;
        p += more + 1;
    }
    return true;
}

std::string Folded(const std::string& text)
{
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size())).toCaseFolded().toStdString();
}

// The word rule on the first occurrence at `pos` of `len` bytes.
bool StandsAsWord(const std::string& text, std::size_t pos, std::size_t len)
{
    const std::size_t end = pos + len;
    return (pos == 0 || IsBlank(text[pos - 1])) && (end == text.size() || IsBlank(text[end]));
}

bool ReadFlag(const std::string& section, const char* entry, int defaultValue)
{
    return static_cast<int>(CNyrProfileEntries::ReadNyrProfileInt(section, entry, defaultValue)) != 0;
}

}  // namespace

// ---------------------------------------------------------------------------
// Matching (the list view's overridable rules)

int CNyrListView::ItemStringMatches(int matchWord, int matchCase, const std::string& searchText,
                                    const std::string& cellText)
{
    std::size_t pos;
    if (matchCase) {
        pos = cellText.find(searchText);
    } else if ((HasHighByte(searchText) || HasHighByte(cellText)) && IsUtf8(searchText) && IsUtf8(cellText)) {
        // Letters beyond ASCII: Unicode case folding of both texts. (Texts
        // that are not UTF-8 fold their ASCII letters only; other bytes
        // compare as they are.)
        const std::string cell = Folded(cellText);
        const std::string search = Folded(searchText);
        pos = cell.find(search);
        return pos != std::string::npos && (!matchWord || StandsAsWord(cell, pos, search.size()));
    } else if (HasAsciiLetter(searchText)) {
        pos = FindFoldedAscii(cellText, searchText);
    } else {
        // Nothing to fold in the search text: the plain search finds the same.
        pos = cellText.find(searchText);
    }
    return pos != std::string::npos && (!matchWord || StandsAsWord(cellText, pos, searchText.size()));
}

int CNyrListView::ItemColumnMatches(int screenItem, int screenCol, const CNyrListViewFind::CSearchCrit& crit)
{
    return ItemStringMatches(crit.matchWord, crit.matchCase, crit.searchString, GetItemText(screenItem, screenCol));
}

int CNyrListView::ItemMatches(int screenItem, const CNyrListViewFind::CSearchCrit& crit)
{
    const int columns = GetColumnCount();
    if (crit.searchAll || crit.column == -1) {
        for (int c = 0; c < columns; ++c) {
            if (ItemColumnMatches(screenItem, c, crit))
                return c;
        }
        return -1;
    }
    if (crit.column < 0 || crit.column >= columns)
        return -1;
    return ItemColumnMatches(screenItem, crit.column, crit) ? crit.column : -1;
}

// ---------------------------------------------------------------------------
// The finder

CNyrListViewFind::CNyrListViewFind(CNyrListView* view) : m_view(view) {}

CNyrListViewFind::~CNyrListViewFind()
{
    if (m_dialog && m_dialog->isVisible())
        StoreDialogOptions();
    delete m_dialog.data();
}

void CNyrListViewFind::SetListView(CNyrListView* view)
{
    if (view == m_view)
        return;
    m_view = view;
    m_lastFound = -1;
    UpdateDialog();
}

CNyrListView* CNyrListViewFind::GetListView() const
{
    return m_view;
}

CNyrListViewFind::CSearchCrit& CNyrListViewFind::StaticSearchCrit()
{
    static CSearchCrit crit;
    return crit;
}

const CNyrListViewFind::CSearchCrit& CNyrListViewFind::SearchCrit()
{
    return StaticSearchCrit();
}

void CNyrListViewFind::SearchCrit(const CSearchCrit& crit)
{
    StaticSearchCrit() = crit;
}

void CNyrListViewFind::ShowFindDialog(unsigned int screenCol)
{
    if (!m_view)
        return;
    if (!m_dialog) {
        // Kept: a view taken apart no longer knows its own class name.
        m_section = m_view->InifileSection();
        LoadCustomProperties(m_section);
        m_dialog = new CNyrListViewFindDialog(this, m_view);
    }
    CSearchCrit& crit = StaticSearchCrit();
    if (screenCol < static_cast<unsigned int>(m_view->GetColumnCount())) {
        crit.searchAll = 0;
        crit.column = static_cast<int>(screenCol);
    }
    m_hiddenByView = false;
    m_dialog->UpdateControls();
    m_dialog->show();
    m_dialog->raise();
    m_dialog->activateWindow();
    m_dialog->SearchEdit()->setFocus();
    m_dialog->SearchEdit()->selectAll();
}

void CNyrListViewFind::HideFindDialog()
{
    if (m_dialog && m_dialog->isVisible()) {
        m_dialog->hide();
        m_hiddenByView = true;
    }
}

int CNyrListViewFind::RestoreFindDialog(int activate)
{
    if (!m_dialog || !m_hiddenByView)
        return 0;
    m_hiddenByView = false;
    m_dialog->UpdateControls();
    if (activate) {
        m_dialog->show();
        m_dialog->raise();
        m_dialog->activateWindow();
    } else {
        // Shown without taking the keyboard from the view.
        m_dialog->setAttribute(Qt::WA_ShowWithoutActivating, true);
        m_dialog->show();
        m_dialog->setAttribute(Qt::WA_ShowWithoutActivating, false);
    }
    return 1;
}

CNyrListViewFindDialog* CNyrListViewFind::GetFindDialog() const
{
    return m_dialog;
}

void CNyrListViewFind::UpdateDialog()
{
    if (m_dialog)
        m_dialog->UpdateControls();
}

int CNyrListViewFind::FindNext(int forward)
{
    CSearchCrit& crit = StaticSearchCrit();
    crit.direction = forward ? 1 : 0;
    // The option decides where this search starts; the state then follows
    // the walk.
    crit.startFromBeginning = crit.searchFromBeginning ? 1 : 0;
    const int row = FindNextMatching(crit);
    crit.searchFromBeginning = row < 0 ? 1 : 0;
    UpdateDialog();
    return row;
}

int CNyrListViewFind::FindNextMatching(CSearchCrit& crit)
{
    const int row = FindNextScreenItem(crit, 1);
    if (row >= 0) {
        m_view->SelectScreenItems({row}, 0);
        m_view->EnsureVisible(row);
    }
    return row;
}

void CNyrListViewFind::MoveFocus(int from, int to)
{
    constexpr unsigned int kBoth = LVIS_FOCUSED | LVIS_SELECTED;
    if (from >= 0 && from != to)
        m_view->SetItemState(from, 0, kBoth);
    m_view->SetItemState(to, kBoth, kBoth);
    m_lastFound = to;
}

int CNyrListViewFind::FindNextScreenItem(CSearchCrit& crit, int showMessage)
{
    if (!m_view || crit.searchString.empty())
        return -1;
    const int rows = m_view->GetItemCount();
    if (rows <= 0)
        return -1;
    const int step = crit.direction ? 1 : -1;
    const int focused = m_view->GetFocusedItem();
    if (focused < 0)
        crit.startFromBeginning = 1;
    int row;
    if (crit.startFromBeginning) {
        row = crit.direction ? 0 : rows - 1;
        MoveFocus(focused, row);
    } else {
        row = focused == m_lastFound ? focused + step : focused;
    }
    for (; row >= 0 && row < rows; row += step) {
        if (m_view->ItemMatches(row, crit) >= 0) {
            crit.startFromBeginning = 0;
            MoveFocus(m_view->GetFocusedItem(), row);
            return row;
        }
    }
    if (showMessage)
        MessageBoxNotFound(crit.startFromBeginning);
    return -1;
}

int CNyrListViewFind::ApplyToMatching(const CSearchCrit& crit, int add,
                                      void (CNyrListView::*apply)(const std::vector<int>&, int))
{
    if (!m_view || crit.searchString.empty())
        return 0;
    std::vector<int> rows;
    for (int r = 0, count = m_view->GetItemCount(); r < count; ++r) {
        if (m_view->ItemMatches(r, crit) >= 0)
            rows.push_back(r);
    }
    (m_view->*apply)(rows, add);
    if (!rows.empty()) {
        m_view->SetItemState(rows.front(), LVIS_FOCUSED, LVIS_FOCUSED);
        m_view->EnsureVisible(rows.front());
    }
    return static_cast<int>(rows.size());
}

int CNyrListViewFind::SelectAllMatching(const CSearchCrit& crit, int add)
{
    return ApplyToMatching(crit, add, &CNyrListView::SelectScreenItems);
}

int CNyrListViewFind::CheckAllMatching(const CSearchCrit& crit, int add)
{
    return ApplyToMatching(crit, add, &CNyrListView::CheckScreenItems);
}

int CNyrListViewFind::GetLastFoundItem() const
{
    return m_lastFound;
}

void CNyrListViewFind::MessageBoxNotFound(int nothingFound)
{
    NyrMessageBox(NyrLoadString(nothingFound ? 26050 : 26051), {}, kMbOk);
}

void CNyrListViewFind::LoadCustomProperties(const std::string& section)
{
    CSearchCrit& crit = StaticSearchCrit();
    crit.searchFromBeginning = ReadFlag(section, CNyrProfileEntries::ListViewFindDialogSearchFromBeginning(), 1);
    crit.matchWord = ReadFlag(section, CNyrProfileEntries::ListViewFindDialogMatchWord(), 0);
    crit.matchCase = ReadFlag(section, CNyrProfileEntries::ListViewFindDialogMatchCase(), 0);
    crit.searchAll = ReadFlag(section, CNyrProfileEntries::ListViewFindDialogSearchAll(), 0);
    if (crit.searchString.empty())
        crit.searchString =
            CNyrProfileEntries::ReadNyrProfileString(section, CNyrProfileEntries::ListViewFindDialogSearchString(), "");
}

void CNyrListViewFind::StoreCustomProperties(const std::string& section) const
{
    const CSearchCrit& crit = StaticSearchCrit();
    CNyrProfileEntries::WriteNyrProfileInt(section, CNyrProfileEntries::ListViewFindDialogSearchFromBeginning(),
                                           crit.searchFromBeginning ? 1 : 0);
    CNyrProfileEntries::WriteNyrProfileInt(section, CNyrProfileEntries::ListViewFindDialogMatchWord(),
                                           crit.matchWord ? 1 : 0);
    CNyrProfileEntries::WriteNyrProfileInt(section, CNyrProfileEntries::ListViewFindDialogMatchCase(),
                                           crit.matchCase ? 1 : 0);
    CNyrProfileEntries::WriteNyrProfileInt(section, CNyrProfileEntries::ListViewFindDialogSearchAll(),
                                           crit.searchAll ? 1 : 0);
    // Blanks at the ends and a pair of enclosing quotes would be lost on
    // reading; one more pair of quotes keeps them.
    std::string text = crit.searchString;
    const bool blankEnds = !text.empty() && (nyr::text::IsProfileBlank(text.front()) || nyr::text::IsProfileBlank(text.back()));
    const bool quoted = text.size() >= 2 && (text.front() == '"' || text.front() == '\'') && text.back() == text.front();
    if (blankEnds || quoted)
        text = '"' + text + '"';
    CNyrProfileEntries::WriteNyrProfileString(section, CNyrProfileEntries::ListViewFindDialogSearchString(), text);
}

void CNyrListViewFind::StoreDialogOptions() const
{
    if (!m_section.empty())
        StoreCustomProperties(m_section);
}
