// The plan view's mouse, wheel, keys, context menu and cursor read-out.
#include <QApplication>
#include <QContextMenuEvent>
#include <QFontMetrics>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QWheelEvent>
#include <cmath>

#include "nyr/frame/notifications.h"
#include "nyr/frame/text_ids.h"
#include "nyrwidgets/views/plan_view_p.h"
#include "nyrwidgets/views/report_view.h"
#include "nyrwidgets/views/report_view_menu.h"

namespace {

// The zoom of one wheel notch (120 eighths of a degree) and of one key press.
constexpr double kZoomStep = 1.25;

}  // namespace

void CNyrPlanView::Private::UpdateCursorText()
{
    QString text;
    if (cursorInside) {
        double e = 0.0;
        double n = 0.0;
        q->ScreenToPlane(cursor, e, n);
        text = nyr::plan_detail::CoordinateText(e, n, 1.0 / scale, projection);
    }
    if (text == cursorText)
        return;
    cursorText = text;
    readOutWidth = text.isEmpty() ? 0 : std::max(readOutWidth, QFontMetrics(q->font()).horizontalAdvance(text));
    emit q->CursorTextChanged(text);
    q->update();
}

void CNyrPlanView::wheelEvent(QWheelEvent* e)
{
    const QPoint delta = e->angleDelta();
    const int eighths = delta.y() != 0 ? delta.y() : delta.x();
    if (eighths == 0) {
        e->ignore();
        return;
    }
    ZoomAt(e->position(), std::pow(kZoomStep, eighths / 120.0));
    e->accept();
}

void CNyrPlanView::mousePressEvent(QMouseEvent* e)
{
    if (e->button() != Qt::LeftButton && e->button() != Qt::MiddleButton) {
        QWidget::mousePressEvent(e);
        return;
    }
    d->drag = Private::DragPress;
    d->pressPos = d->lastPos = e->position().toPoint();
    // The middle button only pans.
    d->pressModifiers = e->button() == Qt::LeftButton ? e->modifiers() : Qt::KeyboardModifiers();
    e->accept();
}

void CNyrPlanView::mouseMoveEvent(QMouseEvent* e)
{
    const QPoint pos = e->position().toPoint();
    d->cursorInside = true;
    d->cursor = pos;
    if (d->drag == Private::DragPress && (pos - d->pressPos).manhattanLength() >= QApplication::startDragDistance())
        d->drag = (d->pressModifiers & Qt::ShiftModifier) ? Private::DragBand : Private::DragPan;
    if (d->drag == Private::DragPan) {
        Pan(pos.x() - d->lastPos.x(), pos.y() - d->lastPos.y());
    } else if (d->drag == Private::DragBand) {
        d->band = QRect(d->pressPos, pos);
        update();
    }
    d->lastPos = pos;
    d->UpdateCursorText();
}

void CNyrPlanView::mouseReleaseEvent(QMouseEvent* e)
{
    const Private::eDrag drag = d->drag;
    d->drag = Private::DragNone;
    if (drag == Private::DragBand) {
        update();
        SelectRect(QRectF(d->band.normalized()), (d->pressModifiers & Qt::ControlModifier) != 0);
        return;
    }
    if (drag != Private::DragPress || e->button() != Qt::LeftButton || !d->view)
        return;
    const int r = RealItemAt(e->position(), d->symbolSize / 2.0 + 3);
    if (!(e->modifiers() & Qt::ControlModifier)) {
        d->SelectOnly(r >= 0 ? std::vector<unsigned int>{static_cast<unsigned int>(r)} : std::vector<unsigned int>{},
                      false);
        return;
    }
    if (r < 0)
        return;
    const auto real = static_cast<unsigned int>(r);
    d->Originate([&] {
        d->view->SelectRealItem(real, d->view->GetRealItemSelected(real) ? 0 : 1, 1);
        if (d->view)
            d->view->FocusRealItem(real);
    });
}

void CNyrPlanView::leaveEvent(QEvent* e)
{
    d->cursorInside = false;
    d->UpdateCursorText();
    QWidget::leaveEvent(e);
}

void CNyrPlanView::keyPressEvent(QKeyEvent* e)
{
    const QPointF middle = QRectF(rect()).center();
    const bool shift = (e->modifiers() & Qt::ShiftModifier) != 0;
    if (e->matches(QKeySequence::SelectAll)) {
        d->SendCommand(WM_NYR_REPORTVIEW_SELECT_ALL);
        return;
    }
    switch (e->key()) {
    case Qt::Key_Plus:
    case Qt::Key_Equal:
        ZoomAt(middle, kZoomStep);
        break;
    case Qt::Key_Minus:
        ZoomAt(middle, 1.0 / kZoomStep);
        break;
    // The arrows move the view: the plan moves the other way.
    case Qt::Key_Left:
        Pan(width() / 8.0, 0);
        break;
    case Qt::Key_Right:
        Pan(-width() / 8.0, 0);
        break;
    case Qt::Key_Up:
        Pan(0, height() / 8.0);
        break;
    case Qt::Key_Down:
        Pan(0, -height() / 8.0);
        break;
    case Qt::Key_Home:
        shift ? ZoomToSelection() : ZoomToAll();
        break;
    case Qt::Key_Space:
        d->ToggleCheckOfSelection();
        break;
    case Qt::Key_Delete:
        if (!d->OfferDelete()) {
            QWidget::keyPressEvent(e);
            return;
        }
        d->SendCommand(WM_NYR_REPORTVIEW_DELETE_SELECTED);
        break;
    case Qt::Key_Escape:
        if (d->drag == Private::DragNone) {
            QWidget::keyPressEvent(e);
            return;
        }
        d->drag = Private::DragNone;
        update();
        break;
    default:
        QWidget::keyPressEvent(e);
        return;
    }
    e->accept();
}

void CNyrPlanView::contextMenuEvent(QContextMenuEvent* e)
{
    CNyrReportViewMenuPopUp menu(d->view, this);
    const QPointF middle = QRectF(rect()).center();
    const bool anySelected = d->view && d->view->GetItemsSelected();
    menu.AppendAction(NYR_IDS_PLAN_ZOOM_ALL, [this] { ZoomToAll(); });
    menu.AppendAction(
        NYR_IDS_PLAN_ZOOM_SELECTION, [this] { ZoomToSelection(); }, anySelected);
    menu.AppendAction(NYR_IDS_PLAN_ZOOM_IN, [this, middle] { ZoomAt(middle, kZoomStep); });
    menu.AppendAction(NYR_IDS_PLAN_ZOOM_OUT, [this, middle] { ZoomAt(middle, 1.0 / kZoomStep); });
    menu.AppendSeparator();
    QAction* labels = menu.AppendAction(NYR_IDS_PLAN_LABELS, [this] { SetLabels(!GetLabels()); });
    labels->setCheckable(true);
    labels->setChecked(GetLabels());
    if (d->view) {
        menu.AppendSeparator();
        const bool any = d->view->GetItemCount() > 0;
        menu.AppendCommand(NYR_IDS_MENU_SELECT_ALL, WM_NYR_REPORTVIEW_SELECT_ALL, any);
        menu.AppendCommand(NYR_IDS_MENU_INVERT_SELECTION, WM_NYR_REPORTVIEW_INVERT_SELECTION, any);
        if (d->view->HasCheckBoxes()) {
            menu.AppendCommand(NYR_IDS_MENU_CHECK_ALL, WM_NYR_REPORTVIEW_CHECK_ALL, any);
            menu.AppendCommand(NYR_IDS_MENU_INVERT_CHECKED, WM_NYR_REPORTVIEW_INVERT_CHECKED, any);
        }
        if (d->OfferDelete())
            menu.AppendCommand(NYR_IDS_MENU_DELETE, WM_NYR_REPORTVIEW_DELETE_SELECTED, anySelected);
    }
    menu.AppendSeparator();
    menu.AppendAction(NYR_IDS_PLAN_EXPORT_PNG, [this] { ExportPngDialog(); });
    menu.exec(e->globalPos());
}
