#pragma once

#include <QComboBox>

#include "nyr/platform/export.h"
#include "nyr/time/time.h"

// The drop-down list in which the user picks the date/time format. The core
// class CNyrTime only names it (it knows no Qt); it is defined here, in
// libNyr240Widgets, together with CNyrTime::InitializeTimeFormatComboBox,
// GetCurrentSelection and SaveCurrentSelection, which take it. Code that uses
// any of them links libNyr240Widgets.
//
//     CNyrTime::CTimeFormatComboBox box(dialog);
//     CNyrTime::InitializeTimeFormatComboBox(box);   // 32 rows, each "now" in its format
//     ...
//     CNyrTime::SaveCurrentSelection(box, mainWindow); // stores it, tells the views
class NYR_EXPORT CNyrTime::CTimeFormatComboBox : public QComboBox
{
    Q_OBJECT

public:
    explicit CTimeFormatComboBox(QWidget* parent = nullptr);
    ~CTimeFormatComboBox() override;
};
