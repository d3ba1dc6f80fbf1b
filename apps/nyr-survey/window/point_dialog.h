#pragma once

#include "nyrwidgets/app/dialog.h"

class CNyrInputDateTime;
class CNyrInputDistance;
class CNyrInputString;

namespace survey {

class CSurveyPoint;

// Edit > Edit point... (and the list's Modify... and double click): the
// point's name, code, grid position, height and observation in the
// library's typed fields, shown in the user's units and time format. OK
// validates every field, then changes the point (CSurveyPoint::Change); a
// position the zone cannot take is refused at the easting field and the
// dialog stays. Its place on screen is kept in the settings file.
class CPointDialog : public CNyrDialog
{
    Q_OBJECT
public:
    // `point` must outlive the dialog.
    explicit CPointDialog(CSurveyPoint& point, QWidget* parent = nullptr);
    ~CPointDialog() override;

    CNyrInputString* NameField() const { return m_name; }
    CNyrInputString* CodeField() const { return m_code; }
    CNyrInputDistance* EastingField() const { return m_easting; }
    CNyrInputDistance* NorthingField() const { return m_northing; }
    CNyrInputDistance* HeightField() const { return m_height; }
    CNyrInputDateTime* ObservedField() const { return m_observed; }

protected:
    bool OnApply() override;

private:
    CSurveyPoint& m_point;
    CNyrInputString* m_name;
    CNyrInputString* m_code;
    CNyrInputDistance* m_easting;
    CNyrInputDistance* m_northing;
    CNyrInputDistance* m_height;
    CNyrInputDateTime* m_observed;
};

}  // namespace survey
