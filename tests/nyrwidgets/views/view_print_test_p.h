#pragma once

// Helpers of the printing tests: views to print and the text of a PDF as
// poppler's pdftotext reads it.

#include <gtest/gtest.h>

#include <QFont>
#include <regex>
#include <sstream>
#include <string>
#include <vector>

#include "nyrwidgets/views/view_print_list.h"
#include "tests/nyrwidgets/views/views_test_p.h"
#include "tests/support/temp_dir.h"

namespace nyr::test {

// The pages of a PDF as `pdftotext -layout` lays them out; empty when the
// file cannot be read.
inline std::vector<std::string> PdfPages(const std::string& path)
{
    const ProcessResult r = RunProcess({"/usr/bin/pdftotext", "-layout", "-enc", "UTF-8", path, "-"});
    std::vector<std::string> pages;
    if (r.exitCode != 0)
        return pages;
    // Every page ends with a form feed.
    std::size_t start = 0;
    for (std::size_t ff = r.out.find('\f'); ff != std::string::npos; ff = r.out.find('\f', start)) {
        pages.push_back(r.out.substr(start, ff - start));
        start = ff + 1;
    }
    return pages;
}

inline std::vector<std::string> Lines(const std::string& page)
{
    std::vector<std::string> lines;
    std::istringstream in(page);
    for (std::string line; std::getline(in, line);)
        lines.push_back(line);
    return lines;
}

// The lines of a page that match `pattern` (ECMAScript, searched).
inline int CountLines(const std::string& page, const std::string& pattern)
{
    const std::regex re(pattern);
    int count = 0;
    for (const std::string& line : Lines(page))
        count += std::regex_search(line, re) ? 1 : 0;
    return count;
}

// The point names ("P12") that start the data lines of a page, in order;
// a checked row's name follows its check mark.
inline std::vector<std::string> PointNames(const std::string& page)
{
    static const std::regex row(R"(^\s*(?:✓\s*)?(P\d+)\b)");
    std::vector<std::string> names;
    std::smatch m;
    for (const std::string& line : Lines(page)) {
        if (std::regex_search(line, m, row))
            names.push_back(m[1]);
    }
    return names;
}

// A report view with columns "Point", "East", "North" (numbers right-aligned)
// and `rows` items "P<i>", i * 10, i * 20, in a font of fixed size so that
// page counts do not follow the desktop's font.
inline void FillPoints(CNyrReportView& view, int rows)
{
    view.setFont(QFont(QStringLiteral("DejaVu Sans"), 10));
    view.AddRealCols(std::vector<std::string>{"Point", "East", "North"}, {90, 120, 120},
                     {LVCFMT_LEFT, LVCFMT_RIGHT, LVCFMT_RIGHT});
    for (int i = 0; i < rows; ++i)
        view.AddRealItem(new TextItem({"P" + std::to_string(i), std::to_string(i * 10), std::to_string(i * 20)}));
    view.DisplayRealItems(0);
}

// Print options for `view` into `file`: all rows on A5 portrait, fitted to
// the width, 10 mm margins.
inline CNyrListViewPrint::PRINT_INFO PrintInfo(CNyrListView& view, const std::string& file)
{
    CNyrListViewPrint::PRINT_INFO info;
    info.list = &view;
    info.title = "Survey points";
    info.fileName = file;
    info.pageSize = QPageSize(QPageSize::A5);
    info.marginsMm = QMargins(10, 10, 10, 10);
    return info;
}

// Exports to info.fileName and reads the pages back.
inline std::vector<std::string> ExportPages(const CNyrListViewPrint::PRINT_INFO& info)
{
    std::string error;
    const int pages = NyrExportListViewPdf(info, &error);
    EXPECT_GT(pages, 0) << error;
    std::vector<std::string> text = PdfPages(info.fileName);
    EXPECT_EQ(static_cast<int>(text.size()), pages);
    return text;
}

}  // namespace nyr::test
