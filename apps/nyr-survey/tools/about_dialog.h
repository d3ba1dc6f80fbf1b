#pragma once

#include <QDialog>

namespace survey {

// Help > About: the versions of the application, the library, Qt and
// GeographicLib, and the result of the library's requirements check.
class CAboutDialog : public QDialog
{
    Q_OBJECT
public:
    explicit CAboutDialog(QWidget* parent = nullptr);
    ~CAboutDialog() override;

    // The text shown, one fact a line.
    static QString AboutText();
};

}  // namespace survey
