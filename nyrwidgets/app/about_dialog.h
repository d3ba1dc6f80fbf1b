#pragma once

#include <QString>
#include <memory>
#include <string>
#include <vector>

#include "nyr/app/about_report.h"
#include "nyr/platform/export.h"
#include "nyrwidgets/app/dialog.h"

// The About box, titled "About NAME": application and library versions, the
// Qt libraries in use (and those the library was built with), the operating
// system and the result of the system requirements check (NyrAboutLines),
// one labelled line each, selectable; "Copy to &Clipboard" puts all of it on
// the clipboard as plain text for a bug report. OK closes it. A host adds
// lines of its own (the versions of the libraries it uses) after Qt's.
class NYR_EXPORT CNyrAboutDialog : public CNyrDialog
{
    Q_OBJECT

public:
    // An empty name or version is taken from QCoreApplication.
    explicit CNyrAboutDialog(QWidget* parent = nullptr, const QString& appName = {}, const QString& appVersion = {},
                             const std::vector<CNyrAboutLine>& more = {});
    ~CNyrAboutDialog() override;

    // What the box shows, "Label: value" a line: what Copy puts on the
    // clipboard.
    std::string Text() const;
    QPushButton* CopyButton() const;
    void CopyToClipboard() const;

    // Shows the box for the running application (through Exec).
    static void ShowAbout(QWidget* parent, const std::vector<CNyrAboutLine>& more = {});

private:
    struct Private;
    std::unique_ptr<Private> d;
};
