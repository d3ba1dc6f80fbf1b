// Find in list views: the criteria, the search walk and the matching rules.
#include "nyrwidgets/views/list_view_find.h"

#include <QLineEdit>
#include <QString>
#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <string_view>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

#include "nyr/frame/resource_module.h"
#include "nyr/frame/text_ids.h"
#include "nyr/frame/ui_hooks.h"
#include "nyr/platform/ascii_p.h"
#include "nyr/util/profile_entries.h"
#include "nyrwidgets/views/list_view.h"
#include "nyrwidgets/views/list_view_find_dialog.h"

namespace {

bool IsBlank(char c)
{
    return c == ' ' || c == '\t';
}

// The search looks at up to sixteen bytes of a cell a step. The cells are
// short and made afresh for each search, so a loop that compares byte by
// byte, or a library call per cell, costs more than the search itself
// (bench/views, BM_Find_1M: the engine keeps up with a plain
// std::string::find loop over the same cells). Every read stays inside the
// cell's own bytes: a cell shorter than sixteen is read in overlapping words.

std::uint64_t Load(const char* p, std::size_t bytes)
{
    std::uint64_t word = 0;
    std::memcpy(&word, p, bytes);  // little-endian: byte k is bits 8k..8k+7
    return word;
}

// The first `n` bytes at `p` (n < 16) as two words, byte k of the cell in
// byte k of the pair, zeros after.
inline std::array<std::uint64_t, 2> ShortCell(const char* p, std::size_t n)
{
    const auto byte = [p](std::size_t k) { return static_cast<std::uint64_t>(static_cast<unsigned char>(p[k])); };
    if (n >= 8) {
        // Bytes 8..n-1 are the top n-8 bytes of the word that ends the cell.
        const std::uint64_t tail = n == 8 ? 0 : Load(p + n - 8, 8) >> (8 * (16 - n));
        return {Load(p, 8), tail};
    }
    if (n >= 4)
        return {Load(p, 4) | ((Load(p + n - 4, 4) >> (8 * (8 - n))) << 32), 0};
    if (n > 0)
        return {byte(0) | byte(n / 2) << (8 * (n / 2)) | byte(n - 1) << (8 * (n - 1)), 0};
    return {0, 0};
}

// Up to sixteen bytes of a cell from `at` on, one bit a byte: those whose
// value, with bit 5 set where `fold` is 0x20, equals `first`, and those from
// 0x80 up. Bits past the cell's end are 0 in `high`; in `equal` they are not
// to be used.
struct Chunk
{
    unsigned equal;
    unsigned high;
};

inline Chunk ChunkAt(const std::string& cell, std::size_t at, unsigned char first, unsigned char fold)
{
    const char* p = cell.data() + at;
    const std::size_t n = cell.size() - at;
#if defined(__SSE2__)
    __m128i bytes;
    if (n >= 16) {
        bytes = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p));
    } else {
        const auto words = ShortCell(p, n);
        bytes = _mm_set_epi64x(static_cast<long long>(words[1]), static_cast<long long>(words[0]));
    }
    const __m128i folded = _mm_or_si128(bytes, _mm_set1_epi8(static_cast<char>(fold)));
    return {static_cast<unsigned>(_mm_movemask_epi8(_mm_cmpeq_epi8(folded, _mm_set1_epi8(static_cast<char>(first))))),
            static_cast<unsigned>(_mm_movemask_epi8(bytes))};
#else
    Chunk chunk{0, 0};
    for (std::size_t k = 0; k < 16 && k < n; ++k) {
        const auto byte = static_cast<unsigned char>(p[k]);
        chunk.equal |= static_cast<unsigned>((byte | fold) == first) << k;
        chunk.high |= static_cast<unsigned>(byte >> 7) << k;
    }
    return chunk;
#endif
}

// Bits of the first `n` bytes of a chunk.
unsigned BytesBelow(std::size_t n)
{
    return n >= 16 ? 0xFFFFu : (1u << n) - 1;
}

bool HasHighByte(std::string_view text)
{
    return std::any_of(text.begin(), text.end(), [](char c) { return (static_cast<unsigned char>(c) & 0x80) != 0; });
}

// What one pass over a cell finds: the first occurrence of the search text
// (npos for none), and whether the cell has a byte from 0x80 up.
struct Scan
{
    std::size_t pos = std::string::npos;
    bool high = false;
};

// ASCII letters compare without regard to case; other bytes compare as they
// are. Setting bit 5 folds exactly the two cases of a letter, so one compare
// finds both.
Scan ScanFolded(const std::string& cell, const std::string& search)
{
    const auto same = [](char a, char b) { return nyr::ascii::ToLower(a) == nyr::ascii::ToLower(b); };
    Scan scan;
    if (search.empty())
        scan.pos = 0;
    // An occurrence starts below `starts`.
    const std::size_t starts = search.empty() || search.size() > cell.size() ? 0 : cell.size() - search.size() + 1;
    const auto first = static_cast<unsigned char>(search.empty() ? '\0' : nyr::ascii::ToLower(search[0]));
    const unsigned char fold = first >= 'a' && first <= 'z' ? 0x20 : 0;
    unsigned high = 0;
    for (std::size_t at = 0; at < cell.size(); at += 16) {
        const Chunk chunk = ChunkAt(cell, at, first, fold);
        high |= chunk.high;
        if (scan.pos != std::string::npos || at >= starts)
            continue;
        for (unsigned candidates = chunk.equal & BytesBelow(starts - at); candidates != 0;
             candidates &= candidates - 1) {
            const std::size_t start = at + static_cast<std::size_t>(__builtin_ctz(candidates));
            std::size_t k = 1;
            while (k < search.size() && same(cell[start + k], search[k]))
                ++k;
            if (k == search.size()) {
                scan.pos = start;
                break;
            }
        }
    }
    scan.high = high != 0;
    return scan;
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
    const auto found = [matchWord](const std::string& text, std::size_t pos, std::size_t len) {
        return pos != std::string::npos && (!matchWord || StandsAsWord(text, pos, len));
    };
    // Bytes compare as they are when case matters: the C library's search is
    // the fastest there is for that.
    if (matchCase)
        return found(cellText, cellText.find(searchText), searchText.size());
    const Scan scan = ScanFolded(cellText, searchText);
    if ((scan.high || HasHighByte(searchText)) && IsUtf8(searchText) && IsUtf8(cellText)) {
        // Letters beyond ASCII: Unicode case folding of both texts. (Texts
        // that are not UTF-8 fold their ASCII letters only; other bytes
        // compare as they are.)
        const std::string cell = Folded(cellText);
        const std::string search = Folded(searchText);
        return found(cell, cell.find(search), search.size());
    }
    return found(cellText, scan.pos, searchText.size());
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
    NyrMessageBox(NyrLoadString(nothingFound ? NYR_IDS_FIND_NOT_FOUND : NYR_IDS_FIND_NO_MORE), {}, NYR_MB_OK);
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
    const bool blankEnds = !text.empty() && (nyr::ascii::IsLineBlank(text.front()) || nyr::ascii::IsLineBlank(text.back()));
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
