#include "nyrwidgets/views/report_view_inplace_p.h"

#include <QApplication>
#include <QHeaderView>
#include <QItemSelectionModel>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QScrollBar>
#include <algorithm>
#include <vector>

#include "nyr/frame/notifications.h"
#include "nyrwidgets/frame/message_event.h"
#include "nyrwidgets/views/report_view.h"
#include "nyrwidgets/views/report_view_item.h"
#include "nyrwidgets/views/report_view_p.h"

CNyrReportViewInplace::CNyrReportViewInplace(CNyrReportView* view) : QObject(view), m_view(view)
{
    m_view->installEventFilter(this);
    m_view->viewport()->installEventFilter(this);
    m_slowClick.setSingleShot(true);
    connect(&m_slowClick, &QTimer::timeout, this, [this] {
        NyrSendMessage(m_view, WM_NYR_DBLCLK_SLOW, m_clickItem, m_clickCol);
    });
    // The editor follows its cell wherever the screen moves it.
    const auto place = [this] { Place(); };
    QAbstractItemModel* model = m_view->model();
    connect(model, &QAbstractItemModel::modelReset, this, place);
    connect(model, &QAbstractItemModel::layoutChanged, this, place);
    connect(model, &QAbstractItemModel::rowsInserted, this, place);
    connect(model, &QAbstractItemModel::rowsRemoved, this, place);
    connect(model, &QAbstractItemModel::columnsInserted, this, place);
    connect(model, &QAbstractItemModel::columnsRemoved, this, place);
    connect(m_view->horizontalHeader(), &QHeaderView::sectionResized, this, place);
    connect(m_view->horizontalHeader(), &QHeaderView::sectionMoved, this, place);
    connect(m_view->horizontalScrollBar(), &QScrollBar::valueChanged, this, place);
    connect(m_view->verticalScrollBar(), &QScrollBar::valueChanged, this, place);
}

CNyrReportViewInplace::~CNyrReportViewInplace() = default;

bool CNyrReportViewInplace::OnScreen(unsigned int realItem, unsigned int realCol) const
{
    return m_view->ScreenItemFromReal(realItem) >= 0 && m_view->ScreenColFromReal(realCol) >= 0;
}

bool CNyrReportViewInplace::IsEditable(unsigned int realItem, unsigned int realCol) const
{
    CNyrReportViewItem* item = m_view->GetRealItem(realItem);
    return item && item->IsVisible() && !item->IsDisabled() && OnScreen(realItem, realCol) &&
           item->OnEditItemKind(realCol) != NYR_INPUT_NONE;
}

int CNyrReportViewInplace::EditableColFrom(unsigned int realItem, int visual, int step) const
{
    const QHeaderView* header = m_view->horizontalHeader();
    for (; visual >= 0 && visual < header->count(); visual += step) {
        const int realCol = m_view->RealColFromScreen(header->logicalIndex(visual));
        if (realCol >= 0 && IsEditable(realItem, static_cast<unsigned int>(realCol)))
            return realCol;
    }
    return -1;
}

int CNyrReportViewInplace::Begin(unsigned int realItem, unsigned int realCol)
{
    if (m_editor && !End(true))
        return 0;
    if (!IsEditable(realItem, realCol))
        return 0;
    CNyrReportViewItem* item = m_view->GetRealItem(realItem);
    CNyrInputControl* field = NyrCreateInputControl(item->OnEditItemKind(realCol), m_view->viewport());
    if (!field)
        return 0;
    field->setObjectName(QStringLiteral("nyrInplaceEditor"));
    // A cell has no label: assistive technology names the editor after its column.
    field->setAccessibleName(
        m_view->model()->headerData(m_view->ScreenColFromReal(realCol), Qt::Horizontal).toString());
    m_editor = field;
    m_realItem = realItem;
    m_realCol = realCol;
    item->OnEditItemBegin(realCol, *field);
    NyrSendMessage(field, WM_NYR_INPUT_CONTROL_HOOK_DLG_CTRL, reinterpret_cast<quintptr>(this));
    m_view->EnsureRealItemVisible(realItem);
    m_view->EnsureRealColVisible(realCol);
    Place();
    if (!m_editor)
        return 0;
    field->show();
    field->setFocus(Qt::OtherFocusReason);
    field->selectAll();
    return 1;
}

int CNyrReportViewInplace::Cell(unsigned int& realItem, unsigned int& realCol) const
{
    if (!m_editor)
        return 0;
    realItem = m_realItem;
    realCol = m_realCol;
    return 1;
}

int CNyrReportViewInplace::End(bool save)
{
    if (!m_editor)
        return 1;
    if (!save) {
        Close(true);
        return 1;
    }
    return m_editor->Validate() ? Store(0) : 0;
}

int CNyrReportViewInplace::Store(long long how)
{
    CNyrReportViewItem* item = m_view->GetRealItem(m_realItem);
    if (!item || !m_editor) {
        Close(true);
        return 1;
    }
    std::string message;
    if (!item->OnEditItemSave(m_realCol, *m_editor, message)) {
        if (m_editor)
            m_editor->Refuse(message);
        return 0;
    }
    const unsigned int realItem = m_realItem;
    const unsigned int realCol = m_realCol;
    Close(how != 2);  // the focus that left the editor stays where it went
    m_view->RefreshRealItem(realItem, 1);
    std::vector<CNyrReportView::SORT_STATE_REALCOL> state;
    m_view->GetSortState(state);
    if (std::any_of(state.begin(), state.end(), [realCol](const auto& key) { return key.realCol == realCol; }))
        m_view->DisplayRealItems(1);
    if (how == 1 || how == -1) {
        const int screenCol = m_view->ScreenColFromReal(realCol);
        const int visual = screenCol < 0 ? -1 : m_view->horizontalHeader()->visualIndex(screenCol);
        const int step = static_cast<int>(how);
        const int next = visual < 0 ? -1 : EditableColFrom(realItem, visual + step, step);
        if (next >= 0)
            Begin(realItem, static_cast<unsigned int>(next));
    }
    return 1;
}

void CNyrReportViewInplace::Close(bool focusView)
{
    const QPointer<CNyrInputControl> field = m_editor;
    m_editor = nullptr;
    if (!field)
        return;
    NyrSendMessage(field, WM_NYR_INPUT_CONTROL_UNHOOK_DLG_CTRL, 0);
    field->SetValidateOnLeave(false);
    if (focusView && field->hasFocus())
        m_view->setFocus(Qt::OtherFocusReason);
    field->hide();
    field->deleteLater();
}

void CNyrReportViewInplace::Detach()
{
    m_slowClick.stop();
    m_view->removeEventFilter(this);
    m_view->viewport()->removeEventFilter(this);
    if (CNyrInputControl* field = m_editor) {
        m_editor = nullptr;
        NyrSendMessage(field, WM_NYR_INPUT_CONTROL_UNHOOK_DLG_CTRL, 0);
        field->SetValidateOnLeave(false);
        delete field;
    }
}

void CNyrReportViewInplace::Place()
{
    if (!m_editor)
        return;
    if (!OnScreen(m_realItem, m_realCol)) {
        Close(m_editor->hasFocus());
        return;
    }
    const QModelIndex index =
        m_view->model()->index(m_view->ScreenItemFromReal(m_realItem), m_view->ScreenColFromReal(m_realCol));
    m_editor->setGeometry(m_view->visualRect(index));
}

void CNyrReportViewInplace::EditFocusedCell()
{
    const int realItem = m_view->GetFocusedRealItem();
    if (realItem < 0)
        return;
    const QModelIndex current = m_view->currentIndex();
    const int visual = current.isValid() ? m_view->horizontalHeader()->visualIndex(current.column()) : 0;
    int realCol = EditableColFrom(static_cast<unsigned int>(realItem), std::max(visual, 0), 1);
    if (realCol < 0)
        realCol = EditableColFrom(static_cast<unsigned int>(realItem), 0, 1);
    if (realCol >= 0)
        Begin(static_cast<unsigned int>(realItem), static_cast<unsigned int>(realCol));
}

void CNyrReportViewInplace::OnViewportMouse(QEvent* e)
{
    const auto* mouse = static_cast<QMouseEvent*>(e);
    const QPoint pos = mouse->position().toPoint();
    const QModelIndex index = m_view->indexAt(pos);
    if (e->type() == QEvent::MouseButtonPress) {
        m_slowClick.stop();
        const unsigned long long time = mouse->timestamp();
        const bool slow = !m_pressed || time - m_lastPress > static_cast<unsigned long long>(
                                                                 QApplication::doubleClickInterval());
        m_pressed = true;
        m_lastPress = time;
        // Only a click on the cell that already is the current one, in a
        // selected row: the first click selects, it does not edit.
        m_candidate = slow && mouse->button() == Qt::LeftButton && mouse->modifiers() == Qt::NoModifier &&
                      index.isValid() && index == m_view->currentIndex() &&
                      m_view->selectionModel()->isRowSelected(index.row(), {});
        if (m_candidate) {
            m_clickItem = static_cast<unsigned int>(m_view->RealItemFromScreen(index.row()));
            m_clickCol = static_cast<unsigned int>(m_view->RealColFromScreen(index.column()));
            m_clickPos = pos;
        }
    } else if (e->type() == QEvent::MouseButtonRelease) {
        // Wait out the double-click interval: a double click is not a slow one.
        if (m_candidate && (pos - m_clickPos).manhattanLength() < QApplication::startDragDistance())
            m_slowClick.start(QApplication::doubleClickInterval());
        m_candidate = false;
    } else {
        m_slowClick.stop();
        m_candidate = false;
    }
}

bool CNyrReportViewInplace::eventFilter(QObject* watched, QEvent* e)
{
    if (watched == m_view->viewport()) {
        if (e->type() == QEvent::MouseButtonPress || e->type() == QEvent::MouseButtonRelease ||
            e->type() == QEvent::MouseButtonDblClick)
            OnViewportMouse(e);
        else if (e->type() == QEvent::Resize)
            Place();
        return false;
    }
    if (e->type() == QEvent::KeyPress) {
        const auto* key = static_cast<QKeyEvent*>(e);
        if (key->key() == Qt::Key_F2 && key->modifiers() == Qt::NoModifier) {
            EditFocusedCell();
            return true;
        }
    } else if (CNyrMessageEvent* m = CNyrMessageEvent::From(e); m && m->Message() == WM_NYR_DBLCLK_SLOW) {
        m->SetResult(Begin(static_cast<unsigned int>(m->WParam()), static_cast<unsigned int>(m->LParam())));
        return true;
    }
    return false;
}

bool CNyrReportViewInplace::event(QEvent* e)
{
    CNyrMessageEvent* m = CNyrMessageEvent::From(e);
    if (!m || !m_editor || m->WParam() != reinterpret_cast<quintptr>(m_editor.data()))
        return QObject::event(e);
    if (m->Message() == WM_NYR_INPUT_CONTROL_SAVE_VALUE_INLINE)
        m->SetResult(Store(m->LParam()));
    else if (m->Message() == WM_NYR_INPUT_CONTROL_CANCEL_INLINE)
        Close(true);
    else
        return QObject::event(e);
    return true;
}

// ---------------------------------------------------------------------------
// The view's side

int CNyrReportView::EditRealItem(unsigned int realItem, unsigned int realCol)
{
    return d->inplace->Begin(realItem, realCol);
}

CNyrInputControl* CNyrReportView::GetInplaceEditor() const
{
    return d->inplace->Editor();
}

int CNyrReportView::EndInplaceEdit(int save)
{
    return d->inplace->End(save != 0);
}

int CNyrReportView::GetInplaceEditCell(unsigned int& realItem, unsigned int& realCol) const
{
    return d->inplace->Cell(realItem, realCol);
}
