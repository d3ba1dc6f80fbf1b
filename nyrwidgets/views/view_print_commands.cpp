// The print commands of list and report views: options dialog, then the
// printer's dialog, the print preview or the PDF file.
#include <QPrintDialog>
#include <QPrintPreviewDialog>
#include <QPrinter>
#include <algorithm>

#include "nyr/frame/notifications.h"
#include "nyr/frame/text_ids.h"
#include "nyr/frame/ui_hooks.h"
#include "nyrwidgets/frame/dialog_hook.h"
#include "nyrwidgets/msgbox/message_box_dialog.h"
#include "nyrwidgets/views/report_view.h"
#include "nyrwidgets/views/view_print_dlg.h"
#include "nyrwidgets/views/view_print_p.h"

namespace {

// The options dialog of `mode` on the view's rows under its print title,
// the choices loaded from and stored to the view's settings section. Returns
// 1 when the user confirmed (for a PDF: and the file was written, with its
// pages in `pages`).
int AskOptions(CNyrListView& view, int mode, CNyrListViewPrint::PRINT_INFO& info, int* pages = nullptr)
{
    info.list = &view;
    info.title = view.GetPrintTitle();
    view.OnPrintBegin(info);
    CNyrListViewPrintDlg options(info, mode, &view);
    const int confirmed = options.Run(view.InifileSection());
    if (pages)
        *pages = options.GetPageCount();
    return confirmed;
}

// The printer's dialog and the preview let the user change orientation and
// margins: they go back into the options.
void TakePageLayout(CNyrListViewPrint::PRINT_INFO& info, const QPrinter& printer)
{
    const QPageLayout layout = printer.pageLayout();
    info.landscape = layout.orientation() == QPageLayout::Landscape;
    const QMargins m = layout.margins(QPageLayout::Millimeter).toMargins();
    if (std::min({m.left(), m.top(), m.right(), m.bottom()}) >= 0 &&
        std::max({m.left(), m.top(), m.right(), m.bottom()}) <= 100)
        info.marginsMm = m;
}

void ShowError(const std::string& error, unsigned int captionId)
{
    NyrMessageBox(error, nyr::views_detail::MenuTextAsTitle(captionId), NYR_MB_OK | NYR_MB_ICONERROR);
}

}  // namespace

unsigned int NyrListViewPrintMessage()
{
    static const unsigned int message = NyrRegisterWindowMessage("WM_NYR_REPORTVIEW_PRINT");
    return message;
}

unsigned int NyrListViewPrintPreviewMessage()
{
    static const unsigned int message = NyrRegisterWindowMessage("WM_NYR_REPORTVIEW_PRINT_PREVIEW");
    return message;
}

unsigned int NyrListViewExportPdfMessage()
{
    static const unsigned int message = NyrRegisterWindowMessage("WM_NYR_REPORTVIEW_EXPORT_PDF");
    return message;
}

bool nyr::views_detail::OnPrintCommand(CNyrListView& view, unsigned int message)
{
    if (message == 0)
        return false;
    if (message == NyrListViewPrintMessage())
        view.Print();
    else if (message == NyrListViewPrintPreviewMessage())
        view.PrintPreview();
    else if (message == NyrListViewExportPdfMessage())
        view.ExportPdf();
    else
        return false;
    return true;
}

int CNyrListView::Print()
{
    CNyrListViewPrint::PRINT_INFO info;
    if (!AskOptions(*this, CNyrListViewPrintDlg::ModePrint, info))
        return 0;
    QPrinter printer(QPrinter::HighResolution);
    printer.setDocName(QString::fromStdString(info.title));
    CNyrListViewPrint::ApplyPageLayout(info, printer);
    QPrintDialog dialog(&printer, this);
    // The rows are chosen in the options; the printout is printed whole.
    dialog.setOption(QAbstractPrintDialog::PrintPageRange, false);
    dialog.setOption(QAbstractPrintDialog::PrintCurrentPage, false);
    dialog.setOption(QAbstractPrintDialog::PrintSelection, false);
    if (NyrExecDialog(dialog) != QDialog::Accepted)
        return 0;
    TakePageLayout(info, printer);
    CNyrListViewPrint::StoreCustomProperties(info, InifileSection());
    std::string error;
    const int pages = NyrPrintListView(info, printer, &error);
    if (pages == 0)
        ShowError(error, NYR_IDS_MENU_PRINT);
    return pages;
}

int CNyrListView::PrintPreview()
{
    CNyrListViewPrint::PRINT_INFO info;
    if (!AskOptions(*this, CNyrListViewPrintDlg::ModePreview, info))
        return 0;
    QPrinter printer(QPrinter::HighResolution);
    // A layout that fails is told before the preview, not as empty pages.
    std::string error;
    if (NyrCountListViewPages(info, printer, &error) == 0) {
        ShowError(error, NYR_IDS_MENU_PRINT_PREVIEW);
        return 0;
    }
    QPrintPreviewDialog preview(&printer, this);
    connect(&preview, &QPrintPreviewDialog::paintRequested, this, [&info, &error](QPrinter* target) {
        TakePageLayout(info, *target);
        NyrPrintListView(info, *target, &error);
    });
    NyrExecDialog(preview);
    CNyrListViewPrint::StoreCustomProperties(info, InifileSection());
    if (!error.empty())
        ShowError(error, NYR_IDS_MENU_PRINT_PREVIEW);
    return 1;
}

int CNyrListView::ExportPdf()
{
    // The dialog writes the file.
    CNyrListViewPrint::PRINT_INFO info;
    int pages = 0;
    return AskOptions(*this, CNyrListViewPrintDlg::ModePdf, info, &pages) ? pages : 0;
}

void CNyrListView::OnPrintBegin(CNyrListViewPrint::PRINT_INFO&)
{
}
