#pragma once

// Text numbers of the SMTP client's messages in the library's text table.
namespace NyrSmtpText {

enum : unsigned
{
    kSmtpError = 26150,
    kNameEmpty = 26155,
    kNoSocket = 26156,
    kNoConnect = 26157,
    kNoGreeting = 26158,
    kNotConnected = 26159,
    kNoSender = 26160,
    kNoRecipient = 26161,
    kSocketNetworkDown = 26163,
    kSocketNotConnected = 26164,
    kSocketInProgress = 26165,
    kSocketNotSocket = 26166,
    kSocketNotStream = 26167,
    kSocketShutDown = 26168,
    kSocketWouldBlock = 26169,
    kSocketTooLarge = 26170,
    kSocketInvalid = 26171,
    kSocketAborted = 26172,
    kSocketReset = 26173,
    kSocketError = 26174,
    kControlCharacter = 26286,
    kNoStartTls = 26287,
    kTlsFailed = 26288,
    kTlsUntrusted = 26289,
    kAuthFailed = 26290,
    kAuthNoMechanism = 26291,
    kAuthNeedsTls = 26292,
    kInvalidAddress = 26320,
};

}  // namespace NyrSmtpText
