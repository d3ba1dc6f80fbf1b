// CNyrSmtp: one mail transaction (MAIL, RCPT, DATA) and the data it sends.
#include <cerrno>

#include "nyr/frame/text_ids.h"
#include "nyr/frame/ui_hooks.h"
#include "nyr/mail/mail_message.h"
#include "nyr/mail/mail_text_p.h"
#include "nyr/mail/smtp.h"
#include "nyr/mail/smtp_channel_p.h"
#include "nyr/mail/smtp_data_p.h"

int CNyrSmtp::SendMailMessage(CNyrMailMessage* message)
{
    if (!m_connected) {
        SetError(NYR_IDS_SMTP_NOT_CONNECTED, 0);
        return 0;
    }
    CNyrBusyCursor busy;
    return TransmitMailMessage(message);
}

int CNyrSmtp::PrepareHeader(std::string& header)
{
    NyrSmtpWireLines(header, true);
    return 1;
}

int CNyrSmtp::PrepareBody(std::string& body)
{
    NyrSmtpWireLines(body, true);
    if (body.size() < 2 || body.compare(body.size() - 2, 2, "\r\n") != 0)
        body += "\r\n";
    return 1;
}

bool CNyrSmtp::TakeEnvelope(const CNyrMailMessage& message, std::string& sender, std::vector<std::string>& recipients)
{
    sender = message.From().address;
    if (sender.empty()) {
        SetError(NYR_IDS_SMTP_NO_SENDER, 0);
        return false;
    }
    if (message.GetNumRecipients() == 0) {
        SetError(NYR_IDS_SMTP_NO_RECIPIENT, 0);
        return false;
    }
    recipients.clear();
    for (const auto kind : {CNyrMailMessage::TO, CNyrMailMessage::CC, CNyrMailMessage::BCC}) {
        std::string address, name;
        for (unsigned i = 0; message.Recipient(address, name, i, kind); ++i)
            recipients.push_back(address);
    }
    // Every address goes into a command line: one holding CR, LF, a blank or
    // an angle bracket would end the address early and add text of its own
    // ("a@x.org> SIZE=1"). Refused before anything is sent; the sender gets
    // the same check as the recipients, whose message class may be lax.
    auto faultOf = [](const std::string& address) -> unsigned {
        return NyrMailText::HasControlCharacter(address) ? NYR_IDS_MAIL_ADDRESS_CONTROL
               : !NyrMailText::IsMailAddress(address)    ? NYR_IDS_MAIL_ADDRESS_INVALID
                                                         : 0u;
    };
    unsigned fault = faultOf(sender);
    for (std::size_t i = 0; !fault && i < recipients.size(); ++i)
        fault = faultOf(recipients[i]);
    if (fault) {
        SetError(fault, 0);
        return false;
    }
    return true;
}

int CNyrSmtp::TransmitMailMessage(CNyrMailMessage* message)
{
    if (!message)
        return 0;
    if (!m_connected) {
        SetError(NYR_IDS_SMTP_NOT_CONNECTED, 0);
        return 0;
    }
    if (m_pipelined) {
        std::vector<int> results;
        return static_cast<int>(SendPipelined({message}, results));
    }
    std::string sender;
    std::vector<std::string> recipients;
    if (!TakeEnvelope(*message, sender, recipients))
        return 0;

    if (!SendCommand("MAIL From: <" + sender + ">\r\n") || !Await(0, m_timeouts.command))
        return 0;
    for (const auto& address : recipients) {
        // A refused recipient only leaves its refusal in the last error
        // (intended); a failed connection ends the message at once.
        if (!SendCommand("RCPT TO: <" + address + ">\r\n") || (!Await(0, m_timeouts.command) && m_broken))
            return 0;
    }
    if (!SendCommand("DATA\r\n") || !Await(2, m_timeouts.dataStart))
        return 0;

    std::string header = message->Header();
    PrepareHeader(header);
    std::string body = message->Body();
    PrepareBody(body);
    if (!m_socket->Send({header, "\r\n", body, "\r\n.\r\n"}, m_timeouts.dataBlock)) {
        Broken(errno);
        return 0;
    }
    return Await(0, m_timeouts.dataEnd);
}
