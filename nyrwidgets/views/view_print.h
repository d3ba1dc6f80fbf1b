#pragma once

#include <QFont>
#include <QSizeF>
#include <memory>
#include <string>

#include "nyr/platform/export.h"

class CNyrTime;
class QPagedPaintDevice;
class QPaintDevice;
class QPainter;

// A part of a printout that fills pages of its own: the rows of a list view,
// a plan of points, ... A printout runs its parts one after the other, each
// starting on a new page, under one page header and footer.
//
// All lengths are device pixels of the device printed on.
class NYR_EXPORT CNyrPrintPart
{
public:
    virtual ~CNyrPrintPart();

    // Lays the part out for pages whose body (the page less margins, page
    // header and footer) is `body` on `device`, and returns how many pages it
    // needs: 1 or more. 0 when it cannot be laid out (the page is too small,
    // say), with a text for the user in `error`; nothing is printed then.
    virtual int Paginate(QPaintDevice& device, const QSizeF& body, std::string& error) = 0;
    // Draws page `page` (0-based, below the count of the last Paginate) with
    // `painter`, whose origin is the body's top left corner and whose clip is
    // the body. Pages are asked for one at a time, usually in order.
    virtual void DrawPage(QPainter& painter, int page) = 0;
};

// One printout: its parts, page after page, each page headed by the title
// (left) and "Printed on %s" (right, the time in the current time format),
// with "Page %d of %d" in the footer. Pages are laid out first and then
// drawn one at a time, so memory does not grow with the number of pages.
class NYR_EXPORT CNyrPrintout
{
public:
    CNyrPrintout();
    ~CNyrPrintout();
    CNyrPrintout(const CNyrPrintout&) = delete;
    CNyrPrintout& operator=(const CNyrPrintout&) = delete;

    // The title on top of every page; empty: none.
    void SetTitle(const std::string& title);
    // The time "Printed on %s" names; the default is the moment Print starts.
    void SetPrintedOn(const CNyrTime& time);
    // The font of the page header and footer; the default is the
    // application's font.
    void SetFont(const QFont& font);
    // Appends a part; it is not owned and must outlive Print.
    void AddPart(CNyrPrintPart* part);

    // Prints every part on `device` with the page layout the device has
    // (size, orientation, margins). Returns the number of pages printed; 0
    // (GetError tells why) when the parts cannot be laid out (then nothing is
    // drawn) or the device fails.
    int Print(QPagedPaintDevice& device);
    // Lays out only: the number of pages Print would print, 0 as above.
    int CountPages(QPagedPaintDevice& device);
    // Why the last Print or CountPages gave 0; empty after success.
    const std::string& GetError() const;

private:
    struct Private;
    std::unique_ptr<Private> d;
};
