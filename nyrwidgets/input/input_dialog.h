#pragma once

#include <QDialog>

#include "nyr/platform/export.h"

class CNyrInputControl;

// Validates the input controls below `root` in tab order and stops at the
// first that fails: it shows that field (switching a tab or stacked page to
// it), focuses it with its text selected and its message shown, and returns
// it. Null when every field passes. Fields that are disabled, read-only or
// hidden (except by a page of a stacked or tab widget) are skipped.
NYR_EXPORT CNyrInputControl* NyrValidateInputControls(QWidget* root);

// A dialog whose OK validates its fields first: accept() closes it only
// when NyrValidateInputControls finds no failure. Cancel (reject()) never
// validates, and leaving a field for a Cancel button does not either. A
// dialog of another base class does the same in its own accept():
//
//     void PointDialog::accept() {
//         if (!NyrValidateInputControls(this))
//             QDialog::accept();
//     }
class NYR_EXPORT CNyrInputDialog : public QDialog
{
    Q_OBJECT
public:
    explicit CNyrInputDialog(QWidget* parent = nullptr, Qt::WindowFlags flags = {});
    ~CNyrInputDialog() override;

    void accept() override;
};
