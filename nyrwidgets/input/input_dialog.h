#pragma once

#include "nyr/platform/export.h"

class CNyrInputControl;
class QWidget;

// Validates the input controls below `root` in tab order and stops at the
// first that fails: it shows that field (switching a tab or stacked page to
// it), focuses it with its text selected and its message shown, and returns
// it. Null when every field passes. Fields that are disabled, read-only or
// hidden (except by a page of a stacked or tab widget) are skipped.
// CNyrDialog runs it on OK and Apply; a dialog of another base class does
// the same in its own accept():
//
//     void PointDialog::accept() {
//         if (!NyrValidateInputControls(this))
//             QDialog::accept();
//     }
NYR_EXPORT CNyrInputControl* NyrValidateInputControls(QWidget* root);
