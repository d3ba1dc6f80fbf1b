#pragma once

#include <QColor>
#include <QRectF>
#include <QWidget>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "nyr/platform/export.h"

class CNyrReportView;
class QImage;
class QPainter;

// What an item of a report view tells the plan view about itself. A host's
// item class implements it beside CNyrReportViewItem:
//
//     class CSurveyPoint : public CNyrReportViewItem, public CNyrPlanPoint { ... };
//
// The plan finds the interface on each item and reads the item through it;
// items without it, or without a position, are not drawn.
class NYR_EXPORT CNyrPlanPoint
{
public:
    virtual ~CNyrPlanPoint();
    // Easting and northing in metres; 0 when the item has no position.
    // Values that are not finite, or beyond 1e9 m, count as none.
    virtual int OnGetPlanPosition(double& easting, double& northing) const = 0;
    // The code that picks the item's symbol (CNyrPlanView::SetSymbol); 0 by default.
    virtual unsigned int OnGetPlanCode() const;
    // The label: non-zero with the text. The default (0) has the plan use
    // the item's main text (OnGetMainItemText of real column 0).
    virtual int OnGetPlanLabel(std::string& text) const;
    // Where labels crowd, the higher priority keeps its label; among equals
    // the lower real index. 0 by default.
    virtual int OnGetPlanLabelPriority() const;
};

// A plan of the items of a report view: east to the right, north up, one
// scale (pixels per metre) for both axes, never rotated nor stretched.
//
// It shows what the report view holds: items that are neither hidden nor
// deleted, the selected ones in the highlight colour, checked ones with a
// ring, disabled ones in grey. It keeps no selection of its own: a click,
// the rubber band and its keys change the items through the report view's
// public operations and commands, and the report view's notifications
// (kNotifyMask) and row changes bring the plan in step. What it keeps per
// item (12 bytes: position, symbol, state) is a drawing cache, re-read from
// the item named by each notification and wholly after a rebuild, a
// cleanup or a deletion of the report view's rows. Changes made with notify
// 0 or with the notifications suppressed reach neither the subscribers nor
// the plan: they show after the next rebuild or Refresh().
//
// Level of detail: with more items in view than the symbol limit, each
// pixel shows what falls into it as one dot (selected over checked over
// the rest); labels show up to the label limit only, and never overlap:
// where they would, higher priorities keep theirs.
//
// Mouse: the wheel zooms around the cursor; dragging pans; Shift+drag
// selects what the rubber band encloses (Ctrl+Shift adds to the selection);
// a click selects the point under it (Ctrl+click toggles it), a click on
// nothing clears the selection. Keys: + and - zoom, the arrow keys pan by an
// eighth of the view, Home zooms to all, Shift+Home to the selection,
// Ctrl+A selects all, Space checks or unchecks the selection (with check
// boxes), Delete deletes it (when the report view's item menu offers
// Delete; the report view's own handler asks), Escape ends a rubber band.
//
// It draws a north arrow (top right), a scale bar in the current distance
// unit (bottom right) and, on screen, the coordinates under the cursor in
// that unit with, given a projection, latitude and longitude in the
// geographic angle unit (top left); it redraws on
// WM_NYR_UNIT_CHANGED_DISTANCE and WM_NYR_UNIT_CHANGED_ANGLE, and writes the
// read-out anew on QEvent::LanguageChange (a host that switches the text
// table sends it).
class NYR_EXPORT CNyrPlanView : public QWidget
{
    Q_OBJECT
public:
    // The notifications the plan subscribes to: display, cleanup, refresh,
    // append, hide, select, check and disable.
    static constexpr long kNotifyMask = 1 | 2 | 4 | 8 | 16 | 64 | 128 | 256;

    enum eSymbolShape { ShapeCircle, ShapeSquare, ShapeTriangle, ShapeDiamond, ShapeCross, ShapePlus };

    // Plane (easting, northing in metres) to latitude and longitude
    // (radians); false where the projection has no answer.
    using Projection = std::function<bool(double easting, double northing, double& latitude, double& longitude)>;

    // A label as drawn: the item, the text and its box in the painter's
    // coordinates.
    struct LABEL
    {
        unsigned int realItem = 0;
        std::string text;
        QRectF rect;
    };

    // The scale bar for the current scale: its length in the current
    // distance unit (1, 2 or 5 times a power of ten), its text ("50 m") and
    // its length in pixels.
    struct SCALE_BAR
    {
        double value = 0.0;
        std::string text;
        double pixels = 0.0;
    };

    explicit CNyrPlanView(QWidget* parent = nullptr);
    ~CNyrPlanView() override;
    CNyrPlanView(const CNyrPlanView&) = delete;
    CNyrPlanView& operator=(const CNyrPlanView&) = delete;

    struct Private;

    // Shows the items of `view` (null: nothing) and follows it; the plan
    // zooms to all its points when it next draws. The view may go first.
    void SetReportView(CNyrReportView* view);
    CNyrReportView* GetReportView() const;
    // Re-reads every item.
    void Refresh();

    // ---- Look ----

    // The symbol of items whose code is `code`; unmapped codes get the
    // default symbol (a dark grey circle unless set).
    void SetSymbol(unsigned int code, eSymbolShape shape, const QColor& color);
    void SetDefaultSymbol(eSymbolShape shape, const QColor& color);
    // The symbol's size in pixels, 3 to 64 (7 unless set).
    void SetSymbolSize(int pixels);
    int GetSymbolSize() const;
    void SetLabels(bool on);
    bool GetLabels() const;
    // Most items in view drawn as symbols (beyond: one dot per pixel) and
    // most labelled; 20,000 and 2,000 unless set.
    void SetDetailLimits(unsigned int symbols, unsigned int labels);
    // The projection for the cursor's latitude and longitude; empty: none.
    void SetProjection(Projection projection);

    // ---- Plane and screen ----

    // Pixels per metre, kept within 1e-7 to 1e4.
    double GetScale() const;
    void SetScale(double pixelsPerMetre);
    // The plane point (metres) at the middle of the view.
    void GetCenter(double& easting, double& northing) const;
    void SetCenter(double easting, double northing);
    // Widget coordinates (pixels) of a plane point, and back.
    QPointF PlaneToScreen(double easting, double northing) const;
    void ScreenToPlane(const QPointF& pos, double& easting, double& northing) const;
    // Scales by `factor` keeping the plane point at `pos` where it is.
    void ZoomAt(const QPointF& pos, double factor);
    // Moves the plan by a distance in pixels.
    void Pan(double dx, double dy);
    // Fits the visible points (or the selected ones) into the view; 0 when
    // there are none. A single point is centred at the current scale.
    int ZoomToAll();
    int ZoomToSelection();

    // ---- Items ----

    // The real item of the visible point nearest to `pos` within `radius`
    // pixels; -1 for none.
    int RealItemAt(const QPointF& pos, double radius) const;
    // The visible points inside a rectangle of widget coordinates, in real order.
    std::vector<unsigned int> RealItemsIn(const QRectF& rect) const;
    // Selects the points inside `rect` through the report view: only those,
    // or with `add` those too; the first becomes the focused row.
    void SelectRect(const QRectF& rect, bool add);

    // ---- Output ----

    // Draws the plan into `target` of any painter (an image, a printer's
    // page): the area the view shows, fitted without stretching and
    // centred, symbols, labels and furniture scaled with it. The labels
    // drawn are given in `labels` when asked for.
    void Render(QPainter& painter, const QRectF& target, std::vector<LABEL>* labels = nullptr) const;
    // The plan as an image of `size` (the view's size when empty).
    QImage ToImage(const QSize& size = QSize()) const;
    // Writes ToImage(size) as PNG; 1 when written.
    int ExportPng(const std::string& path, const QSize& size = QSize()) const;
    // Asks for a file name (CNyrBrowse, purpose "CNyrPlanView"), and before
    // replacing a file (CNyrBrowse::ConfirmReplace), and exports; a failure
    // is reported in a message box. 1 when written.
    int ExportPngDialog();

    // ---- What the view shows ----

    // The labels of the last paint, in widget coordinates.
    const std::vector<LABEL>& GetDrawnLabels() const;
    SCALE_BAR GetScaleBar() const;
    // The coordinates under the cursor as shown; empty while it is outside.
    QString GetCursorText() const;

signals:
    void CursorTextChanged(const QString& text);

protected:
    bool event(QEvent* e) override;
    void paintEvent(QPaintEvent* e) override;
    void resizeEvent(QResizeEvent* e) override;
    void wheelEvent(QWheelEvent* e) override;
    void mousePressEvent(QMouseEvent* e) override;
    void mouseMoveEvent(QMouseEvent* e) override;
    void mouseReleaseEvent(QMouseEvent* e) override;
    void leaveEvent(QEvent* e) override;
    void keyPressEvent(QKeyEvent* e) override;
    void contextMenuEvent(QContextMenuEvent* e) override;

private:
    std::unique_ptr<Private> d;
};
