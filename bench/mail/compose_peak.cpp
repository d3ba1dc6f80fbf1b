// Composes one message with the attachment given and prints the process's
// peak resident memory before and after, in KiB: "baseline N", "peak N".
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
    if (argc != 2) {
        std::fprintf(stderr, "usage: mail_compose_peak FILE\n");
        return 2;
    }
    std::printf("baseline %ld\n", PeakKiB());
    CNyrMailMessageMimeContainer m;
    m.From("Ann Surveyor <ann@example.org>");
    m.AddRecipient("bob@example.org", CNyrMailMessage::TO);
    m.Subject("Scan data");
    m.AddMimePart(new CNyrMailMessageMimePartText("The scan is attached.\r\n"));
    m.AddMimePart(new CNyrMailMessageMimePartBinary(argv[1]));
    const std::string header = m.Header();
    const std::string body = m.Body();
    std::printf("peak %ld\nsize %zu\n", PeakKiB(), header.size() + body.size());
    return body.empty() ? 1 : 0;
}
