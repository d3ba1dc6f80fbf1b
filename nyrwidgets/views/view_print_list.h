#pragma once

#include <QMargins>
#include <QPageSize>
#include <memory>
#include <string>
#include <vector>

#include "nyr/platform/export.h"
#include "nyrwidgets/views/view_print.h"

class CNyrListView;

// The rows of a list or report view as a part of a printout, as the view
// shows them: its columns in display order (hidden ones left out) with their
// labels, alignments and widths, its rows in screen order, all of them or
// only the selected or checked ones (the choice Save As offers). The header
// row heads every page. Cell texts too long for their column are cut with an
// ellipsis; disabled rows print grey; with check boxes, the first column
// starts with a box, ticked on checked rows.
//
// The width of the page decides the layout. Fitting to the page width
// scales the whole table down until it fits (never up). Keeping the widths
// prints the columns that fit on one page and continues the others on the
// following pages, each of those repeating the first column; the pages of
// one run of rows follow each other. A column wider than the page is cut to
// it.
//
// The view must not change between Paginate and the last DrawPage (a row
// that went away is not printed).
class NYR_EXPORT CNyrListViewPrint : public CNyrPrintPart
{
public:
    // Which rows.
    enum ePrintWhat { PrintAll = 0, PrintSelected = 1, PrintChecked = 2 };

    // What to print and how; the view's print commands keep the user's
    // choices in its settings section under the keys named.
    struct PRINT_INFO
    {
        CNyrListView* list = nullptr;
        int printWhat = PrintAll;            // ePrintWhat; "PrintWhat"
        bool fitToWidth = true;              // "PrintFitToWidth"
        bool landscape = false;              // "PrintLandscape"
        QMargins marginsMm{15, 15, 15, 15};  // left, top, right, bottom in mm, 0 to 100; "PrintMargins"
        std::string title;                   // on top of every page
        std::string fileName;                // Export PDF: the file; "PrintPdfFile"
        QPageSize pageSize{QPageSize::A4};   // Export PDF: the paper
        // Parts of the host's own (a plan, say) printed after the rows,
        // each from a new page, under the same page header and footer; not
        // owned: they must outlive the printing.
        std::vector<CNyrPrintPart*> parts;
    };

    // Keeps a copy of `info`; info.list must outlive the part.
    explicit CNyrListViewPrint(const PRINT_INFO& info);
    ~CNyrListViewPrint() override;

    // 0 with NYR_IDS_PRINT_PAGE_TOO_SMALL when the page cannot hold the header row and one row.
    int Paginate(QPaintDevice& device, const QSizeF& body, std::string& error) override;
    void DrawPage(QPainter& painter, int page) override;

    // Whether a screen row is printed: every row, the selected rows, the
    // checked rows (by the view's GetItemState and GetCheck).
    virtual int IsItemToPrint(int screenItem) const;

    // Reads the choices stored in `section`. Each is taken only when it
    // makes sense ("PrintWhat" 0 to 2, the switches 0 or 1, "PrintMargins"
    // four values of 0 to 100, a non-empty file name); anything else leaves
    // the value as the caller set it.
    static void LoadCustomProperties(PRINT_INFO& info, const std::string& section);
    static void StoreCustomProperties(const PRINT_INFO& info, const std::string& section);
    // Sets the device's orientation and margins from `info`; 0 when the
    // margins do not fit the page (the device keeps its old margins).
    static int ApplyPageLayout(const PRINT_INFO& info, QPagedPaintDevice& device);

private:
    struct Private;
    std::unique_ptr<Private> d;
};

// Prints the view on `device` without a dialog: sets the device's
// orientation and margins from `info`, then prints title, rows and the
// host's parts with CNyrPrintout. Returns the number of pages; 0, with the reason in *error,
// when nothing could be printed.
NYR_EXPORT int NyrPrintListView(const CNyrListViewPrint::PRINT_INFO& info, QPagedPaintDevice& device,
                                std::string* error = nullptr);
// Lays out only: sets the device's orientation and margins as
// NyrPrintListView does and returns the number of pages it would print; 0,
// with the reason in *error, when it could print none.
NYR_EXPORT int NyrCountListViewPages(const CNyrListViewPrint::PRINT_INFO& info, QPagedPaintDevice& device,
                                     std::string* error = nullptr);

// Writes the view to the PDF file info.fileName on paper of info.pageSize.
// The file appears whole or not at all: an existing file is replaced only
// once the new one is complete. Returns the number of pages; 0, with the
// reason (NYR_IDS_PRINT_PAGE_TOO_SMALL, NYR_IDS_PRINT_PDF_CANNOT_WRITE, NYR_IDS_PRINT_PRINTER_FAILED) in *error, when
// no file was written.
NYR_EXPORT int NyrExportListViewPdf(const CNyrListViewPrint::PRINT_INFO& info, std::string* error = nullptr);

// The command messages of the print entries in the views' menus, registered
// on first use under the names "WM_NYR_REPORTVIEW_PRINT",
// "WM_NYR_REPORTVIEW_PRINT_PREVIEW" and "WM_NYR_REPORTVIEW_EXPORT_PDF". A list
// or report view sent one runs Print, PrintPreview or ExportPdf.
NYR_EXPORT unsigned int NyrListViewPrintMessage();
NYR_EXPORT unsigned int NyrListViewPrintPreviewMessage();
NYR_EXPORT unsigned int NyrListViewExportPdfMessage();
