// The context menus of CNyrReportView: their styles, their pieces and how they
// are shown.
#include "nyrwidgets/views/report_view_menu.h"

#include <QContextMenuEvent>
#include <QGuiApplication>
#include <QHeaderView>
#include <QKeyEvent>

#include "nyr/frame/notifications.h"
#include "nyr/frame/text_ids.h"
#include "nyrwidgets/frame/message_event.h"
#include "nyrwidgets/views/header_ctrl_sort.h"
#include "nyrwidgets/views/report_view_p.h"
#include "nyrwidgets/views/view_print_list.h"
#include "nyrwidgets/views/views_text_p.h"

using nyr::views_detail::Text;

namespace {

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

// One kind of menu's styles: plain, and with Shift held.
void SetStyles(unsigned int (&styles)[2], unsigned int style, unsigned int shiftStyle)
{
    styles[0] = style;
    styles[1] = shiftStyle;
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
    SetStyles(d->menuStyles[kHeader], style, shiftStyle);
}

unsigned int CNyrReportView::GetHeaderMenu(bool shift) const
{
    return d->menuStyles[kHeader][shift];
}

void CNyrReportView::SetItemMenu(unsigned int style, unsigned int shiftStyle)
{
    SetStyles(d->menuStyles[kItem], style, shiftStyle);
}

unsigned int CNyrReportView::GetItemMenu(bool shift) const
{
    return d->menuStyles[kItem][shift];
}

void CNyrReportView::SetItemBkMenu(unsigned int style, unsigned int shiftStyle)
{
    SetStyles(d->menuStyles[kItemBk], style, shiftStyle);
}

unsigned int CNyrReportView::GetItemBkMenu(bool shift) const
{
    return d->menuStyles[kItemBk][shift];
}

void CNyrReportView::SetHeaderMenuDefault(unsigned int style, unsigned int shiftStyle)
{
    SetStyles(MenuDefaults()[kHeader], style, shiftStyle);
}

unsigned int CNyrReportView::GetHeaderMenuDefault(bool shift)
{
    return MenuDefaults()[kHeader][shift];
}

void CNyrReportView::SetItemMenuDefault(unsigned int style, unsigned int shiftStyle)
{
    SetStyles(MenuDefaults()[kItem], style, shiftStyle);
}

unsigned int CNyrReportView::GetItemMenuDefault(bool shift)
{
    return MenuDefaults()[kItem][shift];
}

void CNyrReportView::SetItemBkMenuDefault(unsigned int style, unsigned int shiftStyle)
{
    SetStyles(MenuDefaults()[kItemBk], style, shiftStyle);
}

unsigned int CNyrReportView::GetItemBkMenuDefault(bool shift)
{
    return MenuDefaults()[kItemBk][shift];
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

void CNyrReportViewPrivate::TakeClassDefaults()
{
    for (int kind = 0; kind < 3; ++kind)
        SetStyles(menuStyles[kind], MenuDefaults()[kind][0], MenuDefaults()[kind][1]);
    columnsDlgStyle = ColumnsDlgStyleDefault();
    autoRestore = AutoRestoreDefault();
    serializeSortState = CNyrReportView::GetSerializeSortStateDefault();
    serializeColWidth = CNyrReportView::GetSerializeColWidthAndHiddenDefault();
    serializeColOrder = CNyrReportView::GetSerializeColOrderDefault();
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
    d->InsertRowMenus(menu, style);
    if (style & MenuGlobal)
        InsertGlobalItemMenu(menu);
}

void CNyrReportView::BuildItemBkContextMenu(CNyrReportViewMenuPopUp& menu, bool shift)
{
    const unsigned int style = GetItemBkMenu(shift);
    d->menuRealItem = -1;
    d->InsertRowMenus(menu, style);
    if (style & MenuGlobal)
        InsertGlobalItemBkMenu(menu);
}

void CNyrReportViewPrivate::InsertRowMenus(CNyrReportViewMenuPopUp& menu, unsigned int style)
{
    // A separator at the top of a menu is left out (AppendSeparator).
    if (style & CNyrReportView::MenuSelect) {
        menu.AppendSeparator();
        q->InsertMenuSelect(menu);
    }
    if (style & CNyrReportView::MenuCheck) {
        menu.AppendSeparator();
        q->InsertMenuCheck(menu);
    }
    if (style & (CNyrReportView::MenuFind | CNyrReportView::MenuFindNP))
        menu.AppendSeparator();
    if (style & CNyrReportView::MenuFind)
        q->InsertMenuFind(menu);
    if (style & CNyrReportView::MenuFindNP)
        q->InsertMenuFindNP(menu);
    if (style & (CNyrReportView::MenuSaveAs | CNyrReportView::MenuPrint))
        menu.AppendSeparator();
    if (style & CNyrReportView::MenuSaveAs)
        q->InsertMenuSaveAs(menu);
    if (style & CNyrReportView::MenuPrint)
        q->InsertMenuPrint(menu);
}

void CNyrReportView::InsertMenuAutoArrange(CNyrReportViewMenuPopUp& menu)
{
    d->AppendCommand(menu, WM_NYR_REPORTVIEW_AUTO_ARRANGE);
}

void CNyrReportView::InsertMenuSort(CNyrReportViewMenuPopUp& menu, unsigned int realCol)
{
    // The column the sort entries act on.
    d->menuRealCol = realCol < d->cols.size() ? static_cast<int>(realCol) : -1;
    CNyrReportViewMenuPopUp* sub = menu.AppendSubMenu(NYR_IDS_MENU_SORT);
    const bool single = d->sortState.size() == 1 && d->sortState[0].realCol == realCol;
    const auto checkable = [](QAction* action, bool checked) {
        action->setCheckable(true);
        action->setChecked(checked);
    };
    checkable(d->AppendCommand(*sub, WM_NYR_REPORTVIEW_SORT_ASCENDING), single && d->sortState[0].ascending);
    checkable(d->AppendCommand(*sub, WM_NYR_REPORTVIEW_SORT_DESCENDING), single && !d->sortState[0].ascending);
    checkable(d->AppendCommand(*sub, WM_NYR_REPORTVIEW_SORT_UNSORTED), d->sortState.empty());
    sub->addSeparator();
    d->AppendCommand(*sub, WM_NYR_REPORTVIEW_SORT_MULTIPLE);
}

void CNyrReportView::InsertMenuViewHide(CNyrReportViewMenuPopUp& menu, unsigned int realCol)
{
    const CNyrReportViewCol* col = GetRealCol(realCol);
    menu.AppendSeparator();
    menu.AppendAction(
        NYR_IDS_MENU_HIDE, [this, realCol] { HideRealCol(realCol, 1, 1); },
        GetColumnCount() > 1 && col && col->IsVisible());
    d->AppendCommand(menu, WM_NYR_REPORTVIEW_HIDE_ALL_COLS);
    const QAction* viewAll = d->AppendCommand(menu, WM_NYR_REPORTVIEW_VIEW_ALL_COLS);
    CNyrReportViewMenuPopUp* view = menu.AppendSubMenu(NYR_IDS_MENU_VIEW, viewAll->isEnabled());
    for (std::size_t c = 0; c < d->cols.size(); ++c) {
        const auto r = static_cast<unsigned int>(c);
        if (d->cols[c]->IsHidden() && !d->cols[c]->IsDeleted())
            view->AppendAction(QString::fromStdString(d->cols[c]->GetLabel()), [this, r] { HideRealCol(r, 0, 1); });
    }
}

void CNyrReportView::InsertMenuColumns(CNyrReportViewMenuPopUp& menu)
{
    d->AppendCommand(menu, WM_NYR_REPORTVIEW_COLUMNS_DLG);
}

void CNyrReportView::InsertMenuFind(CNyrReportViewMenuPopUp& menu)
{
    d->AppendCommand(menu, WM_NYR_REPORTVIEW_FIND);
}

void CNyrReportView::InsertMenuFindNP(CNyrReportViewMenuPopUp& menu)
{
    d->AppendCommand(menu, WM_NYR_REPORTVIEW_FIND_NEXT);
    d->AppendCommand(menu, WM_NYR_REPORTVIEW_FIND_PREV);
}

void CNyrReportView::InsertMenuSaveAs(CNyrReportViewMenuPopUp& menu)
{
    d->AppendCommand(menu, WM_NYR_REPORTVIEW_SAVE_AS);
}

void CNyrReportView::InsertMenuPrint(CNyrReportViewMenuPopUp& menu)
{
    d->AppendCommand(menu, NyrListViewPrintMessage());
    d->AppendCommand(menu, NyrListViewPrintPreviewMessage());
    d->AppendCommand(menu, NyrListViewExportPdfMessage());
}

void CNyrReportView::InsertMenuSelect(CNyrReportViewMenuPopUp& menu)
{
    d->AppendCommand(menu, WM_NYR_REPORTVIEW_SELECT_ALL);
    d->AppendCommand(menu, WM_NYR_REPORTVIEW_INVERT_SELECTION);
    if (HasCheckBoxes())
        d->AppendCommand(menu, WM_NYR_REPORTVIEW_SELECT_CHECKED_ITEMS);
}

void CNyrReportView::InsertMenuCheck(CNyrReportViewMenuPopUp& menu)
{
    if (!HasCheckBoxes())
        return;
    d->AppendCommand(menu, WM_NYR_REPORTVIEW_CHECK_ALL);
    d->AppendCommand(menu, WM_NYR_REPORTVIEW_INVERT_CHECKED);
}

void CNyrReportView::InsertMenuModify(CNyrReportViewMenuPopUp& menu)
{
    d->AppendCommand(menu, WM_NYR_REPORTVIEW_MODIFY);
}

void CNyrReportView::InsertMenuDelete(CNyrReportViewMenuPopUp& menu)
{
    d->AppendCommand(menu, WM_NYR_REPORTVIEW_DELETE_SELECTED);
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
        BuildHeaderContextMenu(menu, realCol >= 0 ? static_cast<unsigned int>(realCol) : NYR_NO_INDEX, shift);
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
