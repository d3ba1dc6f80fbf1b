#pragma once

#include <QDialog>
#include <memory>
#include <string>
#include <vector>

#include "nyr/platform/export.h"

class CNyrListView;
class QCheckBox;
class QComboBox;
class QLineEdit;
class QRadioButton;

// "Save As..." of a list view: a dialog that asks for the file, its type,
// whether a header line is written and which rows ("All", "Selected",
// "Checked"), and the writer (SaveData) that writes the view's rows to it.
//
// File format, for every type alike: one line per row, "\r\n" at the end of
// each, no byte-order mark, texts as the view holds them (UTF-8). Cells are
// the view's screen columns in display order (hidden columns are not on
// screen and so not written), trimmed of white space at both ends, with
// every delimiter inside a cell replaced (CSV "," -> ";", TXT tab -> ";",
// PRN space -> "_"); nothing is quoted or escaped, and PRN adds no fill to
// line columns up. Cells are joined with the delimiter. A data row always
// has one delimiter per column boundary, so an empty first cell starts the
// line with the delimiter; the header line puts a delimiter only after text,
// so an empty first label shifts the header by one column. That asymmetry is
// intended.
//
// An existing file is replaced (created anew, as an export is a snapshot);
// the dialog asks first (CNyrBrowse::ConfirmReplace). Errors of creating or writing the file
// are shown with the system's text (NyrSystemErrorText) in NyrMessageBox; a
// partly written file stays as it is.
class NYR_EXPORT CNyrListViewSaveAsDlgCV : public QDialog
{
    Q_OBJECT
public:
    // File types: bit values; 3 is not a type.
    enum eFileType { FileTypeCsv = 1, FileTypeTxt = 2, FileTypePrn = 4 };
    // Which rows: every row, the selected rows, the checked rows.
    enum eSaveWhat { SaveAll = 0, SaveSelected = 1, SaveChecked = 2 };

    // Filled by the caller, edited by the dialog.
    struct SAVE_AS_INFO
    {
        bool offerRowChoice = true;  // offer All / Selected / Checked (and load "SaveWhat")
        CNyrListView* list = nullptr;
        bool includeHeader = true;  // "IncludeHeader"
        int saveWhat = SaveAll;     // eSaveWhat; "SaveWhat"
        int userValue = 0;          // the application's own; never read here
        // eFileType. Any other value writes the cells without delimiters.
        int fileType = FileTypeCsv;
        std::string fileName;
    };

    // A column to write: its screen index and its display position.
    struct COL_ORDER
    {
        int index = 0;
        int order = 0;
    };

    // The dialog edits `info`, which must outlive it. Its controls start from
    // `info`.
    explicit CNyrListViewSaveAsDlgCV(SAVE_AS_INFO& info, QWidget* parent = nullptr);
    ~CNyrListViewSaveAsDlgCV() override;

    // Loads the options of `section`, shows the dialog modally and, when the
    // user confirms and the file was written, stores the options. Returns 1
    // when the file was written.
    int Run(const std::string& section);

    // Writes the file (with the wait cursor). 0 for an empty file name, no
    // list, or a failure (shown to the user); 1 when written.
    int SaveData();
    // The columns to write in display order; returns their count.
    int GetColumns(std::vector<COL_ORDER>& columns) const;
    // Build one line, "\r\n" included.
    virtual void GetHeaderData(const std::vector<COL_ORDER>& columns, std::string& line);
    virtual void GetItemData(const std::vector<COL_ORDER>& columns, int screenItem, std::string& line);
    // Whether a screen row is written, by info.saveWhat: all rows, the
    // selected ones, the checked ones; no row for any other value.
    virtual int IsItemToSave(int screenItem);
    // Whether the choices "Selected" and "Checked" make sense: at least one
    // row is selected / checked. The dialog disables them otherwise.
    virtual int GetItemsSelected();
    virtual int GetItemsChecked();
    // Fixes the file type (the choice is disabled) or frees it again.
    void DisableFileTypeCombo(int disable);

    // "IncludeHeader" is taken when stored as 0 or 1; "SaveWhat" only when
    // the row choice is offered and stored as 0, 1 or 2. Anything else
    // leaves the value as the caller set it.
    void LoadCustomProperties(const std::string& section);
    void StoreCustomProperties(const std::string& section);

    SAVE_AS_INFO& Info() const;
    QLineEdit* FileNameEdit() const;
    QComboBox* FileTypeBox() const;
    QCheckBox* HeaderBox() const;
    // eSaveWhat
    QRadioButton* SaveWhatButton(int saveWhat) const;

    // The controls into the info, then (unless the name is empty or the user
    // declines to replace an existing file) SaveData; closes when written.
    void accept() override;

protected:
    void showEvent(QShowEvent* e) override;
    // The delimiter and its replacement of a file type ('\0' for none).
    static char Delimiter(int fileType);
    static char Replacement(int fileType);

private:
    struct Private;
    std::unique_ptr<Private> d;

    void InfoToControls();
    // Enables the row choices that make sense now (GetItemsSelected,
    // GetItemsChecked); a checked choice that does not falls back to all.
    void UpdateRowChoice();
    void ControlsToInfo();
    void Browse();
};
