#pragma once

#include <QIcon>
#include <QTableView>
#include <memory>
#include <string>
#include <vector>

#include "nyr/platform/export.h"
#include "nyrwidgets/views/list_ctrl.h"
#include "nyrwidgets/views/list_view_find.h"
#include "nyrwidgets/views/list_view_save_as_dlg_cv.h"
#include "nyrwidgets/views/view_print_list.h"

class CNyrHeaderCtrlSort;

// A report-style list: rows of cells under a header of columns, the base of
// the library's views. Used on its own it is a plain list control: the
// application inserts columns and rows of texts (InsertColumn, InsertItem,
// SetItemText, ...) and the view sorts them by text on a header click.
// CNyrReportView builds on it with a model of real items and columns instead.
//
// Everything here speaks in screen indexes: a row's position on screen (which
// changes with sorting) and a column's index in the header (its position in
// the display order is GetColumnOrder).
//
// Every list view can search its rows (GetFind): Ctrl+F opens the find
// dialog, F3 and Shift+F3 repeat the search forward and backward without it.
// It writes its rows to a text file (SaveAs). Both are reached through the
// command messages WM_NYR_REPORTVIEW_FIND, ..._FIND_NEXT, ..._FIND_PREV and
// ..._SAVE_AS as well. It prints its rows, shows them in a print preview and
// writes them to a PDF file (Print, PrintPreview, ExportPdf; Ctrl+P prints).
class NYR_EXPORT CNyrListView : public QTableView
{
    Q_OBJECT
public:
    // One key of a sort state in screen columns. A column of NYR_NO_INDEX
    // ends the state early wherever it stands.
    struct SORT_STATE_SCREENCOL
    {
        unsigned int screenCol = 0;
        int ascending = 1;  // non-zero: ascending
    };

    explicit CNyrListView(QWidget* parent = nullptr);
    ~CNyrListView() override;

    // ---- Rows and columns on screen (every kind of list view) ----

    virtual int GetItemCount() const;
    virtual int GetColumnCount() const;
    // A cell's text; empty outside the list.
    virtual std::string GetItemText(int screenItem, int screenCol) const;
    // A column's label; empty outside the list.
    virtual std::string GetColumnLabel(int screenCol) const;
    // A column's position in the display order; -1 outside the list.
    int GetColumnOrder(int screenCol) const;

    // LVIS_FOCUSED and LVIS_SELECTED bits of a row (within `mask`).
    virtual unsigned int GetItemState(int screenItem, unsigned int mask) const;
    // Sets the bits of `mask` to those of `state`. Selecting a row that
    // cannot be selected is ignored. Returns 0 for a row outside the list.
    virtual int SetItemState(int screenItem, unsigned int state, unsigned int mask);
    // The check mark of a row (check boxes on).
    virtual int GetCheck(int screenItem) const;
    virtual int SetCheck(int screenItem, int check);
    // The focused row, -1 for none.
    int GetFocusedItem() const;
    // Scrolls the row into view.
    void EnsureVisible(int screenItem);

    CNyrHeaderCtrlSort* GetHeaderCtrl() const;

    // A check box in the first column of every row.
    void SetCheckBoxes(bool on);
    bool HasCheckBoxes() const;

    // Images that cells refer to by index.
    void SetImageList(std::vector<QIcon> images);
    const std::vector<QIcon>& GetImageList() const;

    // The section of the settings file that holds this view's settings. The
    // default is the view's class name (the most derived class that declares
    // Q_OBJECT), so set it when one class serves several views.
    void SetInifileSection(const std::string& section);
    std::string InifileSection() const;

    // ---- Notification switches ----
    // The list view keeps the select and check switches; the report view adds
    // its own and extends the "all" operations to them.

    void SetSuppressSelectNotifications(bool suppress);
    bool GetSuppressSelectNotifications() const;
    void SetSuppressCheckNotifications(bool suppress);
    bool GetSuppressCheckNotifications() const;
    virtual void SetSuppressAllNotifications(bool suppress);
    virtual bool GetSuppressAllNotifications() const;
    // One saved copy (not a stack): a second save overwrites the first.
    virtual void SaveAllSuppressNotifications();
    // Puts back what the last save kept and forgets it; 0 (and nothing
    // changes) when nothing is saved.
    virtual int RestoreAllSuppressNotifications();

    // ---- Sorting ----

    // Replaces the sort state and reorders the rows. The plain list compares
    // rows with OnCompareItems; rows that compare equal keep their order.
    virtual void SortList(const std::vector<SORT_STATE_SCREENCOL>& state);
    void GetSortState(std::vector<SORT_STATE_SCREENCOL>& state) const;
    // Three-way comparison of two rows on a column, by their texts in byte
    // order, case-sensitive. The rows are the positions the two had when the
    // sort began.
    virtual int OnCompareItems(int item1, int item2, unsigned int screenCol);

    // ---- The plain list control (not for report views: there these do
    // nothing and report failure) ----

    // Inserts a column before `screenCol` (at the end when past it); returns
    // its index or -1.
    int InsertColumn(int screenCol, const std::string& label, int alignment = LVCFMT_LEFT, int width = 80);
    int DeleteColumn(int screenCol);
    // Inserts a row with `text` in the first column before `screenItem` (at
    // the end when past it); returns its index or -1. The sort state is not
    // applied to it.
    int InsertItem(int screenItem, const std::string& text);
    int SetItemText(int screenItem, int screenCol, const std::string& text);
    int DeleteItem(int screenItem);
    int DeleteAllItems();
    // A value of the application's own per row (0 for a new row).
    int SetItemData(int screenItem, quintptr value);
    quintptr GetItemData(int screenItem) const;
    // The first row holding `value`, -1 when none does.
    int FindItemByData(quintptr value) const;

    // Selects exactly (or, with `keepOthers`, also) these rows, as the user
    // would: rows that cannot be selected stay unselected.
    virtual void SelectScreenItems(const std::vector<int>& screenItems, int keepOthers);
    // Checks exactly (or, with `keepOthers`, also) these rows.
    virtual void CheckScreenItems(const std::vector<int>& screenItems, int keepOthers);

    // ---- Find ----

    // The view's finder.
    CNyrListViewFind& GetFind();
    // These forward to the finder.
    void ShowFindDialog(unsigned int screenCol = NYR_NO_INDEX);
    void HideFindDialog();
    int RestoreFindDialog(int activate);
    int FindNext(int forward);
    // The first screen column (from column 0 up) whose cell matches, or -1.
    // With crit.searchAll set or crit.column -1 every column is tried,
    // otherwise crit.column alone.
    virtual int ItemMatches(int screenItem, const CNyrListViewFind::CSearchCrit& crit);
    // Whether the cell matches: its text (GetItemText) through
    // ItemStringMatches with the criteria's word and case options.
    virtual int ItemColumnMatches(int screenItem, int screenCol, const CNyrListViewFind::CSearchCrit& crit);
    // Whether `searchText` occurs in `cellText`. Without matchCase both are
    // folded to one letter case (ASCII letters directly, other letters by
    // Unicode case folding). With matchWord the first occurrence must also
    // start the cell or follow a space or tab, and end the cell or be
    // followed by a space or tab. Only space and tab separate words, not
    // punctuation, and only the first occurrence is tried: a later one that
    // would stand as a word does not count. Both intended.
    virtual int ItemStringMatches(int matchWord, int matchCase, const std::string& searchText,
                                  const std::string& cellText);

    // ---- Save as ----

    // Asks for a file with the save-as dialog (its options loaded from and
    // stored to the view's settings section) and writes the rows to it.
    // Returns 1 when the file was written.
    virtual int SaveAs();
    // Called by SaveAs before the dialog opens, with what it starts from: a
    // host sets a default file name here (info.fileName; an absolute one
    // names the folder too, where browsing starts). The default does nothing.
    virtual void OnSaveAsBegin(CNyrListViewSaveAsDlgCV::SAVE_AS_INFO& info);

    // ---- Printing ----

    // The title on top of every printed page; empty (the default): the title
    // of the view's window.
    void SetPrintTitle(const std::string& title);
    std::string GetPrintTitle() const;
    // Ctrl+P and the menus' "&Print", "Print Previe&w..." and "E&xport
    // PDF...": the print options (CNyrListViewPrintDlg, its choices loaded
    // from and stored to the view's settings section), then the printer's
    // dialog, the print preview or the PDF file. Failures are shown to the
    // user. Print and ExportPdf return the number of pages printed, 0 when
    // nothing was; PrintPreview returns 1 when the preview was shown.
    virtual int Print();
    virtual int PrintPreview();
    virtual int ExportPdf();
    // Called by those three before the print options open: a host appends
    // parts of its own to info.parts (CNyrPlanViewPrint: the plan on a page
    // after the rows) and may set a default PDF file name (info.fileName);
    // the choices the user made last (stored in the settings section) win
    // over defaults set here. The default does nothing.
    virtual void OnPrintBegin(CNyrListViewPrint::PRINT_INFO& info);

protected:
    // For views that bring their own model instead of the plain list (null:
    // the derived view sets it with setModel once it is built).
    CNyrListView(QWidget* parent, QAbstractItemModel* model);

    // A click on a column header: sorts by that column, ascending, or inverts
    // the direction when the state is that column alone. Never back to
    // unsorted.
    virtual void OnHeaderClick(int screenCol);
    // Whether a save is waiting for RestoreAllSuppressNotifications.
    bool HasSavedSuppressNotifications() const;
    // Shows the state's marks on the header (entries past the header's
    // columns are skipped).
    void ShowSortMarks(const std::vector<SORT_STATE_SCREENCOL>& state);

    // The find and save-as command messages.
    bool event(QEvent* e) override;
    // Ctrl+F, F3, Shift+F3.
    void keyPressEvent(QKeyEvent* e) override;

private:
    struct Private;
    std::unique_ptr<Private> d;
    void Init(QAbstractItemModel* model);
};
