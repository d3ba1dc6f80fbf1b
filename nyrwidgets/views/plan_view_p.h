#pragma once

// The plan view's private parts: its drawing cache of the report view's
// items, the mapping of the plane onto a painter and the frame renderer.

#include <QFont>
#include <QHash>
#include <QImage>
#include <QPointer>
#include <QRect>
#include <cstdint>
#include <unordered_map>
#include <vector>

#include "nyrwidgets/views/plan_view.h"

class CNyrReportViewItem;
class QTimer;

namespace nyr::plan_detail {

// State bits of a record.
enum eRecordState : uint8_t {
    kHasPoint = 1,   // the item implements CNyrPlanPoint and has a position
    kVisible = 2,    // neither hidden nor deleted
    kSelected = 4,
    kChecked = 8,
    kDisabled = 16,
    kShown = kHasPoint | kVisible,
};

// One item as the plan draws it: its position in metres from the cache's
// origin (float: exact enough for culling and for pixels at all but the
// largest scales, where the item itself is read again), its symbol slot
// and its state.
struct Record
{
    float x = 0.0f;
    float y = 0.0f;
    uint16_t slot = 0;
    uint8_t state = 0;
    uint8_t spare = 0;
};
static_assert(sizeof(Record) == 12, "the per-item cost of the plan is its record");

// The plane shown in a rectangle of a painter: the plane point at the
// rectangle's centre and the scale in pixels per metre, north up.
struct Mapping
{
    double centerE = 0.0;
    double centerN = 0.0;
    double scale = 1.0;
    QRectF rect;

    QPointF ToScreen(double e, double n) const
    {
        return {rect.center().x() + (e - centerE) * scale, rect.center().y() - (n - centerN) * scale};
    }
    void ToPlane(const QPointF& p, double& e, double& n) const
    {
        e = centerE + (p.x() - rect.center().x()) / scale;
        n = centerN - (p.y() - rect.center().y()) / scale;
    }
};

struct Symbol
{
    CNyrPlanView::eSymbolShape shape = CNyrPlanView::ShapeCircle;
    QColor color;
};

// A point in view, as the symbol pass draws it.
struct ViewPoint
{
    unsigned int realItem;
    QPointF pos;  // painter coordinates
};

// What one frame is drawn with: the mapping, the scale k of symbols, texts
// and furniture (1 on screen), device pixels per painter unit, and where the
// furniture goes (labels keep clear of it).
struct Frame
{
    Mapping m;
    double k = 1.0;
    double rasterScale = 1.0;
    QFont font;
    double textHeight = 0.0;
    CNyrPlanView::SCALE_BAR bar;
    QRectF northArrow;
    QRectF scaleBar;  // with its text; empty without a bar
    QRectF readOut;   // on screen while the cursor is over the plan; else empty
};

inline constexpr double kMinScale = 1e-7;
inline constexpr double kMaxScale = 1e4;
inline constexpr double kMaxCoordinate = 1e9;

// The text of a library text-table entry.
QString Text(unsigned int id);

// Places labels, in the order given (highest priority first), at the first
// of four places beside their point (right, left, above, below) where the
// box stays inside `bounds` and overlaps neither a label placed before nor
// an obstacle; labels without such a place are dropped. `boxes[i]` is the
// size of label i, `points[i]` its point and `gap` the distance from the
// point to the box. Returns, per label, its box or an empty rectangle.
std::vector<QRectF> PlaceLabels(const std::vector<QPointF>& points, const std::vector<QSizeF>& boxes, double gap,
                                const QRectF& bounds, const std::vector<QRectF>& obstacles);

// A length of 1, 2 or 5 times a power of ten (in the current distance unit)
// whose bar is as long as possible but at most `maxPixels` at `pixelsPerMetre`.
CNyrPlanView::SCALE_BAR ScaleBarFor(double pixelsPerMetre, double maxPixels);

// The coordinates at a plane point for the cursor read-out; `pixelSize` in
// metres sets the decimals.
QString CoordinateText(double e, double n, double pixelSize, const CNyrPlanView::Projection& projection);

}  // namespace nyr::plan_detail

struct CNyrPlanView::Private
{
    explicit Private(CNyrPlanView* owner);

    // ---- The cache (plan_view_sync.cpp) ----

    // Brings the records up to date with the report view: all of them after
    // a change that names no item, new items at the end.
    void EnsureRecords();
    // Reads item `r` into its record (the record exists).
    void ReadRecord(unsigned int r);
    // Reads the items of screen rows first..last of the report view.
    void ReadScreenRows(int first, int last);
    // The item's position in metres, read from the item itself; false
    // without one.
    bool ExactPosition(unsigned int r, double& e, double& n) const;
    // The position the plan draws at this scale: the record's, or the
    // item's own where the record's float is too coarse.
    void PointOf(unsigned int r, double scale, double& e, double& n) const;
    // The largest error of a record's position, in metres.
    double FloatError() const;
    uint16_t SlotOf(unsigned int code) const;
    void OnItemMessage(unsigned int message, qintptr lParam);
    void Attach(CNyrReportView* view);
    void Detach();
    // Runs a change of the report view that the plan itself makes.
    template <class F>
    void Originate(F change)
    {
        ++originating;
        change();
        --originating;
    }
    void SelectOnly(const std::vector<unsigned int>& realItems, bool add);

    // ---- Drawing (plan_view_render.cpp) ----

    nyr::plan_detail::Mapping ScreenMapping() const;
    void DrawFrame(QPainter& painter, const nyr::plan_detail::Mapping& m, double k, std::vector<LABEL>* labels);
    // Rasterises what is in view and collects its points while they are
    // few enough; returns how many points are in view.
    std::size_t CollectPoints(const nyr::plan_detail::Frame& frame, std::vector<unsigned int>& points);
    void DrawRaster(QPainter& painter, const nyr::plan_detail::Frame& frame);
    void DrawSymbols(QPainter& painter, const nyr::plan_detail::Frame& frame, std::vector<unsigned int>& points,
                     std::vector<LABEL>* labels, bool withLabels);
    void DrawLabels(QPainter& painter, const nyr::plan_detail::Frame& frame,
                    const std::vector<nyr::plan_detail::ViewPoint>& points, std::vector<LABEL>* labels);
    // The symbol of a slot in a state, `pixels` device pixels across, with
    // room for the ring of a checked point around it.
    const QImage& Sprite(uint16_t slot, uint8_t state, int pixels);

    // ---- Furniture (plan_view_furniture.cpp) ----

    // The frame for a mapping, its furniture laid out.
    nyr::plan_detail::Frame LayOut(const QPainter& painter, const nyr::plan_detail::Mapping& m, double k) const;
    void DrawNorthArrow(QPainter& painter, const nyr::plan_detail::Frame& frame) const;
    void DrawScaleBar(QPainter& painter, const nyr::plan_detail::Frame& frame) const;
    void DrawOverlays(QPainter& painter) const;
    // The box of the cursor read-out at the top left, as wide as the widest
    // text since the cursor came in, so that labels do not come and go as
    // it moves; empty while the cursor is outside.
    QRect ReadOutBox() const;

    // ---- Mapping and input (plan_view.cpp, plan_view_input.cpp) ----

    void SetScaleAndCenter(double scale, double e, double n);
    // Fits a box of plane coordinates into the view; false for none.
    bool FitBox(double e0, double n0, double e1, double n1);
    void UpdateCursorText();
    void FollowSelection();
    void ToggleCheckOfSelection();
    void SendCommand(unsigned int message);
    bool OfferDelete() const;

    CNyrPlanView* q;
    QPointer<CNyrReportView> view;
    std::vector<QMetaObject::Connection> connections;

    // The drawing cache: one record per real item of the report view. Its
    // positions count from the origin, the first position read after a
    // full reading; maxOffset is the largest coordinate among them.
    std::vector<nyr::plan_detail::Record> records;
    double originE = 0.0;
    double originN = 0.0;
    bool hasOrigin = false;
    double maxOffset = 0.0;
    bool fullRead = true;  // every record must be read again

    // Symbols: slot 0 is the default symbol; codes map to the others.
    std::vector<nyr::plan_detail::Symbol> symbols;
    std::unordered_map<unsigned int, uint16_t> slotOfCode;
    QHash<quint64, QImage> sprites;
    int symbolSize = 7;
    bool labels = true;
    unsigned int symbolLimit = 20000;
    unsigned int labelLimit = 2000;
    Projection projection;

    // The view of the plane.
    double centerE = 0.0;
    double centerN = 0.0;
    double scale = 1.0;
    bool fitPending = true;  // zoom to all before the next paint

    // Mouse and keys.
    enum eDrag { DragNone, DragPress, DragPan, DragBand };
    eDrag drag = DragNone;
    QPoint pressPos;
    QPoint lastPos;
    Qt::KeyboardModifiers pressModifiers;
    QRect band;
    bool cursorInside = false;
    QPoint cursor;
    QString cursorText;
    int readOutWidth = 0;   // of the widest cursor text since the cursor came in
    bool onScreen = false;  // the paint under way is the widget's own

    // A selection made in the report view alone centres its point when it
    // lies outside the view; a batch of several does not.
    QTimer* followTimer = nullptr;
    int selectsSeen = 0;
    unsigned int lastSelected = 0;
    int originating = 0;

    // Reused between frames.
    QImage raster;
    std::vector<unsigned int> inView;
    std::vector<LABEL> drawnLabels;
};
