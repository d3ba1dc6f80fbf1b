#pragma once

#include <memory>
#include <vector>

#include "apps/nyr-survey/project/survey_project.h"
#include "nyrwidgets/views/report_view.h"

namespace survey {

class CSurveyPoint;

// The point list: a report view of the project's points with a column per
// value (eColumn). Its layout (widths, visibility, order) is kept in the
// settings file. It answers the library's unit and time-format notifications
// by renaming the columns that carry a unit and redrawing: cells are
// formatted only as rows are drawn, so the cost does not grow with the
// number of points.
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

    // Makes the focused (or else the first selected) point the base; false
    // when there is none.
    bool SetBaseFromFocus();

    // Makes the point named `name` the base, or the first point shown when
    // there is none of that name; false for an empty list.
    bool ChooseBase(const std::string& name);

    // The labels in the current language and units.
    void UpdateColumnLabels();

signals:
    // The points or the base point changed (not the states: the view's
    // notifications tell those).
    void ProjectChanged();

protected:
    bool event(QEvent* e) override;
    // Asks through the managed message box ("Points/Delete") once for all
    // the selected points.
    void OnDeleteSelectedItems() override;

private:
    std::unique_ptr<CSurveyProject> m_project;
};

}  // namespace survey
