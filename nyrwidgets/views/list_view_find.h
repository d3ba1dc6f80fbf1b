#pragma once

#include <QPointer>
#include <string>
#include <vector>

#include "nyr/platform/export.h"
#include "nyrwidgets/views/list_ctrl.h"

class CNyrListView;
class CNyrListViewFindDialog;

// The search engine of a list view: one per view (CNyrListView::GetFind),
// walking the view's screen rows for a text. What is searched for lives in
// one record for the whole process (StaticSearchCrit), so a text typed in
// one view is the text of every view; the finder keeps only its view, its
// dialog and the row it found last.
//
// A search walks from its start row in one direction, one row at a time, and
// ends at the first matching row or at the end of the list: there is no
// wrap-around within one search. A search that found nothing sets the
// search-from-beginning option, so the next Find Next starts at the first
// (or, backward, the last) row again.
//
// Matching is the view's (CNyrListView::ItemMatches, ItemColumnMatches,
// ItemStringMatches), so a view can widen or narrow it.
class NYR_EXPORT CNyrListViewFind
{
public:
    // The search criteria. A fresh record holds the values given here.
    struct CSearchCrit
    {
        int matchWord = 0;            // the text must stand as a word (between blanks)
        int matchCase = 0;            // letter case counts
        int direction = 1;            // non-zero: forward ("Find Next"), 0: backward ("Find Previous")
        int searchFromBeginning = 1;  // the option (the dialog's check box): FindNext starts at the first row
        int startFromBeginning = 1;   // the state: this search starts at the first / last row; a match clears it
        int searchAll = 1;            // every column; otherwise `column` only
        std::string searchString;     // empty: nothing is ever found
        int column = 0;               // screen column searched without searchAll; -1 means all columns
    };

    explicit CNyrListViewFind(CNyrListView* view = nullptr);
    virtual ~CNyrListViewFind();
    CNyrListViewFind(const CNyrListViewFind&) = delete;
    CNyrListViewFind& operator=(const CNyrListViewFind&) = delete;

    void SetListView(CNyrListView* view);
    CNyrListView* GetListView() const;

    // The process-wide criteria, created on first use, alive until the
    // process ends.
    static CSearchCrit& StaticSearchCrit();
    static const CSearchCrit& SearchCrit();
    static void SearchCrit(const CSearchCrit& crit);

    // ---- The dialog ----

    // Opens the modeless find dialog (creating it the first time, with the
    // options stored in the view's settings section) and gives it the
    // keyboard. `screenCol` below the view's column count makes that column
    // the one searched; anything else keeps the criteria's choice.
    void ShowFindDialog(unsigned int screenCol = NYR_NO_INDEX);
    // Hides an open dialog and remembers that it was open.
    void HideFindDialog();
    // Shows the dialog again when HideFindDialog hid it (with `activate`,
    // also giving it the keyboard). Returns 1 when it was shown.
    int RestoreFindDialog(int activate);
    // Null until the dialog is first opened.
    CNyrListViewFindDialog* GetFindDialog() const;
    // Brings the open dialog's controls up to the criteria.
    void UpdateDialog();

    // ---- Searching ----

    // Find Next (`forward` non-zero) or Find Previous on the process-wide
    // criteria: the search starts at the beginning when the
    // search-from-beginning option is on; afterwards the option is off when a
    // row was found and on when none was. Returns the row found or -1.
    int FindNext(int forward);
    // FindNextScreenItem with the message; the row found becomes the only
    // selected row and is scrolled into view. Returns it, or -1.
    int FindNextMatching(CSearchCrit& crit);
    // The search proper, in screen rows. -1 at once (and no message) for no
    // view, an empty search text or an empty list. Start: the first row
    // forward or the last backward while crit.startFromBeginning is set, and
    // when no row is focused (that row is then focused, selected and
    // remembered, the previously focused one deselected); else the focused
    // row, or the row after it in the search direction when it is the row
    // found last (none before row 0: not found). The first matching row gets
    // focus and selection from the previously focused row, clears
    // crit.startFromBeginning, is remembered and returned. Nothing found: with
    // `showMessage`, MessageBoxNotFound(crit.startFromBeginning), and -1.
    int FindNextScreenItem(CSearchCrit& crit, int showMessage);
    // Selects (checks) every matching row. With `add` 0 the other rows are
    // deselected (unchecked); with `add` non-zero they stay as they are. The
    // first matching row is focused and scrolled into view. Returns the
    // number of matching rows; 0 (and nothing changes) for an empty text.
    int SelectAllMatching(const CSearchCrit& crit, int add);
    int CheckAllMatching(const CSearchCrit& crit, int add);
    // The row the last search found (or started on), -1 for none.
    int GetLastFoundItem() const;

    // Shows NYR_IDS_FIND_NOT_FOUND "... The search item was not found." when `nothingFound`,
    // else NYR_IDS_FIND_NO_MORE "... No more matches found.", with an OK button.
    virtual void MessageBoxNotFound(int nothingFound);

    // ---- Settings ----

    // Reads "SearchFromBeginning" (default 1), "MatchWord" (0), "MatchCase"
    // (0), "SearchAll" (0) and "SearchString" (empty) of `section` into the
    // process-wide criteria; a non-zero number is on. The search text is
    // taken only while the process-wide one is empty, so that a text typed in
    // one view stays the text of all views.
    void LoadCustomProperties(const std::string& section);
    // Writes the same five values. A search text with blanks at either end is
    // written between double quotes, which the settings store removes on
    // reading, so it reads back as typed.
    void StoreCustomProperties(const std::string& section) const;

private:
    friend class CNyrListViewFindDialog;

    CNyrListView* m_view;
    QPointer<CNyrListViewFindDialog> m_dialog;
    std::string m_section;  // the view's settings section when the dialog was made
    int m_lastFound = -1;
    bool m_hiddenByView = false;

    void MoveFocus(int from, int to);
    // Selects or checks (`apply`) the matching rows; focuses the first.
    int ApplyToMatching(const CSearchCrit& crit, int add,
                        void (CNyrListView::*apply)(const std::vector<int>&, int));
    // The dialog's options into the section they were loaded from.
    void StoreDialogOptions() const;
};
