#include "nyrwidgets/views/report_view_col.h"

#include <QMenu>

#include "nyrwidgets/views/report_view_p.h"

namespace {

// A column on screen shows a change of its label, alignment or width at once.
void TellOwner(const CNyrReportViewCol& col, bool width)
{
    if (col.Owner() && col.IsVisible())
        CNyrReportViewPrivate::Of(*col.Owner()).OnColumnChanged(col, width);
}

}  // namespace

CNyrReportViewCol::CNyrReportViewCol(CNyrReportView* owner, int hidden, std::string label, int alignment, int width,
                                     QMenu* menu, int subMenuPos)
    : m_owner(owner),
      m_hidden(hidden != 0),
      m_hiddenDefault(hidden != 0),
      m_label(std::move(label)),
      m_alignment(alignment),
      m_width(width),
      m_widthDefault(width),
      m_menu(menu),
      m_subMenuPos(subMenuPos)
{
}

CNyrReportViewCol::~CNyrReportViewCol() = default;

int CNyrReportViewCol::HideCol(int hide, int notify)
{
    if (m_hidden == (hide != 0))
        return 1;
    if (m_deleted)
        return 0;
    if (notify && !OnHideCol(hide))
        return 0;
    m_hidden = hide != 0;
    return 1;
}

int CNyrReportViewCol::DeleteCol(int notify)
{
    if (m_deleted)
        return 1;
    if (notify && !OnDeleteCol())
        return 0;
    m_deleted = true;
    return 1;
}

void CNyrReportViewCol::SetLabel(const std::string& label)
{
    if (label == m_label)
        return;
    m_label = label;
    TellOwner(*this, false);
}

void CNyrReportViewCol::SetAlignment(int alignment)
{
    if (alignment == m_alignment)
        return;
    m_alignment = alignment;
    TellOwner(*this, false);
}

void CNyrReportViewCol::SetWidth(int width)
{
    if (width == m_width)
        return;
    m_width = width;
    TellOwner(*this, true);
}

QMenu* CNyrReportViewCol::GetMenu(int* subMenuPos) const
{
    if (subMenuPos)
        *subMenuPos = m_subMenuPos;
    return m_menu;
}

void CNyrReportViewCol::SetMenu(QMenu* menu, int subMenuPos)
{
    m_menu = menu;
    m_subMenuPos = subMenuPos;
}

int CNyrReportViewCol::OnHideCol(int)
{
    return 1;
}

int CNyrReportViewCol::OnDeleteCol()
{
    return 1;
}
