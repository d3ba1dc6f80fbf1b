// Composes one message with the attachment given, in standard Base64 or
// with "library" in the library's own form, and prints the process's peak
// resident memory before and after, in KiB: "baseline N", "peak N".
#include <sys/resource.h>

#include <cstdio>
#include <string>

#include "nyr/mail/mail_message_mime_container.h"

namespace {

long PeakKiB()
{
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss;
}

}  // namespace

int main(int argc, char** argv)
{
    if (argc < 2 || argc > 3) {
        std::fprintf(stderr, "usage: mail_compose_peak FILE [library]\n");
        return 2;
    }
    std::printf("baseline %ld\n", PeakKiB());
    CNyrMailMessageMimeContainer m;
    m.From("Ann Surveyor <ann@example.org>");
    m.AddRecipient("bob@example.org", CNyrMailMessage::TO);
    m.Subject("Scan data");
    m.AddMimePart(new CNyrMailMessageMimePartText("The scan is attached.\r\n"));
    auto* attachment = new CNyrMailMessageMimePartBinary(argv[1]);
    attachment->StandardBase64(argc == 3 && std::string(argv[2]) == "library" ? 0 : 1);
    m.AddMimePart(attachment);
    const std::string header = m.Header();
    const std::string body = m.Body();
    std::printf("peak %ld\nsize %zu\n", PeakKiB(), header.size() + body.size());
    return body.empty() ? 1 : 0;
}
