#pragma once

#include <QToolBar>

#include "nyr/time/time.h"
#include "nyr/values/unit_settings.h"

class QLabel;

namespace survey {

// The tool bar of display units: the library's choosers for distances,
// angles (azimuths), latitudes/longitudes and the time format. A choice is
// stored in the settings file by the library and sent as
// WM_NYR_UNIT_CHANGED_* / WM_NYR_FORMAT_CHANGED_TIME to every descendant of
// the window given, so every view reformats at once; the next start shows
// the same units.
class CUnitBar : public QToolBar
{
    Q_OBJECT
public:
    // `notifyRoot` receives the notifications for its descendants and must
    // outlive the bar (its main window).
    explicit CUnitBar(QWidget* notifyRoot, QWidget* parent = nullptr);
    ~CUnitBar() override;

    // Labels and unit lists in the current language.
    void Retranslate();

    CNyrUnitSettingsDistance::CUnitDistanceComboBox* DistanceBox() const { return m_distance; }
    CNyrUnitSettingsAngle::CUnitAngleComboBox* AngleBox() const { return m_angle; }
    CNyrUnitSettingsAngle::CUnitAngleComboBox* LatLonBox() const { return m_latLon; }
    CNyrTime::CTimeFormatComboBox* TimeBox() const { return m_time; }

private:
    void Fill();

    QWidget* m_root;
    QLabel* m_labels[4];
    CNyrUnitSettingsDistance::CUnitDistanceComboBox* m_distance;
    CNyrUnitSettingsAngle::CUnitAngleComboBox* m_angle;
    CNyrUnitSettingsAngle::CUnitAngleComboBox* m_latLon;
    CNyrTime::CTimeFormatComboBox* m_time;
};

// The decimals each unit is shown with (millimetres and their equivalent):
// sets the precision of the three process-wide unit settings for their
// current units. Called at start-up and before every change of unit.
void ApplyDisplayPrecision();

}  // namespace survey
