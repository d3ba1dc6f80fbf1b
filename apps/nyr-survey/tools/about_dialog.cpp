#include "apps/nyr-survey/tools/about_dialog.h"

#include <GeographicLib/Config.h>
#include <QDialogButtonBox>
#include <QLabel>
#include <QVBoxLayout>

#include "apps/nyr-survey/app/texts.h"
#include "nyr/frame/version_check.h"

namespace survey {

QString CAboutDialog::AboutText()
{
    eNyrRequirements missing = NYR_REQUIREMENTS_MET;
    std::string message;
    const bool met = NyrCheckAllRequirements(missing, message);
    QStringList lines;
    lines << QText(TxtAboutVersion).arg(NYR_SURVEY_VERSION) << QText(TxtAboutDescription) << QString()
          << QText(TxtAboutLibrary).arg(NYR_SURVEY_VERSION)
          << QText(TxtAboutQt).arg(QString::fromLatin1(qVersion()), QStringLiteral(QT_VERSION_STR))
          << QText(TxtAboutGeographicLib).arg(GEOGRAPHICLIB_VERSION_STRING)
          << QText(TxtAboutRequirements)
                 .arg(met ? QText(TxtRequirementsMet) : QString::fromStdString(message))
                 .arg(static_cast<int>(missing));
    return lines.join('\n');
}

CAboutDialog::CAboutDialog(QWidget* parent) : QDialog(parent)
{
    setObjectName("AboutDialog");
    setWindowTitle(QText(TxtAboutTitle));
    auto* text = new QLabel(AboutText(), this);
    text->setTextInteractionFlags(Qt::TextSelectableByMouse);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok, this);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(text);
    layout->addWidget(buttons);
}

CAboutDialog::~CAboutDialog() = default;

}  // namespace survey
