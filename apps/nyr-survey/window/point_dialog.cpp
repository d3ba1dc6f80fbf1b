#include "apps/nyr-survey/window/point_dialog.h"

#include <QFormLayout>
#include <QVBoxLayout>
#include <cmath>

#include "apps/nyr-survey/app/texts.h"
#include "apps/nyr-survey/io/points_columns.h"
#include "apps/nyr-survey/project/survey_point.h"
#include "nyrwidgets/input/input_string.h"
#include "nyrwidgets/input/input_time.h"
#include "nyrwidgets/input/input_value.h"

namespace survey {

namespace {

QString Label(unsigned int realCol)
{
    return QString::fromStdString(ColumnLabel(realCol)) + ':';
}

}  // namespace

CPointDialog::CPointDialog(CSurveyPoint& point, QWidget* parent)
    : CNyrDialog(parent, "NyrSurvey/PointDialog"), m_point(point), m_name(new CNyrInputString(this)),
      m_code(new CNyrInputString(this)), m_easting(new CNyrInputDistance(this)),
      m_northing(new CNyrInputDistance(this)), m_height(new CNyrInputDistance(this)),
      m_observed(new CNyrInputDateTime(this))
{
    setObjectName("PointDialog");
    setWindowTitle(QText(TxtPointTitle).arg(QString::fromStdString(point.Name())));
    const CSurveyPoint::Data& held = point.GetData();
    m_name->SetValue(held.name);
    m_code->SetAllowEmpty(true);
    m_code->SetValue(point.Code());
    m_easting->SetValue(held.easting);
    m_northing->SetValue(held.northing);
    m_height->SetAllowEmpty(true);
    if (std::isfinite(held.height))
        m_height->SetValue(held.height);
    m_observed->SetAllowEmpty(true);
    m_observed->SetFractionDigits(3);
    if (held.observed.GetTime().GetTime() != kNoTime)
        m_observed->SetValue(held.observed);
    auto* form = new QFormLayout;
    const std::pair<unsigned int, QWidget*> rows[] = {{ColPoint, m_name},         {ColCode, m_code},
                                                      {ColEasting, m_easting},   {ColNorthing, m_northing},
                                                      {ColHeight, m_height},     {ColObserved, m_observed}};
    for (const auto& [column, field] : rows)
        form->addRow(Label(column), field);
    ContentLayout()->addLayout(form);
    m_easting->setMinimumWidth(DialogUnitsX(110));
}

CPointDialog::~CPointDialog() = default;

bool CPointDialog::OnApply()
{
    CSurveyPoint::Data changed = m_point.GetData();
    changed.name = m_name->GetValue();
    changed.code = m_point.CodeIndex(m_code->GetValue());
    changed.easting = m_easting->GetValue();
    changed.northing = m_northing->GetValue();
    changed.height = m_height->IsEmpty() ? std::nan("") : m_height->GetValue();
    changed.observed = m_observed->IsEmpty() ? CNyrTime(kNoTime) : m_observed->GetValue();
    std::string error;
    if (m_point.Change(std::move(changed), CSurveyPoint::PlacedByGrid, error))
        return true;
    m_easting->setFocus();
    m_easting->Refuse(error);
    return false;
}

}  // namespace survey
