// The mail server settings and the SMTP send of File > Send.
#include <algorithm>

#include "apps/nyr-survey/app/settings.h"
#include "apps/nyr-survey/mail/send_points.h"
#include "nyr/mail/mail_message_mime_container.h"
#include "nyr/mail/smtp.h"

namespace survey {

SmtpSettings SmtpSettings::Load()
{
    SmtpSettings s;
    s.server = ReadSetting("SmtpServer", std::string());
    const int port = ReadSetting("SmtpPort", 587);
    s.port = port > 0 && port < 65536 ? static_cast<unsigned>(port) : 587;
    s.security = std::clamp(ReadSetting("SmtpSecurity", 1), 0, 2);
    s.user = ReadSetting("SmtpUser", std::string());
    s.sender = ReadSetting("SmtpSender", std::string());
    s.trustedCertificates = ReadSetting("SmtpTrustedCertificates", std::string());
    s.useSecretService = ReadSetting("SmtpSecretService", 0) != 0;
    return s;
}

void SmtpSettings::Save() const
{
    WriteSetting("SmtpServer", server);
    WriteSetting("SmtpPort", static_cast<int>(port));
    WriteSetting("SmtpSecurity", security);
    WriteSetting("SmtpUser", user);
    WriteSetting("SmtpSender", sender);
    WriteSetting("SmtpTrustedCertificates", trustedCertificates);
    WriteSetting("SmtpSecretService", useSecretService ? 1 : 0);
}

bool SendOverSmtp(const SmtpSettings& smtp, const std::string& password, const PointsMail& mail, std::string& error)
{
    CNyrMailMessageMimeContainer message;
    message.From(smtp.sender.c_str());
    message.Subject(mail.subject.c_str());
    message.AddMultipleRecipients(mail.to.c_str(), CNyrMailMessage::TO);
    message.AddMimePart(new CNyrMailMessageMimePartText(mail.body.c_str()));
    message.AddMimePart(new CNyrMailMessageMimePartBinary(mail.attachment.c_str()));
    if (message.GetNumRecipients() == 0) {
        error = "0:" + mail.to;
        return false;
    }
    CNyrSmtp client(smtp.server, smtp.port);
    client.Security(static_cast<CNyrSmtp::eSecurity>(smtp.security));
    if (!smtp.trustedCertificates.empty())
        client.TrustedCertificates(smtp.trustedCertificates);
    if (!smtp.user.empty())
        client.Credentials(smtp.user, password);
    // A minute for each step: a server that stops answering must not hold
    // the window for the standard's ten minutes.
    CNyrSmtp::TIMEOUTS timeouts;
    timeouts.connect = timeouts.greeting = timeouts.command = timeouts.dataStart = timeouts.dataBlock =
        timeouts.dataEnd = 60000;
    client.Timeouts(timeouts);
    const bool sent = client.Connect() && client.SendMailMessage(&message);
    if (!sent)
        error = client.GetLastError();
    client.Disconnect();
    return sent;
}

}  // namespace survey
