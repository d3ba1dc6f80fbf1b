// The rows of a list view as a part of a printout: columns, bands of
// columns, runs of rows per page, and the drawing of one page.
#include "nyrwidgets/views/view_print_list.h"

#include <QAbstractItemModel>
#include <QFontMetricsF>
#include <QPagedPaintDevice>
#include <QPainter>
#include <QPdfWriter>
#include <QSaveFile>
#include <algorithm>
#include <cmath>
#include <optional>
#include <vector>

#include "nyr/frame/resource_module.h"
#include "nyr/frame/text_ids.h"
#include "nyr/platform/string_format.h"
#include "nyr/util/profile_entries.h"
#include "nyrwidgets/views/list_ctrl.h"
#include "nyrwidgets/views/list_view.h"

namespace {

// A column as printed; lengths in device pixels of the unscaled table.
struct Column
{
    int screenCol = 0;
    double width = 0;
    Qt::Alignment align = Qt::AlignLeft;
    QString label;
};

// A column's place in a band of columns printed on one page.
struct Placed
{
    std::size_t column = 0;  // index into the columns
    double x = 0;
    double width = 0;
};

constexpr QRgb kDisabledText = 0xFF808080;

bool IsBreak(QChar c)
{
    return c == QLatin1Char('\t') || c == QLatin1Char('\n') || c == QLatin1Char('\r');
}

// Tabs and line breaks would not print as the screen shows them.
QString OneLine(QString text)
{
    if (std::any_of(text.cbegin(), text.cend(), IsBreak))
        std::replace_if(text.begin(), text.end(), IsBreak, QLatin1Char(' '));
    return text;
}

// The view's font in points: a font sized in pixels would print at the
// device's pixel size, tiny.
QFont PrintFont(const CNyrListView& list)
{
    QFont font = list.font();
    if (font.pointSizeF() <= 0)
        font.setPointSizeF(font.pixelSize() * 72.0 / std::max(1, list.logicalDpiY()));
    return font;
}

}  // namespace

struct CNyrListViewPrint::Private
{
    PRINT_INFO info;
    QFont font;
    QFont bold;
    std::optional<QFontMetricsF> fm;      // of font on the device
    std::optional<QFontMetricsF> boldFm;  // of bold on the device
    std::vector<Column> columns;          // display order
    std::vector<std::vector<Placed>> bands;
    double scale = 1;     // of the whole table, to fit the page width
    double pad = 0;       // between a cell's edge and its text
    double rowHeight = 0;
    double headerHeight = 0;
    double checkSize = 0;  // side of a check box; 0 without check boxes
    int rowsPerPage = 0;
    int rowCount = 0;                // screen rows when laid out
    std::vector<int> blockStart;     // per run of rows: the screen row it starts at

    void Measure(QPaintDevice& device);
    void CollectColumns(QPaintDevice& device);
    void LayOutBands(double width);
    void CountRows(const CNyrListViewPrint& part);
    void DrawHeader(QPainter& painter, const std::vector<Placed>& band) const;
    void DrawRow(QPainter& painter, const std::vector<Placed>& band, int row, double top) const;
    void DrawCell(QPainter& painter, const QFontMetricsF& metrics, QString text, double x, double width,
                  Qt::Alignment align, double baseline) const;
    void DrawCheck(QPainter& painter, double x, double top, bool checked) const;
};

void CNyrListViewPrint::Private::Measure(QPaintDevice& device)
{
    font = PrintFont(*info.list);
    bold = font;
    bold.setBold(true);
    fm.emplace(font, &device);
    boldFm.emplace(bold, &device);
    pad = fm->averageCharWidth() / 2;
    const double space = fm->height() * 0.15;
    rowHeight = fm->height() + 2 * space;
    headerHeight = boldFm->height() + 3 * space;
    checkSize = info.list->HasCheckBoxes() ? fm->ascent() : 0;
}

void CNyrListViewPrint::Private::CollectColumns(QPaintDevice& device)
{
    columns.clear();
    const CNyrListView& list = *info.list;
    const double toDevice = static_cast<double>(device.logicalDpiX()) / std::max(1, list.logicalDpiX());
    std::vector<std::pair<int, Column>> ordered;
    for (int c = 0, count = list.GetColumnCount(); c < count; ++c) {
        if (list.isColumnHidden(c))
            continue;
        Column column;
        column.screenCol = c;
        column.width = list.columnWidth(c) * toDevice;
        column.align = Qt::Alignment(list.model()->headerData(c, Qt::Horizontal, Qt::TextAlignmentRole).toInt()) &
                       Qt::AlignHorizontal_Mask;
        column.label = OneLine(QString::fromStdString(list.GetColumnLabel(c)));
        ordered.emplace_back(list.GetColumnOrder(c), std::move(column));
    }
    std::stable_sort(ordered.begin(), ordered.end(),
                     [](const auto& a, const auto& b) { return a.first < b.first; });
    for (auto& entry : ordered)
        columns.push_back(std::move(entry.second));
}

void CNyrListViewPrint::Private::LayOutBands(double width)
{
    bands.clear();
    scale = 1;
    double total = 0;
    for (const Column& c : columns)
        total += c.width;
    if (info.fitToWidth || total <= width) {
        if (total > width)
            scale = width / total;
        bands.emplace_back();
        double x = 0;
        for (std::size_t i = 0; i < columns.size(); ++i) {
            bands.back().push_back({i, x, columns[i].width});
            x += columns[i].width;
        }
        return;
    }
    // The first band from the first column on; each further band repeats the
    // first column (at most a third of the page) and holds at least one
    // column, cut to the page when it is wider.
    const double repeat = std::min(columns.front().width, width / 3);
    std::size_t next = 0;
    while (next < columns.size()) {
        std::vector<Placed> band;
        double x = 0;
        if (next > 0) {
            band.push_back({0, 0, repeat});
            x = repeat;
        }
        do {
            band.push_back({next, x, std::min(columns[next].width, width - x)});
            x += columns[next].width;
            ++next;
        } while (next < columns.size() && x + columns[next].width <= width);
        bands.push_back(std::move(band));
    }
}

void CNyrListViewPrint::Private::CountRows(const CNyrListViewPrint& part)
{
    blockStart.clear();
    rowCount = info.list->GetItemCount();
    int printed = 0;
    for (int row = 0; row < rowCount; ++row) {
        if (!part.IsItemToPrint(row))
            continue;
        if (printed % rowsPerPage == 0)
            blockStart.push_back(row);
        ++printed;
    }
    // No row: one page with the header row alone.
    if (blockStart.empty())
        blockStart.push_back(rowCount);
}

void CNyrListViewPrint::Private::DrawHeader(QPainter& painter, const std::vector<Placed>& band) const
{
    painter.setFont(bold);
    painter.setPen(Qt::black);
    const double baseline = (headerHeight - boldFm->height()) / 2 + boldFm->ascent();
    double right = 0;
    for (const Placed& p : band) {
        const Column& c = columns[p.column];
        DrawCell(painter, *boldFm, c.label, p.x + pad, p.width - 2 * pad, c.align, baseline);
        right = std::max(right, p.x + p.width);
    }
    const double rule = headerHeight - (headerHeight - boldFm->height()) / 4;
    painter.drawLine(QPointF(0, rule), QPointF(right, rule));
    painter.setFont(font);
}

void CNyrListViewPrint::Private::DrawRow(QPainter& painter, const std::vector<Placed>& band, int row,
                                         double top) const
{
    const CNyrListView& list = *info.list;
    const bool enabled = (list.model()->flags(list.model()->index(row, 0)) & Qt::ItemIsEnabled) != 0;
    painter.setPen(enabled ? QColor(Qt::black) : QColor::fromRgb(kDisabledText));
    const double baseline = top + (rowHeight - fm->height()) / 2 + fm->ascent();
    for (const Placed& p : band) {
        const Column& c = columns[p.column];
        double x = p.x + pad;
        double width = p.width - 2 * pad;
        if (checkSize > 0 && c.screenCol == 0 && width > checkSize) {
            DrawCheck(painter, x, top, list.GetCheck(row) != 0);
            x += checkSize + pad;
            width -= checkSize + pad;
        }
        DrawCell(painter, *fm, QString::fromStdString(list.GetItemText(row, c.screenCol)), x, width, c.align,
                 baseline);
    }
}

void CNyrListViewPrint::Private::DrawCell(QPainter& painter, const QFontMetricsF& metrics, QString text, double x,
                                          double width, Qt::Alignment align, double baseline) const
{
    if (text.isEmpty() || width <= 0)
        return;
    text = OneLine(std::move(text));
    double advance = metrics.horizontalAdvance(text);
    if (advance > width) {
        text = metrics.elidedText(text, Qt::ElideRight, width);
        advance = metrics.horizontalAdvance(text);
    }
    if (align & Qt::AlignRight)
        x += width - advance;
    else if (align & Qt::AlignHCenter)
        x += (width - advance) / 2;
    painter.drawText(QPointF(x, baseline), text);
}

void CNyrListViewPrint::Private::DrawCheck(QPainter& painter, double x, double top, bool checked) const
{
    const QRectF box(x, top + (rowHeight - checkSize) / 2, checkSize, checkSize);
    const QPen text = painter.pen();
    QPen line = text;
    line.setWidthF(checkSize / 12);
    painter.setPen(line);
    painter.drawRect(box);
    painter.setPen(text);
    if (checked) {
        // A check mark glyph rather than strokes, so that the text of the
        // printout (a PDF's) tells checked rows.
        static const QString mark(QChar(0x2713));
        painter.drawText(QPointF(box.left() + (checkSize - fm->horizontalAdvance(mark)) / 2,
                                 box.bottom() - checkSize * 0.1),
                         mark);
    }
}

CNyrListViewPrint::CNyrListViewPrint(const PRINT_INFO& info) : d(new Private)
{
    d->info = info;
}

CNyrListViewPrint::~CNyrListViewPrint() = default;

int CNyrListViewPrint::IsItemToPrint(int screenItem) const
{
    const CNyrListView* list = d->info.list;
    switch (d->info.printWhat) {
    case PrintAll: return 1;
    case PrintSelected: return list->GetItemState(screenItem, LVIS_SELECTED) != 0;
    case PrintChecked: return list->GetCheck(screenItem) != 0;
    default: return 0;
    }
}

int CNyrListViewPrint::Paginate(QPaintDevice& device, const QSizeF& body, std::string& error)
{
    d->columns.clear();
    d->bands.clear();
    d->blockStart.assign(1, 0);
    d->rowCount = 0;
    if (!d->info.list)
        return 1;
    d->Measure(device);
    d->CollectColumns(device);
    d->LayOutBands(body.width());
    const double height = body.height() / d->scale;
    d->rowsPerPage = static_cast<int>(std::floor((height - d->headerHeight) / d->rowHeight));
    // A page narrower than a few characters cannot show a cell either.
    if (d->rowsPerPage < 1 || body.width() < 4 * d->fm->averageCharWidth()) {
        error = NyrLoadString(NYR_IDS_PRINT_PAGE_TOO_SMALL);
        return 0;
    }
    d->CountRows(*this);
    return static_cast<int>(d->blockStart.size() * std::max<std::size_t>(d->bands.size(), 1));
}

void CNyrListViewPrint::DrawPage(QPainter& painter, int page)
{
    if (d->bands.empty() || page < 0)
        return;
    const auto block = static_cast<std::size_t>(page) / d->bands.size();
    const std::vector<Placed>& band = d->bands[static_cast<std::size_t>(page) % d->bands.size()];
    if (block >= d->blockStart.size())
        return;
    painter.save();
    painter.scale(d->scale, d->scale);
    d->DrawHeader(painter, band);
    const int rows = std::min(d->rowCount, d->info.list->GetItemCount());
    double top = d->headerHeight;
    for (int row = d->blockStart[block], drawn = 0; row < rows && drawn < d->rowsPerPage; ++row) {
        if (!IsItemToPrint(row))
            continue;
        d->DrawRow(painter, band, row, top);
        top += d->rowHeight;
        ++drawn;
    }
    painter.restore();
}

void CNyrListViewPrint::LoadCustomProperties(PRINT_INFO& info, const std::string& section)
{
    auto read = [&section](const char* entry) {
        return static_cast<int>(CNyrProfileEntries::ReadNyrProfileInt(section, entry, -1));
    };
    const int what = read(CNyrProfileEntries::ListViewPrintWhat());
    if (what >= PrintAll && what <= PrintChecked)
        info.printWhat = what;
    const int fit = read(CNyrProfileEntries::ListViewPrintFitToWidth());
    if (fit == 0 || fit == 1)
        info.fitToWidth = fit == 1;
    const int landscape = read(CNyrProfileEntries::ListViewPrintLandscape());
    if (landscape == 0 || landscape == 1)
        info.landscape = landscape == 1;
    std::vector<int> margins;
    CNyrProfileEntries::ReadNyrProfileIntVector(section, CNyrProfileEntries::ListViewPrintMargins(), margins);
    if (margins.size() == 4 && std::all_of(margins.begin(), margins.end(), [](int m) { return m >= 0 && m <= 100; }))
        info.marginsMm = QMargins(margins[0], margins[1], margins[2], margins[3]);
    const std::string file =
        CNyrProfileEntries::ReadNyrProfileString(section, CNyrProfileEntries::ListViewPrintPdfFile(), "");
    if (!file.empty())
        info.fileName = file;
}

void CNyrListViewPrint::StoreCustomProperties(const PRINT_INFO& info, const std::string& section)
{
    CNyrProfileEntries::WriteNyrProfileInt(section, CNyrProfileEntries::ListViewPrintWhat(), info.printWhat);
    CNyrProfileEntries::WriteNyrProfileInt(section, CNyrProfileEntries::ListViewPrintFitToWidth(),
                                           info.fitToWidth ? 1 : 0);
    CNyrProfileEntries::WriteNyrProfileInt(section, CNyrProfileEntries::ListViewPrintLandscape(),
                                           info.landscape ? 1 : 0);
    const QMargins& m = info.marginsMm;
    CNyrProfileEntries::WriteNyrProfileIntVector(section, CNyrProfileEntries::ListViewPrintMargins(),
                                                 {m.left(), m.top(), m.right(), m.bottom()});
    if (!info.fileName.empty())
        CNyrProfileEntries::WriteNyrProfileString(section, CNyrProfileEntries::ListViewPrintPdfFile(), info.fileName);
}

int CNyrListViewPrint::ApplyPageLayout(const PRINT_INFO& info, QPagedPaintDevice& device)
{
    device.setPageOrientation(info.landscape ? QPageLayout::Landscape : QPageLayout::Portrait);
    return device.setPageMargins(QMarginsF(info.marginsMm), QPageLayout::Millimeter) ? 1 : 0;
}

namespace {

// Prints the view, or only counts its pages, as NyrPrintListView and
// NyrCountListViewPages promise.
int PrintOrCount(const CNyrListViewPrint::PRINT_INFO& info, QPagedPaintDevice& device, bool print,
                 std::string* error)
{
    std::string ignored;
    std::string& why = error ? *error : ignored;
    why.clear();
    if (!CNyrListViewPrint::ApplyPageLayout(info, device)) {
        why = NyrLoadString(NYR_IDS_PRINT_PAGE_TOO_SMALL);
        return 0;
    }
    CNyrListViewPrint part(info);
    CNyrPrintout printout;
    printout.SetTitle(info.title);
    if (info.list)
        printout.SetFont(PrintFont(*info.list));
    printout.AddPart(&part);
    for (CNyrPrintPart* more : info.parts)
        printout.AddPart(more);
    const int pages = print ? printout.Print(device) : printout.CountPages(device);
    if (pages == 0)
        why = printout.GetError();
    return pages;
}

}  // namespace

int NyrPrintListView(const CNyrListViewPrint::PRINT_INFO& info, QPagedPaintDevice& device, std::string* error)
{
    return PrintOrCount(info, device, true, error);
}

int NyrCountListViewPages(const CNyrListViewPrint::PRINT_INFO& info, QPagedPaintDevice& device, std::string* error)
{
    return PrintOrCount(info, device, false, error);
}

int NyrExportListViewPdf(const CNyrListViewPrint::PRINT_INFO& info, std::string* error)
{
    std::string ignored;
    std::string& why = error ? *error : ignored;
    auto fail = [&info, &why](const std::string& reason) {
        why = NyrFormat(NyrLoadString(NYR_IDS_PRINT_PDF_CANNOT_WRITE).c_str(), info.fileName.c_str(), reason.c_str());
        return 0;
    };
    if (info.fileName.empty())
        return fail(NyrLoadString(NYR_IDS_FILE_NAME_EMPTY));
    // The pages go to a temporary file beside the target, renamed over it
    // once complete; a failure removes it.
    QSaveFile file(QString::fromStdString(info.fileName));
    if (!file.open(QIODevice::WriteOnly))
        return fail(file.errorString().toStdString());
    int pages = 0;
    {
        QPdfWriter writer(&file);
        writer.setPageSize(info.pageSize);
        writer.setTitle(QString::fromStdString(info.title));
        writer.setCreator(QStringLiteral("Nyr240"));
        pages = NyrPrintListView(info, writer, &why);
    }
    if (pages == 0) {
        file.cancelWriting();
        return 0;
    }
    if (!file.commit())
        return fail(file.errorString().toStdString());
    return pages;
}
