#pragma once

#include <QDialog>
#include <memory>
#include <string>

#include "nyr/platform/export.h"

class QDialogButtonBox;
class QPushButton;
class QVBoxLayout;

// The library's dialog: the controls in ContentLayout(), below them a
// right-aligned row of the buttons asked for, with the library's texts:
//   OK ("OK", the default button), Cancel ("Cancel"), Apply ("&Apply"),
//   Help ("&Help").
// Layout metrics are in dialog units (a quarter of the font's average
// character width across, an eighth of its height down): 7 units of margin
// around the dialog, 4 between controls.
//
// OK (and Enter, and accept()) first validates the dialog's typed input
// fields in tab order (NyrValidateInputControls: the first that fails gets
// the focus and shows its message, and the dialog stays), then calls OnOK()
// and closes with Accepted when it returns true; Apply validates likewise,
// then calls OnApply(). Cancel, Escape, the close box and reject() close
// with Rejected and never validate (nor does leaving a field for Cancel);
// Help and F1 call OnHelp(), which asks CNyrHelpApp for help on
// HelpContext().
//
// With a settings section, the dialog's position and size are stored there
// when it is hidden ("Window Left", "Window Top", "Window Width", "Window
// Height") and restored when it is next shown, moved and shrunk as needed
// so that all of it is on a screen that exists now.
class NYR_EXPORT CNyrDialog : public QDialog
{
    Q_OBJECT

public:
    enum eButton : unsigned
    {
        eOK = 1,
        eCancel = 2,
        eApply = 4,
        eHelp = 8,
    };

    // `settingsSection` "" keeps no position; `buttons` or-ed eButton values.
    explicit CNyrDialog(QWidget* parent = nullptr, const std::string& settingsSection = {},
                        unsigned buttons = eOK | eCancel);
    ~CNyrDialog() override;
    CNyrDialog(const CNyrDialog&) = delete;
    CNyrDialog& operator=(const CNyrDialog&) = delete;

    // Where the dialog's controls go: no margins, 4 dialog units of spacing.
    QVBoxLayout* ContentLayout() const;
    // The button, or null when the dialog does not show it.
    QPushButton* Button(eButton button) const;
    // The row of buttons, for buttons of a dialog's own.
    QDialogButtonBox* ButtonBox() const;

    // Dialog units in pixels, for this dialog's font.
    int DialogUnitsX(int units) const;
    int DialogUnitsY(int units) const;

    void SetHelpContext(quint32 context);
    quint32 HelpContext() const;

    const std::string& SettingsSection() const;

    // Runs the dialog modally through NyrExecDialog (the seam that lets
    // tests and scripted hosts answer it) and returns its result:
    // QDialog::Accepted or Rejected, or what done() was given.
    int Exec();

    void setVisible(bool visible) override;
    // Validation and OnOK(), then closes with Accepted when both passed.
    void accept() override;

signals:
    // After Apply's OnApply() or OK's OnOK() returned true.
    void applied();

protected:
    // OK: checks and applies the dialog's values; true closes the dialog.
    // The default calls OnApply().
    virtual bool OnOK();
    // Apply: takes over the dialog's values; false when they are not valid
    // (the dialog stays open). The default accepts.
    virtual bool OnApply();
    // Help and F1: NyrGetHelpApp().ShowHelp(HelpContext(), 1).
    virtual void OnHelp();

    void keyPressEvent(QKeyEvent* event) override;
    void hideEvent(QHideEvent* event) override;

private:
    void Apply();
    void SaveGeometry() const;
    bool RestoreGeometry();
    void KeepOnScreen();

    struct Private;
    std::unique_ptr<Private> d;
};
