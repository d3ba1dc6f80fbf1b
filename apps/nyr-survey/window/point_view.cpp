#include "apps/nyr-survey/window/point_view.h"

#include "apps/nyr-survey/io/points_columns.h"
#include "apps/nyr-survey/project/survey_point.h"
#include "apps/nyr-survey/window/point_dialog.h"
#include "nyr/frame/notifications.h"
#include "nyrwidgets/frame/message_event.h"
#include "nyrwidgets/frame/wait_cursor.h"
#include "nyrwidgets/msgbox/message_box.h"
#include "nyrwidgets/views/list_ctrl.h"
#include "nyrwidgets/views/report_view_col.h"

namespace survey {

namespace {

struct ColumnLook
{
    int width;
    int alignment;
    int hidden;
};

// Pixels, alignment and hidden default of each eColumn.
constexpr ColumnLook kLook[ColCount] = {
    {110, LVCFMT_LEFT, 0},  {60, LVCFMT_LEFT, 0},   {120, LVCFMT_RIGHT, 0}, {120, LVCFMT_RIGHT, 0},
    {90, LVCFMT_RIGHT, 0},  {150, LVCFMT_RIGHT, 0}, {150, LVCFMT_RIGHT, 0}, {150, LVCFMT_LEFT, 0},
    {70, LVCFMT_RIGHT, 0},  {100, LVCFMT_RIGHT, 0}, {110, LVCFMT_RIGHT, 0}, {130, LVCFMT_RIGHT, 0},
};

}  // namespace

CPointView::CPointView(QWidget* parent) : CNyrReportView(parent), m_project(std::make_unique<CSurveyProject>())
{
    SetInifileSection(kSection);
    SerializeColWidthAndHidden(1);
    SerializeColOrder(1);
    SetSerializeSortState(1);
    SetAutoRestore(1);
    SetCheckBoxes(true);
    const unsigned int rows =
        MenuSelect | MenuCheck | MenuDelete | MenuFind | MenuFindNP | MenuSaveAs | MenuPrint | MenuGlobal;
    SetItemMenu(rows | MenuModify, rows | MenuModify);
    SetItemBkMenu(rows, rows);
    std::vector<std::string> labels;
    std::vector<int> widths, alignments, hidden;
    for (unsigned int c = 0; c < ColCount; ++c) {
        labels.push_back(ColumnLabel(c));
        widths.push_back(kLook[c].width);
        alignments.push_back(kLook[c].alignment);
        hidden.push_back(kLook[c].hidden);
    }
    AddRealCols(labels, widths, alignments, hidden);
    connect(this, &QAbstractItemView::doubleClicked, this, [this](const QModelIndex& index) {
        if (const int real = RealItemFromScreen(index.row()); real >= 0)
            EditPoint(static_cast<unsigned int>(real));
    });
}

CPointView::~CPointView()
{
    // The points refer to the project: they go first.
    CleanupRealItems(0);
}

void CPointView::SetProject(ProjectData loaded)
{
    CNyrWaitCursor wait;
    CleanupRealItems(1);
    m_project = std::move(loaded.project);
    for (std::unique_ptr<CSurveyPoint>& point : loaded.points)
        AddRealItem(point.release());
    DisplayRealItems(0);
    SetModified(false);
    emit ProjectChanged();
}

CSurveyProject& CPointView::Project() const
{
    return *m_project;
}

std::vector<const CSurveyPoint*> CPointView::Points() const
{
    std::vector<const CSurveyPoint*> points;
    points.reserve(GetRealItemCount());
    for (unsigned int r = 0; r < GetRealItemCount(); ++r)
        if (const CNyrReportViewItem* item = GetRealItem(r); item && !item->IsDeleted())
            points.push_back(static_cast<const CSurveyPoint*>(item));
    return points;
}

std::vector<const CSurveyPoint*> CPointView::ChosenPoints() const
{
    std::vector<unsigned int> reals;
    GetCheckedRealItems(reals);
    if (reals.empty())
        GetSelectedRealItems(reals);
    std::vector<const CSurveyPoint*> points;
    for (unsigned int r : reals)
        points.push_back(static_cast<const CSurveyPoint*>(GetRealItem(r)));
    return points;
}

int CPointView::FocusedRealItem() const
{
    int real = GetFocusedRealItem();
    if (real < 0 || !GetRealItemSelected(static_cast<unsigned int>(real))) {
        std::vector<unsigned int> selected;
        GetSelectedRealItems(selected);
        real = selected.empty() ? real : static_cast<int>(selected.front());
    }
    return real;
}

bool CPointView::SetBaseFromFocus()
{
    const int real = FocusedRealItem();
    const auto* point = real >= 0 ? static_cast<const CSurveyPoint*>(GetRealItem(static_cast<unsigned int>(real)))
                                  : nullptr;
    if (!point || !point->IsVisible())
        return false;
    m_project->SetBase(point->Name(), point->GetData().lat, point->GetData().lon);
    viewport()->update();
    emit ProjectChanged();
    return true;
}

bool CPointView::ChooseBase(const std::string& name)
{
    const CSurveyPoint* first = nullptr;
    for (const CSurveyPoint* point : Points()) {
        if (!point->IsVisible())
            continue;
        if (point->Name() == name) {
            first = point;
            break;
        }
        first = first ? first : point;
    }
    if (!first)
        return false;
    m_project->SetBase(first->Name(), first->GetData().lat, first->GetData().lon);
    viewport()->update();
    emit ProjectChanged();
    return true;
}

void CPointView::UpdateColumnLabels()
{
    for (unsigned int c = 0; c < ColCount && c < GetRealColumns(); ++c)
        GetRealCol(c)->SetLabel(ColumnLabel(c));
}

bool CPointView::event(QEvent* e)
{
    if (const CNyrMessageEvent* m = CNyrMessageEvent::From(e)) {
        const unsigned int message = m->Message();
        if (message == WM_NYR_UNIT_CHANGED_DISTANCE || message == WM_NYR_UNIT_CHANGED_ANGLE ||
            message == WM_NYR_FORMAT_CHANGED_TIME) {
            UpdateColumnLabels();
            viewport()->update();
            return true;
        }
    }
    return CNyrReportView::event(e);
}

void CPointView::OnDeleteSelectedItems()
{
    if (!GetItemsSelected())
        return;
    if (CNyrMessageBox::ShowMessage(this, kDeleteKey) != NYR_IDYES)
        return;
    DeleteSelectedItems(1);
    SetModified(true);
    emit ProjectChanged();
}

void CPointView::OnModifyRealItem(unsigned int realItem)
{
    EditPoint(realItem);
}

bool CPointView::EditPoint(unsigned int realItem)
{
    auto* point = static_cast<CSurveyPoint*>(GetRealItem(realItem));
    if (!point || point->IsDeleted() || !point->IsVisible())
        return false;
    CPointDialog dialog(*point, this);
    if (dialog.Exec() != QDialog::Accepted)
        return false;
    RefreshRealItem(realItem);
    std::vector<SORT_STATE_REALCOL> sorted;
    GetSortState(sorted);
    if (!sorted.empty())
        DisplayRealItems(1);  // the point may belong elsewhere now
    return true;
}

void CPointView::OnRefreshRealItem(unsigned int realItem)
{
    CNyrReportView::OnRefreshRealItem(realItem);
    viewport()->update();
    SetModified(true);
    emit ProjectChanged();
}

void CPointView::SetModified(bool modified)
{
    if (modified == m_modified)
        return;
    m_modified = modified;
    emit ModifiedChanged(modified);
}

void CPointView::SetPlan(CNyrPlanView* plan)
{
    m_planPage = plan ? std::make_unique<CNyrPlanViewPrint>(plan) : nullptr;
}

void CPointView::SetFileStem(const std::string& stem)
{
    m_fileStem = stem;
}

void CPointView::OnPrintBegin(CNyrListViewPrint::PRINT_INFO& info)
{
    if (m_planPage)
        info.parts.push_back(m_planPage.get());
    if (!m_fileStem.empty())
        info.fileName = m_fileStem + ".pdf";
}

void CPointView::OnSaveAsBegin(CNyrListViewSaveAsDlgCV::SAVE_AS_INFO& info)
{
    if (!m_fileStem.empty())
        info.fileName = m_fileStem + "-list.csv";
}

}  // namespace survey
