#pragma once

#include <string>
#include <vector>

class QWidget;

namespace survey {

class CSurveyPoint;

// The mail server File > Send uses, kept in the settings file (section
// "NyrSurvey", entries "Smtp..."); never the password (see secret_store.h).
struct SmtpSettings
{
    std::string server;
    unsigned port = 587;
    int security = 1;  // CNyrSmtp::eSecurity: 0 none, 1 STARTTLS, 2 TLS
    std::string user;
    std::string sender;
    std::string trustedCertificates;  // a PEM file, empty for the system's roots
    bool useSecretService = false;

    static SmtpSettings Load();
    void Save() const;
};

// A mail with the points as a CSV attachment.
struct PointsMail
{
    std::string to;
    std::string subject;
    std::string body;
    std::string attachment;  // path of the file attached
};

// Sends the mail over SMTP with the library's client; false with the
// client's reason ("550:SMTP server error.") in `error`.
bool SendOverSmtp(const SmtpSettings& smtp, const std::string& password, const PointsMail& mail, std::string& error);

// File > Send: asks for the recipient and the way (the user's mail client
// through the library's hand-off, or the mail server) and sends `points` as
// a points file (the File > Save form). Shows what happened.
void SendPoints(QWidget* parent, const std::vector<const CSurveyPoint*>& points);

// Settings > Mail server.
void EditMailServer(QWidget* parent);

}  // namespace survey
