#pragma once

// The two ways of printing a report view to a PDF that the print benchmarks
// compare: the library's printout, and the usual Qt way, the view's cell
// texts as an HTML table in a QTextDocument printed with
// QTextDocument::print.

#include <QPrinter>
#include <QTextDocument>
#include <memory>
#include <string>

#include "bench/views/bench_items_p.h"
#include "nyrwidgets/views/view_print_list.h"

namespace nyr::bench {

// A view of `rows` benchmark items (six columns), displayed.
inline std::unique_ptr<CNyrReportView> MakeView(int rows)
{
    auto view = std::make_unique<CNyrReportView>();
    AddColumns(*view);
    for (const Row& r : MakeRows(rows))
        view->AddRealItem(new BenchItem(r));
    view->DisplayRealItems(0);
    return view;
}

// A PDF printer on A4, high resolution, writing `file`.
inline void SetUpPrinter(QPrinter& printer, const std::string& file)
{
    printer.setOutputFormat(QPrinter::PdfFormat);
    printer.setPageSize(QPageSize(QPageSize::A4));
    printer.setOutputFileName(QString::fromStdString(file));
}

// Every row through the library's printout; the number of pages.
inline int PrintOurs(CNyrReportView& view, QPrinter& printer)
{
    CNyrListViewPrint::PRINT_INFO info;
    info.list = &view;
    info.title = "Benchmark";
    return NyrPrintListView(info, printer);
}

// The view's header and cells as an HTML table whose header row repeats on
// every page (<thead>).
inline QString HtmlTable(const CNyrReportView& view)
{
    const int rows = view.GetItemCount();
    const int cols = view.GetColumnCount();
    QString html;
    html.reserve(rows * 200);
    html += QStringLiteral("<table cellspacing=\"0\" cellpadding=\"2\"><thead><tr>");
    for (int c = 0; c < cols; ++c)
        html += QStringLiteral("<th>") + QString::fromStdString(view.GetColumnLabel(c)).toHtmlEscaped() +
                QStringLiteral("</th>");
    html += QStringLiteral("</tr></thead><tbody>");
    for (int r = 0; r < rows; ++r) {
        html += QStringLiteral("<tr>");
        for (int c = 0; c < cols; ++c)
            html += QStringLiteral("<td>") + QString::fromStdString(view.GetItemText(r, c)).toHtmlEscaped() +
                    QStringLiteral("</td>");
        html += QStringLiteral("</tr>");
    }
    html += QStringLiteral("</tbody></table>");
    return html;
}

// Every row as an HTML table through QTextDocument; the number of pages.
inline int PrintTheirs(const CNyrReportView& view, QPrinter& printer)
{
    QTextDocument document;
    document.setDefaultFont(view.font());
    document.setHtml(HtmlTable(view));
    document.print(&printer);
    return document.pageCount();
}

}  // namespace nyr::bench
