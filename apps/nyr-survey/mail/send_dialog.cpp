// The dialogs of File > Send and Settings > Mail server.
#include <QCheckBox>
#include <QComboBox>
#include <QFormLayout>
#include <QVBoxLayout>
#include <QInputDialog>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QRadioButton>
#include <QSpinBox>
#include <QTemporaryDir>
#include <memory>

#include "apps/nyr-survey/app/settings.h"
#include "apps/nyr-survey/app/texts.h"
#include "apps/nyr-survey/io/points_file.h"
#include "apps/nyr-survey/mail/secret_store.h"
#include "apps/nyr-survey/mail/send_points.h"
#include "nyr/app/log_file.h"
#include "nyr/frame/ui_hooks.h"
#include "nyr/mail/mapi_send_mail.h"
#include "nyrwidgets/app/dialog.h"
#include "nyrwidgets/frame/dialog_hook.h"
#include "nyrwidgets/frame/wait_cursor.h"

namespace survey {

namespace {

void Inform(const QString& text, unsigned style)
{
    NyrMessageBox(text.toStdString(), Text(TxtAppName), style);
}

// The attachment must outlive the hand-off: a mail client started by it may
// read the file after xdg-email has returned. The folder goes at exit.
QString AttachmentPath(const std::vector<const CSurveyPoint*>& points)
{
    static std::unique_ptr<QTemporaryDir> folder;
    if (!folder)
        folder = std::make_unique<QTemporaryDir>();
    const QString path = folder->filePath("points.csv");
    std::string error;
    return folder->isValid() && WritePointsFile(path.toStdString(), points, error) ? path : QString();
}

// The password for the server: from the secret service when the user
// chose it and it has one, else asked (and then kept there if chosen).
bool Password(QWidget* parent, const SmtpSettings& smtp, std::string& password)
{
    if (smtp.user.empty())
        return true;
    const QString server = QString::fromStdString(smtp.server + ":" + std::to_string(smtp.port));
    const QString user = QString::fromStdString(smtp.user);
    QString text;
    if (smtp.useSecretService && CSecretStore::Lookup(server, user, text)) {
        password = text.toStdString();
        return true;
    }
    QInputDialog ask(parent);
    ask.setObjectName("PasswordDialog");
    ask.setWindowTitle(QText(TxtSmtpTitle));
    ask.setLabelText(QText(TxtPasswordPrompt).arg(user, server));
    ask.setTextEchoMode(QLineEdit::Password);
    if (NyrExecDialog(ask) != QDialog::Accepted)
        return false;
    text = ask.textValue();
    if (smtp.useSecretService)
        CSecretStore::Store(server, user, text);
    password = text.toStdString();
    return true;
}

}  // namespace

void EditMailServer(QWidget* parent)
{
    SmtpSettings s = SmtpSettings::Load();
    CNyrDialog dialog(parent, "NyrSurvey/MailServerDialog");
    dialog.setObjectName("MailServerDialog");
    dialog.setWindowTitle(QText(TxtSmtpTitle));
    auto* server = new QLineEdit(QString::fromStdString(s.server), &dialog);
    auto* port = new QSpinBox(&dialog);
    port->setRange(1, 65535);
    port->setValue(static_cast<int>(s.port));
    auto* security = new QComboBox(&dialog);
    security->addItems({QText(TxtSecurityNone), QText(TxtSecurityStartTls), QText(TxtSecurityTls)});
    security->setCurrentIndex(s.security);
    auto* user = new QLineEdit(QString::fromStdString(s.user), &dialog);
    auto* sender = new QLineEdit(QString::fromStdString(s.sender), &dialog);
    auto* trusted = new QLineEdit(QString::fromStdString(s.trustedCertificates), &dialog);
    auto* keep = new QCheckBox(QText(TxtRememberPassword), &dialog);
    keep->setChecked(s.useSecretService && CSecretStore::Available());
    keep->setEnabled(CSecretStore::Available());
    auto* note = new QLabel(QText(TxtSecretServiceNote), &dialog);
    note->setWordWrap(true);
    auto* form = new QFormLayout;
    form->addRow(QText(TxtServer), server);
    form->addRow(QText(TxtPort), port);
    form->addRow(QText(TxtSecurity), security);
    form->addRow(QText(TxtUser), user);
    form->addRow(QText(TxtSender), sender);
    form->addRow(QText(TxtTrustedCertificates), trusted);
    form->addRow(keep);
    dialog.ContentLayout()->addLayout(form);
    dialog.ContentLayout()->addWidget(note);
    if (dialog.Exec() != QDialog::Accepted)
        return;
    s.server = server->text().trimmed().toStdString();
    s.port = static_cast<unsigned>(port->value());
    s.security = security->currentIndex();
    s.user = user->text().trimmed().toStdString();
    s.sender = sender->text().trimmed().toStdString();
    s.trustedCertificates = trusted->text().trimmed().toStdString();
    s.useSecretService = keep->isChecked();
    s.Save();
}

void SendPoints(QWidget* parent, const std::vector<const CSurveyPoint*>& points)
{
    if (points.empty()) {
        Inform(QText(TxtNothingSelected), 0x40 /* MB_ICONINFORMATION */);
        return;
    }
    CNyrDialog dialog(parent, "NyrSurvey/SendDialog");
    dialog.setObjectName("SendDialog");
    dialog.setWindowTitle(QText(TxtSendTitle));
    auto* to = new QLineEdit(QString::fromStdString(ReadSetting("MailTo", std::string())), &dialog);
    auto* subject = new QLineEdit(QText(TxtDefaultSubject), &dialog);
    auto* body = new QPlainTextEdit(QText(TxtDefaultBody).arg(points.size()), &dialog);
    auto* client = new QRadioButton(QText(TxtMailClient), &dialog);
    auto* server = new QRadioButton(QText(TxtSmtpServer), &dialog);
    (ReadSetting("SendWith", 0) == 1 ? server : client)->setChecked(true);
    auto* form = new QFormLayout;
    form->addRow(QText(TxtMailTo), to);
    form->addRow(QText(TxtMailSubject), subject);
    form->addRow(QText(TxtMailBody), body);
    form->addRow(QText(TxtSendWith), client);
    form->addRow(QString(), server);
    dialog.ContentLayout()->addLayout(form);
    if (dialog.Exec() != QDialog::Accepted)
        return;
    PointsMail mail{to->text().trimmed().toStdString(), subject->text().toStdString(),
                    body->toPlainText().toStdString(), AttachmentPath(points).toStdString()};
    WriteSetting("MailTo", mail.to);
    WriteSetting("SendWith", server->isChecked() ? 1 : 0);
    if (client->isChecked()) {
        // The hand-off shows its own messages; the mail client takes over.
        std::vector<NyrMailHelper::MAIL_ADDRESS> recipients;
        if (!mail.to.empty())
            recipients.push_back({"", mail.to});
        std::vector<std::string> files{mail.attachment};
        const auto result = CNyrMapiSendMail().Send(&recipients, nullptr, nullptr, mail.subject.c_str(),
                                                    mail.body.c_str(), &files, CNyrMapiSendMail::MAPI_DIALOG);
        CNyrLogFile::Default().Info(std::to_string(points.size()) + " points handed to the mail client for " +
                                    mail.to + " (result " + std::to_string(result) + ")");
        return;
    }
    const SmtpSettings smtp = SmtpSettings::Load();
    std::string password, error;
    if (!Password(parent, smtp, password))
        return;
    bool sent = false;
    {
        CNyrWaitCursor wait;
        sent = SendOverSmtp(smtp, password, mail, error);
    }
    CNyrLogFile::Default().Write(sent ? CNyrLogFile::eInfo : CNyrLogFile::eError,
                                 std::to_string(points.size()) + " points sent to " + mail.to + " over " +
                                     smtp.server + (sent ? "" : ": " + error));
    if (sent)
        Inform(QText(TxtSent).arg(points.size()).arg(QString::fromStdString(mail.to)), 0x40);
    else
        Inform(QText(TxtSendFailed).arg(QString::fromStdString(error)), 0x10);
}

}  // namespace survey
