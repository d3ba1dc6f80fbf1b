#include "nyrwidgets/views/report_view_item.h"

CNyrReportViewItem::~CNyrReportViewItem() = default;

int CNyrReportViewItem::HideItem(int hide, int notify)
{
    if (IsHidden() == (hide != 0))
        return 1;
    if (IsDeleted())
        return 0;
    if (notify && !OnHideItem(hide))
        return 0;
    if (hide)
        m_modelFlags |= FlagHidden;
    else
        m_modelFlags &= ~FlagHidden;
    return 1;
}

int CNyrReportViewItem::DeleteItem(int notify)
{
    if (IsDeleted())
        return 1;
    if (notify && !OnDeleteItem())
        return 0;
    m_modelFlags |= FlagDeleted;
    return 1;
}

void CNyrReportViewItem::CheckItem(int check, int notify)
{
    // Compared with IsChecked(), which is false for a hidden item: intended.
    if (IsChecked() == (check != 0) || IsDeleted())
        return;
    if (notify)
        OnCheckItem(check);
    if (check)
        m_modelFlags |= FlagChecked;
    else
        m_modelFlags &= ~FlagChecked;
}

void CNyrReportViewItem::SelectItem(int select, int notify)
{
    if (IsSelected() == (select != 0) || IsDeleted())
        return;
    // The disabled bit, not IsDisabled(): a hidden disabled item must not
    // come back selected either.
    if (select && (m_itemState & StateDisabled))
        return;
    if (notify)
        OnSelectItem(select);
    if (select)
        m_itemState |= StateSelected;
    else
        m_itemState &= ~StateSelected;
}

void CNyrReportViewItem::DisableItem(int disable, int notify)
{
    if (IsDisabled() == (disable != 0) || IsDeleted())
        return;
    // The selected bit, not IsSelected(): a hidden item loses its selection
    // too (SelectItem(0) would leave a hidden item's bit alone).
    if (disable && (m_itemState & StateSelected)) {
        if (notify)
            OnSelectItem(0);
        m_itemState &= ~StateSelected;
    }
    if (notify)
        OnDisableItem(disable);
    if (disable)
        m_itemState |= StateDisabled;
    else
        m_itemState &= ~StateDisabled;
}

int CNyrReportViewItem::OnHideItem(int)
{
    return 1;
}

int CNyrReportViewItem::OnDeleteItem()
{
    return 1;
}

void CNyrReportViewItem::OnCheckItem(int) {}

void CNyrReportViewItem::OnSelectItem(int) {}

void CNyrReportViewItem::OnDisableItem(int) {}

int CNyrReportViewItem::OnGetItemImage(unsigned int, unsigned int)
{
    return -1;
}

int CNyrReportViewItem::OnGetItemText(unsigned int, unsigned int, std::string& text)
{
    text.clear();
    return 0;
}

void CNyrReportViewItem::OnGetItemText(unsigned int, unsigned int) {}

int CNyrReportViewItem::OnGetMainItemText(unsigned int realCol, std::string& text)
{
    return OnGetItemText(realCol, 0, text);
}

void CNyrReportViewItem::OnGetItemColor(unsigned int, unsigned int, unsigned int, unsigned int, unsigned int&,
                                        unsigned int&)
{
}

int CNyrReportViewItem::OnGetItemOwnerDraw(unsigned int, unsigned int, unsigned int, unsigned int, QPainter*,
                                           const QStyleOptionViewItem&)
{
    return 0;
}

int CNyrReportViewItem::OnGetItemToolTip(unsigned int, unsigned int, std::string& text)
{
    text.clear();
    return 0;
}

int CNyrReportViewItem::OnCompareItem(const CNyrReportViewItem* other, unsigned int realCol)
{
    SORT_KEY a, b;
    if (!other || !OnGetItemSortKey(realCol, a) || !other->OnGetItemSortKey(realCol, b) || a.kind != b.kind)
        return 0;
    switch (a.kind) {
    case SORT_KEY::KindNumber: return Compare(a.number, b.number);
    case SORT_KEY::KindInteger: return Compare(static_cast<long>(a.integer), static_cast<long>(b.integer));
    case SORT_KEY::KindTime: return a.time && b.time ? Compare(*a.time, *b.time) : 0;
    default: return 0;
    }
}

int CNyrReportViewItem::OnGetItemSortKey(unsigned int, SORT_KEY&) const
{
    return 0;
}

QPointer<QObject> CNyrReportViewItem::OnGetItemDocument(unsigned int)
{
    return {};
}

int CNyrReportViewItem::OnEditItemKind(unsigned int)
{
    return 0;
}

void CNyrReportViewItem::OnEditItemBegin(unsigned int, CNyrInputControl&)
{
}

int CNyrReportViewItem::OnEditItemSave(unsigned int, CNyrInputControl&, std::string&)
{
    return 0;
}
