#pragma once

#include <vector>

#include "nyr/values/unit_settings.h"
#include "nyrwidgets/app/dialog.h"

class QLabel;
class QLineEdit;

namespace survey {

// Tools > Angle and distance converter: a value typed in one unit, shown in
// every unit of its kind through the library's value types (angles in all
// eight units, packed DMS and gon included; distances in metres and both
// feet). Conversions use settings objects of their own, so the user's
// display units are not touched.
class CUnitConverter : public CNyrDialog
{
    Q_OBJECT
public:
    explicit CUnitConverter(QWidget* parent = nullptr);
    ~CUnitConverter() override;

    QLineEdit* AngleEdit() const { return m_angleEdit; }
    QLineEdit* DistanceEdit() const { return m_distanceEdit; }
    CNyrUnitSettingsAngle::CUnitAngleComboBox* AngleUnitBox() const { return m_angleUnit; }
    CNyrUnitSettingsDistance::CUnitDistanceComboBox* DistanceUnitBox() const { return m_distanceUnit; }
    // The text shown for a unit code; empty for a code not shown.
    QString Result(long unit) const;

private:
    void ConvertAngle();
    void ConvertDistance();

    QLineEdit* m_angleEdit;
    QLineEdit* m_distanceEdit;
    CNyrUnitSettingsAngle::CUnitAngleComboBox* m_angleUnit;
    CNyrUnitSettingsDistance::CUnitDistanceComboBox* m_distanceUnit;
    std::vector<std::pair<long, QLabel*>> m_results;
};

}  // namespace survey
