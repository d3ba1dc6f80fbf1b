// Context menus and command messages of CNyrReportView.
#include "nyrwidgets/views/report_view_menu.h"

#include <QContextMenuEvent>
#include <QGuiApplication>
#include <QHeaderView>
#include <QKeyEvent>

#include "nyr/frame/notifications.h"
#include "nyr/frame/resource_module.h"
#include "nyrwidgets/frame/message_event.h"
#include "nyrwidgets/views/header_ctrl_sort.h"
#include "nyrwidgets/views/report_view_p.h"

using nyr::views_detail::Ix;

namespace {

QString Text(unsigned int id)
{
    return QString::fromStdString(NyrLoadString(id));
}

enum eMenuKind { kHeader = 0, kItem = 1, kItemBk = 2 };

QPointer<QMenu>& GlobalMenu(eMenuKind kind)
{
    static QPointer<QMenu> menus[3];
    return menus[kind];
}

unsigned int (&MenuDefaults())[3][2]
{
    constexpr unsigned int header = CNyrReportView::MenuAutoArrange | CNyrReportView::MenuSort |
                                    CNyrReportView::MenuViewHide | CNyrReportView::MenuColumns |
                                    CNyrReportView::MenuGlobal;
    constexpr unsigned int rows = CNyrReportView::MenuSelect | CNyrReportView::MenuCheck | CNyrReportView::MenuFind |
                                  CNyrReportView::MenuFindNP | CNyrReportView::MenuSaveAs | CNyrReportView::MenuPrint |
                                  CNyrReportView::MenuGlobal;
    static unsigned int defaults[3][2] = {
        {header, header},
        {rows, rows | CNyrReportView::MenuModify | CNyrReportView::MenuDelete},
        {rows, rows},
    };
    return defaults;
}

unsigned int& ColumnsDlgStyleDefault()
{
    static unsigned int value = CNyrReportView::ColumnsDlgAll;
    return value;
}

int& AutoRestoreDefault()
{
    static int value = 1;
    return value;
}

}  // namespace

// ---------------------------------------------------------------------------
// CNyrReportViewMenuPopUp

CNyrReportViewMenuPopUp::CNyrReportViewMenuPopUp(QObject* target, QWidget* parent) : QMenu(parent), m_target(target)
{
}

CNyrReportViewMenuPopUp::~CNyrReportViewMenuPopUp() = default;

QAction* CNyrReportViewMenuPopUp::AppendCommand(unsigned int textId, unsigned int message, bool enabled)
{
    QAction* action = addAction(Text(textId));
    action->setData(message);
    action->setProperty("nyrTextId", textId);
    action->setEnabled(enabled);
    QPointer<QObject> target = m_target;
    connect(action, &QAction::triggered, this, [target, message] {
        if (target)
            NyrSendMessage(target, message);
    });
    return action;
}

QAction* CNyrReportViewMenuPopUp::AppendAction(unsigned int textId, std::function<void()> run, bool enabled)
{
    QAction* action = AppendAction(Text(textId), std::move(run), enabled);
    action->setProperty("nyrTextId", textId);
    return action;
}

QAction* CNyrReportViewMenuPopUp::AppendAction(const QString& text, std::function<void()> run, bool enabled)
{
    QAction* action = addAction(text);
    action->setEnabled(enabled);
    connect(action, &QAction::triggered, this, [run = std::move(run)] { run(); });
    return action;
}

CNyrReportViewMenuPopUp* CNyrReportViewMenuPopUp::AppendSubMenu(unsigned int textId, bool enabled)
{
    auto* sub = new CNyrReportViewMenuPopUp(m_target, this);
    sub->setTitle(Text(textId));
    QAction* action = addMenu(sub);
    action->setProperty("nyrTextId", textId);
    action->setEnabled(enabled);
    return sub;
}

void CNyrReportViewMenuPopUp::AppendSeparator()
{
    const QList<QAction*> list = actions();
    if (!list.isEmpty() && !list.last()->isSeparator())
        addSeparator();
}

namespace {

template <class Pred>
QAction* FindAction(const QMenu* menu, Pred pred)
{
    for (QAction* action : menu->actions()) {
        if (pred(action))
            return action;
        if (action->menu()) {
            if (QAction* found = FindAction(action->menu(), pred))
                return found;
        }
    }
    return nullptr;
}

}  // namespace

QAction* CNyrReportViewMenuPopUp::FindCommand(unsigned int message) const
{
    return FindAction(this, [message](const QAction* a) {
        return !a->menu() && a->data().isValid() && a->data().toUInt() == message;
    });
}

QAction* CNyrReportViewMenuPopUp::FindText(unsigned int textId) const
{
    return FindAction(this, [textId](const QAction* a) {
        const QVariant id = a->property("nyrTextId");
        return id.isValid() && id.toUInt() == textId;
    });
}

namespace {

CNyrReportViewMenuPopUp::ChoiceHook& Hook()
{
    static CNyrReportViewMenuPopUp::ChoiceHook hook;
    return hook;
}

}  // namespace

QAction* CNyrReportViewMenuPopUp::Exec(const QPoint& globalPos)
{
    // A copy: the hook may install another one while it runs.
    const ChoiceHook hook = Hook();
    if (!hook)
        return exec(globalPos);
    QAction* chosen = hook(*this);
    if (!chosen || !chosen->isEnabled() || chosen->menu())
        return nullptr;
    chosen->trigger();
    return chosen;
}

CNyrReportViewMenuPopUp::ChoiceHook CNyrReportViewMenuPopUp::SetChoiceHook(ChoiceHook hook)
{
    ChoiceHook previous = std::move(Hook());
    Hook() = std::move(hook);
    return previous;
}

void CNyrReportViewMenuPopUp::AppendMenu(const QMenu* menu)
{
    if (!menu || menu->actions().isEmpty())
        return;
    AppendSeparator();
    addActions(menu->actions());
}

// ---------------------------------------------------------------------------
// Styles

void CNyrReportView::SetHeaderMenu(unsigned int style, unsigned int shiftStyle)
{
    d->menuStyles[kHeader][0] = style;
    d->menuStyles[kHeader][1] = shiftStyle;
}

unsigned int CNyrReportView::GetHeaderMenu(bool shift) const
{
    return d->menuStyles[kHeader][shift ? 1 : 0];
}

void CNyrReportView::SetItemMenu(unsigned int style, unsigned int shiftStyle)
{
    d->menuStyles[kItem][0] = style;
    d->menuStyles[kItem][1] = shiftStyle;
}

unsigned int CNyrReportView::GetItemMenu(bool shift) const
{
    return d->menuStyles[kItem][shift ? 1 : 0];
}

void CNyrReportView::SetItemBkMenu(unsigned int style, unsigned int shiftStyle)
{
    d->menuStyles[kItemBk][0] = style;
    d->menuStyles[kItemBk][1] = shiftStyle;
}

unsigned int CNyrReportView::GetItemBkMenu(bool shift) const
{
    return d->menuStyles[kItemBk][shift ? 1 : 0];
}

void CNyrReportView::SetHeaderMenuDefault(unsigned int style, unsigned int shiftStyle)
{
    MenuDefaults()[kHeader][0] = style;
    MenuDefaults()[kHeader][1] = shiftStyle;
}

unsigned int CNyrReportView::GetHeaderMenuDefault(bool shift)
{
    return MenuDefaults()[kHeader][shift ? 1 : 0];
}

void CNyrReportView::SetItemMenuDefault(unsigned int style, unsigned int shiftStyle)
{
    MenuDefaults()[kItem][0] = style;
    MenuDefaults()[kItem][1] = shiftStyle;
}

unsigned int CNyrReportView::GetItemMenuDefault(bool shift)
{
    return MenuDefaults()[kItem][shift ? 1 : 0];
}

void CNyrReportView::SetItemBkMenuDefault(unsigned int style, unsigned int shiftStyle)
{
    MenuDefaults()[kItemBk][0] = style;
    MenuDefaults()[kItemBk][1] = shiftStyle;
}

unsigned int CNyrReportView::GetItemBkMenuDefault(bool shift)
{
    return MenuDefaults()[kItemBk][shift ? 1 : 0];
}

void CNyrReportView::SetGlobalHeaderMenu(QMenu* menu)
{
    GlobalMenu(kHeader) = menu;
}

void CNyrReportView::SetGlobalItemMenu(QMenu* menu)
{
    GlobalMenu(kItem) = menu;
}

void CNyrReportView::SetGlobalItemBkMenu(QMenu* menu)
{
    GlobalMenu(kItemBk) = menu;
}

void CNyrReportView::SetAutoRestore(int autoRestore)
{
    d->autoRestore = autoRestore;
}

int CNyrReportView::GetAutoRestore() const
{
    return d->autoRestore;
}

void CNyrReportView::SetAutoRestoreDefault(int autoRestore)
{
    AutoRestoreDefault() = autoRestore;
}

int CNyrReportView::GetAutoRestoreDefault()
{
    return AutoRestoreDefault();
}

void CNyrReportView::Private::TakeClassDefaults()
{
    for (int kind = 0; kind < 3; ++kind) {
        menuStyles[kind][0] = MenuDefaults()[kind][0];
        menuStyles[kind][1] = MenuDefaults()[kind][1];
    }
    columnsDlgStyle = ColumnsDlgStyleDefault();
    autoRestore = AutoRestoreDefault();
    serializeSortState = GetSerializeSortStateDefault();
    serializeColWidth = GetSerializeColWidthAndHiddenDefault();
    serializeColOrder = GetSerializeColOrderDefault();
}

void CNyrReportView::SetColumnsDlgStyleDefault(unsigned int style)
{
    ColumnsDlgStyleDefault() = style;
}

unsigned int CNyrReportView::GetColumnsDlgStyleDefault()
{
    return ColumnsDlgStyleDefault();
}

// ---------------------------------------------------------------------------
// Menus

void CNyrReportView::BuildHeaderContextMenu(CNyrReportViewMenuPopUp& menu, unsigned int realCol, bool shift)
{
    const unsigned int style = GetHeaderMenu(shift);
    d->menuRealCol = realCol < d->cols.size() ? static_cast<int>(realCol) : -1;
    if (style & MenuSort)
        InsertMenuSort(menu, realCol);
    if (style & MenuViewHide)
        InsertMenuViewHide(menu, realCol);
    if (style & MenuColumns) {
        if (!(style & MenuViewHide))
            menu.AppendSeparator();
        InsertMenuColumns(menu);
    }
    if (style & MenuAutoArrange) {
        menu.AppendSeparator();
        InsertMenuAutoArrange(menu);
    }
    if (const CNyrReportViewCol* col = GetRealCol(realCol)) {
        int pos = -1;
        if (const QMenu* own = col->GetMenu(&pos)) {
            if (pos < 0)
                menu.AppendMenu(own);
            else if (pos < own->actions().size())
                menu.AppendMenu(own->actions().at(pos)->menu());
        }
    }
    if (style & MenuGlobal)
        InsertGlobalHeaderMenu(menu);
}

void CNyrReportView::BuildRealItemContextMenu(CNyrReportViewMenuPopUp& menu, unsigned int realItem, bool shift)
{
    const unsigned int style = GetItemMenu(shift);
    d->menuRealItem = d->ValidReal(realItem) ? static_cast<int>(realItem) : -1;
    if (style & MenuModify)
        InsertMenuModify(menu);
    if (style & MenuDelete)
        InsertMenuDelete(menu);
    if (style & MenuSelect) {
        menu.AppendSeparator();
        InsertMenuSelect(menu);
    }
    if (style & MenuCheck) {
        menu.AppendSeparator();
        InsertMenuCheck(menu);
    }
    InsertMenuFindAndSaveAs(menu, style);
    if (style & MenuGlobal)
        InsertGlobalItemMenu(menu);
}

void CNyrReportView::BuildItemBkContextMenu(CNyrReportViewMenuPopUp& menu, bool shift)
{
    const unsigned int style = GetItemBkMenu(shift);
    d->menuRealItem = -1;
    if (style & MenuSelect)
        InsertMenuSelect(menu);
    if (style & MenuCheck) {
        menu.AppendSeparator();
        InsertMenuCheck(menu);
    }
    InsertMenuFindAndSaveAs(menu, style);
    if (style & MenuGlobal)
        InsertGlobalItemBkMenu(menu);
}

void CNyrReportView::InsertMenuFindAndSaveAs(CNyrReportViewMenuPopUp& menu, unsigned int style)
{
    if (style & (MenuFind | MenuFindNP))
        menu.AppendSeparator();
    if (style & MenuFind)
        InsertMenuFind(menu);
    if (style & MenuFindNP)
        InsertMenuFindNP(menu);
    if (style & MenuSaveAs) {
        menu.AppendSeparator();
        InsertMenuSaveAs(menu);
    }
    if (style & MenuPrint) {
        if (!(style & MenuSaveAs))
            menu.AppendSeparator();
        InsertMenuPrint(menu);
    }
}

void CNyrReportView::InsertMenuAutoArrange(CNyrReportViewMenuPopUp& menu)
{
    menu.AppendCommand(26022, WM_NYR_REPORTVIEW_AUTO_ARRANGE, !d->screenToRealCol.empty());
}

void CNyrReportView::InsertMenuSort(CNyrReportViewMenuPopUp& menu, unsigned int realCol)
{
    CNyrReportViewMenuPopUp* sub = menu.AppendSubMenu(26023);
    const bool onColumn = realCol < d->cols.size();
    const bool single = d->sortState.size() == 1 && d->sortState[0].realCol == realCol;
    QAction* ascending = sub->AppendCommand(26024, WM_NYR_REPORTVIEW_SORT_ASCENDING, onColumn);
    ascending->setCheckable(true);
    ascending->setChecked(single && d->sortState[0].ascending);
    QAction* descending = sub->AppendCommand(26025, WM_NYR_REPORTVIEW_SORT_DESCENDING, onColumn);
    descending->setCheckable(true);
    descending->setChecked(single && !d->sortState[0].ascending);
    QAction* original = sub->AppendCommand(26026, WM_NYR_REPORTVIEW_SORT_UNSORTED);
    original->setCheckable(true);
    original->setChecked(d->sortState.empty());
    sub->addSeparator();
    sub->AppendCommand(26044, WM_NYR_REPORTVIEW_SORT_MULTIPLE, !d->cols.empty());
}

void CNyrReportView::InsertMenuViewHide(CNyrReportViewMenuPopUp& menu, unsigned int realCol)
{
    const bool several = d->screenToRealCol.size() > 1;
    const CNyrReportViewCol* col = GetRealCol(realCol);
    menu.AppendSeparator();
    menu.AppendAction(
        26027, [this, realCol] { HideRealCol(realCol, 1, 1); }, several && col && col->IsVisible());
    menu.AppendCommand(26028, WM_NYR_REPORTVIEW_HIDE_ALL_COLS, several);
    std::vector<unsigned int> hidden;
    for (std::size_t c = 0; c < d->cols.size(); ++c) {
        if (d->cols[c]->IsHidden() && !d->cols[c]->IsDeleted())
            hidden.push_back(static_cast<unsigned int>(c));
    }
    menu.AppendCommand(26029, WM_NYR_REPORTVIEW_VIEW_ALL_COLS, !hidden.empty());
    CNyrReportViewMenuPopUp* view = menu.AppendSubMenu(26030, !hidden.empty());
    for (unsigned int r : hidden) {
        view->AppendAction(QString::fromStdString(d->cols[r]->GetLabel()), [this, r] { HideRealCol(r, 0, 1); });
    }
}

void CNyrReportView::InsertMenuColumns(CNyrReportViewMenuPopUp& menu)
{
    menu.AppendCommand(26043, WM_NYR_REPORTVIEW_COLUMNS_DLG, d->columnsDlgStyle != 0 && !d->cols.empty());
}

void CNyrReportView::InsertMenuFind(CNyrReportViewMenuPopUp& menu)
{
    menu.AppendCommand(26032, WM_NYR_REPORTVIEW_FIND);
}

void CNyrReportView::InsertMenuFindNP(CNyrReportViewMenuPopUp& menu)
{
    const bool can = !CNyrListViewFind::SearchCrit().searchString.empty() && !d->screenToRealItem.empty();
    menu.AppendCommand(26033, WM_NYR_REPORTVIEW_FIND_NEXT, can);
    menu.AppendCommand(26034, WM_NYR_REPORTVIEW_FIND_PREV, can);
}

void CNyrReportView::InsertMenuSaveAs(CNyrReportViewMenuPopUp& menu)
{
    menu.AppendCommand(26031, WM_NYR_REPORTVIEW_SAVE_AS, !d->screenToRealCol.empty());
}

void CNyrReportView::InsertMenuSelect(CNyrReportViewMenuPopUp& menu)
{
    const bool any = !d->screenToRealItem.empty();
    menu.AppendCommand(26035, WM_NYR_REPORTVIEW_SELECT_ALL, any);
    menu.AppendCommand(26036, WM_NYR_REPORTVIEW_INVERT_SELECTION, any);
    if (HasCheckBoxes())
        menu.AppendCommand(26037, WM_NYR_REPORTVIEW_SELECT_CHECKED_ITEMS, GetItemsChecked() != 0);
}

void CNyrReportView::InsertMenuCheck(CNyrReportViewMenuPopUp& menu)
{
    if (!HasCheckBoxes())
        return;
    const bool any = !d->screenToRealItem.empty();
    menu.AppendCommand(26038, WM_NYR_REPORTVIEW_CHECK_ALL, any);
    menu.AppendCommand(26039, WM_NYR_REPORTVIEW_INVERT_CHECKED, any);
}

void CNyrReportView::InsertMenuModify(CNyrReportViewMenuPopUp& menu)
{
    menu.AppendCommand(26042, WM_NYR_REPORTVIEW_MODIFY, d->menuRealItem >= 0);
}

void CNyrReportView::InsertMenuDelete(CNyrReportViewMenuPopUp& menu)
{
    menu.AppendCommand(26041, WM_NYR_REPORTVIEW_DELETE_SELECTED, GetItemsSelected() != 0);
}

void CNyrReportView::InsertGlobalHeaderMenu(CNyrReportViewMenuPopUp& menu)
{
    menu.AppendMenu(GlobalMenu(kHeader));
}

void CNyrReportView::InsertGlobalItemMenu(CNyrReportViewMenuPopUp& menu)
{
    menu.AppendMenu(GlobalMenu(kItem));
}

void CNyrReportView::InsertGlobalItemBkMenu(CNyrReportViewMenuPopUp& menu)
{
    menu.AppendMenu(GlobalMenu(kItemBk));
}

void CNyrReportView::ShowContextMenu(const QPoint& globalPos)
{
    ShowContextMenu(globalPos, (QGuiApplication::keyboardModifiers() & Qt::ShiftModifier) != 0);
}

void CNyrReportView::ShowContextMenu(const QPoint& globalPos, bool shift)
{
    CNyrReportViewMenuPopUp menu(this, this);
    QHeaderView* header = horizontalHeader();
    const QPoint inHeader = header->mapFromGlobal(globalPos);
    if (header->isVisible() && header->rect().contains(inHeader)) {
        const int realCol = RealColFromScreen(header->logicalIndexAt(inHeader));
        BuildHeaderContextMenu(menu, realCol >= 0 ? static_cast<unsigned int>(realCol) : 0xFFFFFFFFu, shift);
    } else {
        const int realItem = RealItemFromScreen(rowAt(viewport()->mapFromGlobal(globalPos).y()));
        if (realItem >= 0)
            BuildRealItemContextMenu(menu, static_cast<unsigned int>(realItem), shift);
        else
            BuildItemBkContextMenu(menu, shift);
    }
    if (!menu.actions().isEmpty())
        menu.Exec(globalPos);
}

void CNyrReportView::contextMenuEvent(QContextMenuEvent* e)
{
    QPoint globalPos = e->globalPos();
    if (e->reason() == QContextMenuEvent::Keyboard && GetFocusedItem() >= 0) {
        const QRect row = visualRect(model()->index(GetFocusedItem(), 0));
        globalPos = viewport()->mapToGlobal(row.center());
    }
    ShowContextMenu(globalPos, (e->modifiers() & Qt::ShiftModifier) != 0);
    e->accept();
}

void CNyrReportView::keyPressEvent(QKeyEvent* e)
{
    // Delete works wherever the item menu offers "&Delete\tDEL", with or
    // without Shift (by default only the Shift menu has it).
    const bool offered = ((GetItemMenu(false) | GetItemMenu(true)) & MenuDelete) != 0;
    if (e->key() == Qt::Key_Delete && e->modifiers() == Qt::NoModifier && offered) {
        OnDeleteSelectedItems();
        e->accept();
        return;
    }
    CNyrListView::keyPressEvent(e);
}

// ---------------------------------------------------------------------------
// Commands

bool CNyrReportView::event(QEvent* e)
{
    if (CNyrMessageEvent* m = CNyrMessageEvent::From(e)) {
        if (OnCommand(m->Message())) {
            m->SetResult(1);
            return true;
        }
    }
    return CNyrListView::event(e);
}

bool CNyrReportView::OnCommand(unsigned int message)
{
    if (message == WM_NYR_REPORTVIEW_SORT_ASCENDING || message == WM_NYR_REPORTVIEW_SORT_DESCENDING)
        return SortByMenuColumn(message);
    if (message == WM_NYR_REPORTVIEW_SORT_UNSORTED) {
        if (!d->sortState.empty())
            SortList(std::vector<SORT_STATE_REALCOL>{});
        return true;
    }
    if (message == WM_NYR_REPORTVIEW_SORT_MULTIPLE) {
        SortMultiple();
        return true;
    }
    if (message == WM_NYR_REPORTVIEW_VIEW_ALL_COLS) {
        HideAllCols(0, 1);
        return true;
    }
    if (message == WM_NYR_REPORTVIEW_HIDE_ALL_COLS) {
        // The column under the menu stays (the first on screen without one),
        // so that the header keeps a column to open the menu on.
        int keep = d->menuRealCol;
        if (keep < 0 || !d->cols[static_cast<std::size_t>(keep)]->IsVisible())
            keep = RealColFromScreen(horizontalHeader()->logicalIndex(0));
        HideAllCols(1, 1, keep);
        return true;
    }
    if (message == WM_NYR_REPORTVIEW_AUTO_ARRANGE) {
        AutoArrangeColumns();
        return true;
    }
    if (message == WM_NYR_REPORTVIEW_MODIFY) {
        int realItem = d->menuRealItem >= 0 ? d->menuRealItem : GetFocusedRealItem();
        if (realItem >= 0 && d->ValidReal(static_cast<unsigned int>(realItem)))
            OnModifyRealItem(static_cast<unsigned int>(realItem));
        return true;
    }
    if (message == WM_NYR_REPORTVIEW_DELETE_SELECTED) {
        OnDeleteSelectedItems();
        return true;
    }
    if (message == WM_NYR_REPORTVIEW_SELECT_ALL) {
        SelectAllItems(1, 1);
        return true;
    }
    if (message == WM_NYR_REPORTVIEW_INVERT_SELECTION) {
        InvertSelection(1);
        return true;
    }
    if (message == WM_NYR_REPORTVIEW_SELECT_CHECKED_ITEMS) {
        SelectCheckedItems(1);
        return true;
    }
    if (message == WM_NYR_REPORTVIEW_CHECK_ALL) {
        CheckAllItems(1, 1);
        return true;
    }
    if (message == WM_NYR_REPORTVIEW_INVERT_CHECKED) {
        InvertChecked(1);
        return true;
    }
    if (message == WM_NYR_REPORTVIEW_COLUMNS_DLG) {
        ColumnsDialog();
        return true;
    }
    if (message == WM_NYR_REPORTVIEW_POST_HDN_ENDDRAG) {
        // The header has applied the move by now: read the order back.
        HoldAllColInfos();
        GetHeaderCtrl()->UpdateCurrentSortedColumns();
        return true;
    }
    return false;
}
