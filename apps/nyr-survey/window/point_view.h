#pragma once

#include <memory>
#include <vector>

#include "apps/nyr-survey/project/survey_project.h"
#include "nyrwidgets/views/plan_view_print.h"
#include "nyrwidgets/views/report_view.h"

class CNyrPlanView;

namespace survey {

class CSurveyPoint;

// The point list: a report view of the project's points with a column per
// value (eColumn). Its layout (widths, visibility, order) is kept in the
// settings file. It answers the library's unit and time-format notifications
// by renaming the columns that carry a unit and redrawing: cells are
// formatted only as rows are drawn, so the cost does not grow with the
// number of points.
//
// Points are edited in place (F2, a slow second click: the item's typed
// fields) or whole in the point dialog (Modify... in the item menu, a
// double click, EditPoint). Its printouts (Print, Print Preview, Export
// PDF) end with the plan on a page of its own; printing and Save As start
// from files named after the project.
class CPointView : public CNyrReportView
{
    Q_OBJECT
public:
    // The settings section of the list's layout.
    static constexpr const char* kSection = "NyrSurvey/PointList";
    // The key of the question asked before points are deleted.
    static constexpr const char* kDeleteKey = "Points/Delete";

    explicit CPointView(QWidget* parent = nullptr);
    ~CPointView() override;

    // Replaces the shown project with `loaded` (whose points the view takes).
    void SetProject(ProjectData loaded);
    CSurveyProject& Project() const;

    // The points not deleted, in model order.
    std::vector<const CSurveyPoint*> Points() const;
    // The points to hand on: the checked ones when any are checked, else the
    // selected ones.
    std::vector<const CSurveyPoint*> ChosenPoints() const;

    // The focused point when it is selected, else the first selected one,
    // else the focused one; -1 for none.
    int FocusedRealItem() const;
    // Makes that point the base; false when there is none.
    bool SetBaseFromFocus();

    // Makes the point named `name` the base, or the first point shown when
    // there is none of that name; false for an empty list.
    bool ChooseBase(const std::string& name);

    // The labels in the current language and units.
    void UpdateColumnLabels();

    // Opens the point dialog on a point; true when it was changed.
    bool EditPoint(unsigned int realItem);
    // The plan printed after the rows (may be null: none).
    void SetPlan(CNyrPlanView* plan);
    // Where the project's files go and what they are called, without a
    // suffix ("/data/network"): the PDF and the export start from it.
    void SetFileStem(const std::string& stem);
    // Whether a point was edited or deleted since SetProject or
    // SetModified(false).
    bool IsModified() const { return m_modified; }
    void SetModified(bool modified);

    void OnPrintBegin(CNyrListViewPrint::PRINT_INFO& info) override;
    void OnSaveAsBegin(CNyrListViewSaveAsDlgCV::SAVE_AS_INFO& info) override;

signals:
    // The points or the base point changed (not the states: the view's
    // notifications tell those).
    void ProjectChanged();
    void ModifiedChanged(bool modified);

protected:
    bool event(QEvent* e) override;
    // Asks through the managed message box ("Points/Delete") once for all
    // the selected points.
    void OnDeleteSelectedItems() override;
    void OnModifyRealItem(unsigned int realItem) override;
    // An edited point: every cell may have changed (the base point moves
    // every distance), and the plan's symbol with the code.
    void OnRefreshRealItem(unsigned int realItem) override;

private:
    std::unique_ptr<CSurveyProject> m_project;
    std::unique_ptr<CNyrPlanViewPrint> m_planPage;
    std::string m_fileStem;
    bool m_modified = false;
};

}  // namespace survey
