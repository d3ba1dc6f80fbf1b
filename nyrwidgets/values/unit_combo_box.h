#pragma once

#include <QComboBox>

#include "nyr/platform/export.h"
#include "nyr/values/unit_settings.h"

// The unit selection lists: drop-down lists whose entries carry the unit code
// as item data (Qt::UserRole, an int). They are filled, read and saved
// through their settings class:
//
//     CNyrUnitSettingsAngle& angles = CNyrUnitSettingsAngle::Default();
//     angles.InitializeUnitAngleComboBox(*m_unitList, kExcluded);
//     ...on OK:
//     angles.SaveCurrentSelection(*m_unitList, window());   // every open view reconverts
//
// Windows that show values handle WM_NYR_UNIT_CHANGED_DISTANCE or
// WM_NYR_UNIT_CHANGED_ANGLE (a CNyrMessageEvent whose WParam is the old unit
// code and LParam the new one) by converting and redrawing.

class NYR_EXPORT CNyrUnitSettingsDistance::CUnitDistanceComboBox : public QComboBox
{
public:
    explicit CUnitDistanceComboBox(QWidget* parent = nullptr);
    ~CUnitDistanceComboBox() override;

    // The unit code of the selected entry; -1 when none is selected.
    long GetCurrentSelection() const;
};

class NYR_EXPORT CNyrUnitSettingsAngle::CUnitAngleComboBox : public QComboBox
{
public:
    explicit CUnitAngleComboBox(QWidget* parent = nullptr);
    ~CUnitAngleComboBox() override;

    long GetCurrentSelection() const;
};
