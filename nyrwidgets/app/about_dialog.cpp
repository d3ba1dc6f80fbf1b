#include "nyrwidgets/app/about_dialog.h"

#include <QClipboard>
#include <QCoreApplication>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QGuiApplication>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

#include "nyr/frame/resource_module.h"
#include "nyr/frame/text_ids.h"
#include "nyr/platform/string_format.h"

struct CNyrAboutDialog::Private
{
    std::string text;
    QPushButton* copy = nullptr;
};

CNyrAboutDialog::CNyrAboutDialog(QWidget* parent, const QString& appName, const QString& appVersion,
                                 const std::vector<CNyrAboutLine>& more)
    : CNyrDialog(parent, {}, eOK), d(std::make_unique<Private>())
{
    const std::string name = (appName.isEmpty() ? QCoreApplication::applicationName() : appName).toStdString();
    const std::string version =
        (appVersion.isEmpty() ? QCoreApplication::applicationVersion() : appVersion).toStdString();
    setWindowTitle(QString::fromStdString(NyrFormat(NyrLoadString(NYR_IDS_ABOUT_TITLE).c_str(), name.c_str())));

    const std::string qt = NyrFormat(NyrLoadString(NYR_IDS_ABOUT_BUILT_WITH).c_str(), qVersion(), QT_VERSION_STR);
    std::vector<CNyrAboutLine> extra{{NyrLoadString(NYR_IDS_ABOUT_QT), qt}};
    extra.insert(extra.end(), more.begin(), more.end());
    const std::vector<CNyrAboutLine> lines = NyrAboutLines(name, version, extra);
    d->text = NyrAboutText(lines);

    auto* form = new QFormLayout;
    for (const auto& [label, value] : lines) {
        auto* field = new QLabel(QString::fromStdString(value));
        field->setTextFormat(Qt::PlainText);
        field->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
        field->setWordWrap(true);
        form->addRow(QString::fromStdString(label + ":"), field);
    }
    ContentLayout()->addLayout(form);

    d->copy =
        ButtonBox()->addButton(QString::fromStdString(NyrLoadString(NYR_IDS_ABOUT_COPY)), QDialogButtonBox::ActionRole);
    connect(d->copy, &QPushButton::clicked, this, &CNyrAboutDialog::CopyToClipboard);
}

CNyrAboutDialog::~CNyrAboutDialog() = default;

std::string CNyrAboutDialog::Text() const
{
    return d->text;
}

QPushButton* CNyrAboutDialog::CopyButton() const
{
    return d->copy;
}

void CNyrAboutDialog::CopyToClipboard() const
{
    QGuiApplication::clipboard()->setText(QString::fromStdString(d->text));
}

void CNyrAboutDialog::ShowAbout(QWidget* parent, const std::vector<CNyrAboutLine>& more)
{
    CNyrAboutDialog dialog(parent, {}, {}, more);
    dialog.Exec();
}
