#pragma once

#include <memory>
#include <string>

#include "nyr/platform/export.h"
#include "nyrwidgets/app/dialog.h"
#include "nyrwidgets/views/view_print_list.h"

class QLineEdit;
class QRadioButton;
class QSpinBox;

// The print options of a list view: which rows ("All", "Selected",
// "Checked"), fit to the page width or keep the column widths, portrait or
// landscape, the four margins; for a PDF export also the file, written when
// the user confirms. Choices that make no sense now (selected rows when none
// is selected) are disabled. A library dialog (CNyrDialog): its position and
// size are kept in the section "CNyrListViewPrintDlg".
class NYR_EXPORT CNyrListViewPrintDlg : public CNyrDialog
{
    Q_OBJECT
public:
    // What follows the dialog: the printer's dialog, the print preview, or
    // the PDF file (the dialog writes it).
    enum eMode { ModePrint = 0, ModePreview = 1, ModePdf = 2 };
    // Margin sides, in the order of QMargins.
    enum eSide { SideLeft = 0, SideTop = 1, SideRight = 2, SideBottom = 3 };

    // The dialog edits `info`, which must outlive it; info.list must be set.
    CNyrListViewPrintDlg(CNyrListViewPrint::PRINT_INFO& info, int mode, QWidget* parent = nullptr);
    ~CNyrListViewPrintDlg() override;

    // Loads the choices stored in `section`, shows the dialog modally and,
    // when the user confirms (and, for a PDF, the file was written), stores
    // them. Returns 1 then, else 0.
    int Run(const std::string& section);

    // The pages of the PDF the dialog wrote; 0 when it wrote none.
    int GetPageCount() const;

    QRadioButton* PrintWhatButton(int printWhat) const;
    QRadioButton* FitToWidthButton(bool fit) const;
    QRadioButton* LandscapeButton(bool landscape) const;
    QSpinBox* MarginBox(int side) const;
    // Null unless the mode is ModePdf.
    QLineEdit* FileNameEdit() const;

protected:
    // OK: the controls into the info. For a PDF: an empty name is refused
    // (NYR_IDS_FILE_NAME_EMPTY), ".pdf" is added to a name without an extension, replacing an
    // existing file is asked first (CNyrBrowse::ConfirmReplace), and the file
    // is written; a failure is shown and the dialog stays open.
    bool OnOK() override;
    void showEvent(QShowEvent* e) override;

private:
    struct Private;
    std::unique_ptr<Private> d;

    void InfoToControls();
    void ControlsToInfo();
    // Enables "Selected" and "Checked" only when some row is; a disabled
    // choice that was set falls back to all rows.
    void UpdateRowChoice();
    bool WritePdf();
    void Browse();
};
