// The printout: page frame (header and footer) around the pages of its parts.
#include "nyrwidgets/views/view_print.h"

#include <QFontMetricsF>
#include <QGuiApplication>
#include <QPagedPaintDevice>
#include <QPainter>
#include <optional>
#include <vector>

#include "nyr/frame/resource_module.h"
#include "nyr/frame/text_ids.h"
#include "nyr/platform/string_format.h"
#include "nyr/time/time.h"

namespace {

// Where the frame puts things on a page, in device pixels from the top left
// corner of the printable area.
struct FrameLayout
{
    double width = 0;     // of the printable area
    double height = 0;
    double line = 0;      // line spacing of the frame font
    double ascent = 0;
    QRectF body;          // what is left for the parts
};

FrameLayout LayOutFrame(QPagedPaintDevice& device, const QFont& font)
{
    FrameLayout f;
    const QRectF paint = device.pageLayout().paintRectPixels(device.logicalDpiX());
    f.width = paint.width();
    f.height = paint.height();
    const QFontMetricsF fm(font, &device);
    f.line = fm.lineSpacing();
    f.ascent = fm.ascent();
    // Header: one line of text, a rule and half a line of space; footer: half
    // a line of space and one line of text.
    const double header = f.line * 1.75;
    const double footer = f.line * 1.5;
    f.body = QRectF(0, header, f.width, f.height - header - footer);
    return f;
}

}  // namespace

CNyrPrintPart::~CNyrPrintPart() = default;

struct CNyrPrintout::Private
{
    std::string title;
    std::optional<CNyrTime> printedOn;
    QFont font = QGuiApplication::font();
    std::vector<CNyrPrintPart*> parts;
    std::vector<int> pageCounts;  // per part, from the last layout
    std::string error;

    // Lays out the frame and every part; the total page count or 0.
    int LayOut(QPagedPaintDevice& device, FrameLayout& frame);
    void DrawFrame(QPainter& painter, const FrameLayout& frame, const QString& stamp, int page, int total) const;
    int Fail(unsigned int textId)
    {
        error = NyrLoadString(textId);
        return 0;
    }
};

int CNyrPrintout::Private::LayOut(QPagedPaintDevice& device, FrameLayout& frame)
{
    error.clear();
    pageCounts.clear();
    frame = LayOutFrame(device, font);
    // The body must hold at least a line of the frame font.
    if (frame.body.width() < frame.line || frame.body.height() < frame.line)
        return Fail(NYR_IDS_PRINT_PAGE_TOO_SMALL);
    int total = 0;
    for (CNyrPrintPart* part : parts) {
        std::string partError;
        const int count = part->Paginate(device, frame.body.size(), partError);
        if (count <= 0) {
            error = partError.empty() ? NyrLoadString(NYR_IDS_PRINT_PAGE_TOO_SMALL) : partError;
            return 0;
        }
        pageCounts.push_back(count);
        total += count;
    }
    return total;
}

void CNyrPrintout::Private::DrawFrame(QPainter& painter, const FrameLayout& frame, const QString& stamp, int page,
                                      int total) const
{
    painter.setFont(font);
    painter.setPen(Qt::black);
    const QFontMetricsF fm(font, painter.device());
    const double stampWidth = fm.horizontalAdvance(stamp);
    const double gap = fm.averageCharWidth() * 2;
    const QString titleText =
        fm.elidedText(QString::fromStdString(title), Qt::ElideRight, std::max(0.0, frame.width - stampWidth - gap));
    painter.drawText(QPointF(0, frame.ascent), titleText);
    const QString stampText = fm.elidedText(stamp, Qt::ElideRight, frame.width);
    painter.drawText(QPointF(frame.width - fm.horizontalAdvance(stampText), frame.ascent), stampText);
    const double rule = frame.line * 1.15;
    painter.drawLine(QPointF(0, rule), QPointF(frame.width, rule));

    const QString footer = QString::fromStdString(NyrFormat(NyrLoadString(NYR_IDS_PRINT_PAGE_OF).c_str(), page, total));
    painter.drawText(QPointF((frame.width - fm.horizontalAdvance(footer)) / 2, frame.height - frame.line + frame.ascent),
                     footer);
}

CNyrPrintout::CNyrPrintout() : d(new Private) {}

CNyrPrintout::~CNyrPrintout() = default;

void CNyrPrintout::SetTitle(const std::string& title)
{
    d->title = title;
}

void CNyrPrintout::SetPrintedOn(const CNyrTime& time)
{
    d->printedOn = time;
}

void CNyrPrintout::SetFont(const QFont& font)
{
    d->font = font;
}

void CNyrPrintout::AddPart(CNyrPrintPart* part)
{
    if (part)
        d->parts.push_back(part);
}

const std::string& CNyrPrintout::GetError() const
{
    return d->error;
}

int CNyrPrintout::CountPages(QPagedPaintDevice& device)
{
    FrameLayout frame;
    return d->LayOut(device, frame);
}

int CNyrPrintout::Print(QPagedPaintDevice& device)
{
    FrameLayout frame;
    const int total = d->LayOut(device, frame);
    if (total == 0)
        return 0;
    const CNyrTime when = d->printedOn ? *d->printedOn : CNyrTime();
    const QString stamp =
        QString::fromStdString(NyrFormat(NyrLoadString(NYR_IDS_PRINT_PRINTED_ON).c_str(), when.Format().c_str()));
    QPainter painter;
    if (!painter.begin(&device))
        return d->Fail(NYR_IDS_PRINT_PRINTER_FAILED);
    int page = 0;
    for (std::size_t part = 0; part < d->parts.size(); ++part) {
        for (int p = 0; p < d->pageCounts[part]; ++p) {
            if (page > 0 && !device.newPage()) {
                painter.end();
                return d->Fail(NYR_IDS_PRINT_PRINTER_FAILED);
            }
            ++page;
            d->DrawFrame(painter, frame, stamp, page, total);
            painter.save();
            painter.translate(frame.body.topLeft());
            painter.setClipRect(QRectF(QPointF(0, 0), frame.body.size()));
            d->parts[part]->DrawPage(painter, p);
            painter.restore();
        }
    }
    if (!painter.end())
        return d->Fail(NYR_IDS_PRINT_PRINTER_FAILED);
    return total;
}
