#include <gtest/gtest.h>

#include <sys/stat.h>

#include <ctime>

#include "nyr/mail/mail_message_mime_container.h"
#include "nyr/util/base64.h"
#include "tests/support/temp_dir.h"

namespace {

using NyrMailHelper::MAIL_ADDRESS;

struct Message : CNyrMailMessageMimeContainer
{
    using CNyrMailMessage::CheckMailAddress;
    using CNyrMailMessage::MailAddressFromString;
};

// The header without its first line, the Date.
std::string AfterDate(const std::string& header)
{
    EXPECT_EQ(header.rfind("Date: ", 0), 0u) << header;
    return header.substr(header.find("\r\n") + 2);
}

TEST(MailMessage, HeaderLinesComeInOrderWithTheirIntendedForms)
{
    Message m;
    m.From("Ann Surveyor <ann@example.org>");
    m.ReplyTo("Office <office@example.org>");
    EXPECT_EQ(m.AddRecipient("Bob <bob@example.org>", CNyrMailMessage::TO), 1);
    EXPECT_EQ(m.AddRecipient("carl@example.org", CNyrMailMessage::TO), 1);
    EXPECT_EQ(m.AddRecipient("Dora <dora@example.org>", CNyrMailMessage::CC), 1);
    EXPECT_EQ(m.AddRecipient("Eve <eve@example.org>", CNyrMailMessage::BCC), 1);
    m.Subject("Traverse 12 closed");
    m.Body("Misclosure 4 mm.\r\n");
    EXPECT_EQ(AfterDate(m.Header()), "From: \"Ann Surveyor\" <ann@example.org>\r\n"
                                     "Reply-To: \"Office\" <office@example.org>\r\n"
                                     "To: \" Bob\" <bob@example.org>,\" \" <carl@example.org>\r\n"
                                     "Cc: <dora@example.org>\r\n"
                                     "X-Mailer: NyrMail\r\n"
                                     "Subject: Traverse 12 closed\r\n");
    EXPECT_EQ(m.Body(), "Misclosure 4 mm.\r\n");

    // No To, no Cc, and a reply-to with a name but no address: those lines go.
    Message bare;
    bare.From("ann@example.org");
    bare.ReplyTo(MAIL_ADDRESS{"Office", ""});
    bare.AddRecipient("eve@example.org", CNyrMailMessage::BCC);
    EXPECT_EQ(AfterDate(bare.Header()), "From: \"\" <ann@example.org>\r\nX-Mailer: NyrMail\r\nSubject: \r\n");
}

TEST(MailMessage, DateIsTheCurrentUtcTimeWithATwoDigitYearAndEnglishNames)
{
    setenv("TZ", "Asia/Tokyo", 1);  // a local-time slip would show; ctest runs in UTC
    tzset();
    Message m;
    const std::time_t before = std::time(nullptr);
    const std::string header = m.Header();
    const std::time_t after = std::time(nullptr);
    setenv("TZ", "UTC", 1);
    tzset();
    auto dateOf = [](std::time_t t) {
        std::tm utc{};
        gmtime_r(&t, &utc);
        char text[64];
        std::strftime(text, sizeof text, "Date: %a, %d %b %y %H:%M:%S GMT\r\n", &utc);  // C locale: English
        return std::string(text);
    };
    const std::string date = header.substr(0, header.find("\r\n") + 2);
    EXPECT_TRUE(date == dateOf(before) || date == dateOf(after)) << date;
}

TEST(MailMessage, MailAddressFromStringSplitsNameAndAddress)
{
    const struct
    {
        const char* text;
        const char* name;
        const char* address;
    } cases[] = {
        {"  \tAnn Surveyor  <ann@example.org>", "Ann Surveyor", "ann@example.org"},
        {" ann@example.org ", "", " ann@example.org "},  // no bracket: taken whole, untrimmed
        {"Ann <ann@x", "Ann", "ann@x"},
        {"Ann >ann@x<more", "Ann", "ann@x"},  // the first '<' or '>' opens, the next closes
        {"Ann < ann@x >", "Ann", " ann@x "},
        {nullptr, "", ""},
    };
    for (const auto& c : cases) {
        const MAIL_ADDRESS a = Message::MailAddressFromString(c.text);
        EXPECT_EQ(a.name + "|" + a.address, std::string(c.name) + "|" + c.address) << (c.text ? c.text : "null");
    }
}

TEST(MailMessage, CheckMailAddressRefusesWhatWouldBreakAHeaderOrACommand)
{
    const struct
    {
        MAIL_ADDRESS address;
        int valid;
    } cases[] = {
        {{"Ann", "ann@example.org"}, 1},
        {{"Änne Müller", "aenne@example.org"}, 1},  // UTF-8 is text, not control
        {{"Ann", ""}, 0},
        {{"Ann", "ann @example.org"}, 0},
        {{"Ann", "ann\"@example.org"}, 0},
        {{"Ann", "ann>@example.org"}, 0},
        {{"ann@home", "ann@example.org"}, 0},
        {{"A<nn", "ann@example.org"}, 0},
        {{"Ann", "ann@example.org\r\nRCPT TO:<x@y>"}, 0},
        {{"Ann", "ann\t@example.org"}, 0},
        {{"Ann", "ann\x7f@example.org"}, 0},
        {{"Ann\nBcc: x@y", "ann@example.org"}, 0},
    };
    Message m;
    for (const auto& c : cases)
        EXPECT_EQ(m.CheckMailAddress(c.address), c.valid) << c.address.name << " / " << c.address.address;
}

// A hook that refuses some addresses; it sees copies only.
struct StrictMessage : CNyrMailMessage
{
    mutable int seen = 0;
    int TransformMailAdress(MAIL_ADDRESS a) const override
    {
        ++seen;
        return a.address.find("@example.org") != std::string::npos;
    }
};

TEST(MailMessage, RecipientListsAddRefuseDeleteAndReadBack)
{
    StrictMessage m;
    EXPECT_EQ(m.AddRecipient("ann@example.org", CNyrMailMessage::TO), 1);
    EXPECT_EQ(m.AddRecipient("Bob@home <bob@example.org>", CNyrMailMessage::TO), 0);  // the check refuses first
    EXPECT_EQ(m.AddRecipient("bob@elsewhere.net", CNyrMailMessage::TO), 0);           // the hook refuses
    EXPECT_EQ(m.seen, 2);
    EXPECT_EQ(m.AddRecipient("bob@example.org", static_cast<CNyrMailMessage::eRecipientTypes>(3)), 0);

    // Pieces are untrimmed: " gina@example.org" holds a blank and is refused.
    EXPECT_EQ(m.AddMultipleRecipients("carl@example.org,Dora <dora@example.org>", CNyrMailMessage::CC), 1);
    EXPECT_EQ(m.AddMultipleRecipients(",eve@example.org,fred@example.org, gina@example.org", CNyrMailMessage::BCC),
              1);
    EXPECT_EQ(m.GetNumRecipients(), 5u);
    EXPECT_EQ(m.GetNumRecipientsCc(), 2u);
    EXPECT_EQ(m.GetNumRecipientsBcc(), 2u);

    std::string address = "untouched", name;
    EXPECT_EQ(m.Recipient(address, name, 2, CNyrMailMessage::CC), 0);
    EXPECT_EQ(m.Recipient(address, name, 0, static_cast<CNyrMailMessage::eRecipientTypes>(-1)), 0);
    EXPECT_EQ(address, "untouched");
    EXPECT_EQ(m.DeleteRecipient(0, CNyrMailMessage::CC), 1);
    EXPECT_EQ(m.DeleteRecipient(1, CNyrMailMessage::CC), 0);
    EXPECT_EQ(m.Recipient(address, name, 0, CNyrMailMessage::CC), 1);
    EXPECT_EQ(address + "|" + name, "dora@example.org|Dora");
}

TEST(MailMessage, NoCallerTextCanStartAHeaderLineOfItsOwn)
{
    Message m;
    m.From("Ann\r\nBcc: spy@x <ann@x\r\nX-Injected: 1>");  // From stores without checking
    m.ReplyTo(MAIL_ADDRESS{"Office\nX-Injected: 2", "office@x\rX-Injected: 3"});
    m.Subject("Report\r\nBcc: spy@x");
    m.MailerName("NyrMail\nX-Injected: 4");
    m.Boundary("b\r\nX-Injected: 5");
    m.AddRecipient("bob@x", CNyrMailMessage::TO);
    auto* text = new CNyrMailMessageMimePartText("text");
    text->Charset("utf-8\r\nX-Injected: 6");
    m.AddMimePart(text);
    m.AddMimePart(new CNyrMailMessageMimePartBinary("/tmp/a\r\nX-Injected: 7.txt"));

    const std::string header = m.Header();
    std::vector<std::string> lines;
    for (std::size_t at = 0, end; (end = header.find("\r\n", at)) != std::string::npos; at = end + 2)
        lines.push_back(header.substr(at, end - at));
    ASSERT_EQ(lines.size(), 9u);  // Date From Reply-To To X-Mailer Subject MIME-Version Content-Type boundary
    for (const auto& line : lines) {
        EXPECT_EQ(line.find_first_of("\r\n"), std::string::npos) << line;
        EXPECT_TRUE(line.rfind("X-Injected", 0) != 0 && line.rfind("Bcc", 0) != 0) << line;
    }
    EXPECT_EQ(lines[5], "Subject: Report  Bcc: spy@x");
    const std::string body = m.Body();
    EXPECT_NE(body.find("\r\n--b  X-Injected: 5\r\n"), std::string::npos);  // agrees with the header
    EXPECT_NE(body.find("charset=\"utf-8  X-Injected: 6\"\r\n"), std::string::npos);
    EXPECT_NE(body.find("filename*=UTF-8''a%0D%0AX-Injected%3A%207.txt; filename=\"a  X-Injected: 7.txt\"\r\n"),
              std::string::npos);
}

TEST(MailMessage, ClassWideDefaultsReachOnlyLaterConstructions)
{
    Message before;
    CNyrMailMessage::MailerNameDefault("Surveyor 7");
    CNyrMailMessageMimeContainer::BoundaryDefault("XYZ");
    CNyrMailMessageMimePartText::CharsetDefault("utf-8");
    CNyrMailMessageMimePartBinary beforeBinary("/x/y.bin");
    CNyrMailMessageMimePartBinary::ContentDispositionDefault("inline");
    CNyrMailMessageMimePartBinary::StandardBase64Default(1);
    Message after;
    const std::string text = CNyrMailMessageMimePartText("t").Header();
    const CNyrMailMessageMimePartBinary afterBinary("/x/y.bin");
    const std::string binary = afterBinary.Header();
    CNyrMailMessageMimePartBinary::StandardBase64Default(0);
    CNyrMailMessage::MailerNameDefault("NyrMail");
    CNyrMailMessageMimeContainer::BoundaryDefault("_NextPart_CNyrMail_1dE8e48F60beBCECoestrsf");
    CNyrMailMessageMimePartText::CharsetDefault("iso-8859-1");
    CNyrMailMessageMimePartBinary::ContentDispositionDefault("attachment");

    EXPECT_EQ(before.MailerName() + " " + before.Boundary(), "NyrMail _NextPart_CNyrMail_1dE8e48F60beBCECoestrsf");
    EXPECT_EQ(after.MailerName() + " " + after.Boundary(), "Surveyor 7 XYZ");
    EXPECT_EQ(text, "Content-type: text/plain; charset=\"utf-8\"\r\nContent-transfer-encoding: quoted-printable\r\n");
    EXPECT_EQ(binary, "Content-type: application/octet-stream; name=\"y.bin\"\r\n"
                      "Content-Disposition: inline; filename=\"y.bin\"\r\n"
                      "Content-transfer-encoding: Base64\r\n");
    EXPECT_EQ(beforeBinary.StandardBase64(), 0);
    EXPECT_EQ(afterBinary.StandardBase64(), 1);
}

TEST(MimeContainer, ZeroOneAndManyParts)
{
    nyr::test::TempDir dir;
    const std::string path = dir.File("points.csv");
    nyr::test::WriteFile(path, std::string("P1,100.000,200.000\n\0\xff", 21));
    Message m;
    m.From("ann@x");
    m.AddRecipient("bob@x", CNyrMailMessage::TO);
    m.Body("plain body");
    const std::string plain = AfterDate(m.Header());
    EXPECT_EQ(m.Body(), "plain body");

    // One part: its header lines join the message header, no boundary anywhere.
    m.AddMimePart(new CNyrMailMessageMimePartText("a=b"));
    EXPECT_EQ(AfterDate(m.Header()), plain + "MIME-Version: 1.0\r\n"
                                             "Content-type: text/plain; charset=\"iso-8859-1\"\r\n"
                                             "Content-transfer-encoding: quoted-printable\r\n");
    EXPECT_EQ(m.Body(), "a=b");  // unencoded although quoted-printable is announced (intended)

    // Two: multipart/mixed with the unquoted boundary; the plain body is not used.
    auto* binary = new CNyrMailMessageMimePartBinary(path.c_str());
    binary->ContentType("text/csv");
    m.AddMimePart(binary);
    m.PreMime("Preamble.\r\n");
    m.PostMime("-- end\r\n");
    EXPECT_EQ(AfterDate(m.Header()), plain + "MIME-Version: 1.0\r\n"
                                             "Content-Type: multipart/mixed;\r\n"
                                             "\tboundary=_NextPart_CNyrMail_1dE8e48F60beBCECoestrsf\r\n");
    const std::string boundary = "\r\n--_NextPart_CNyrMail_1dE8e48F60beBCECoestrsf";
    EXPECT_EQ(m.Body(), "Preamble.\r\n" + boundary +
                            "\r\nContent-type: text/plain; charset=\"iso-8859-1\"\r\n"
                            "Content-transfer-encoding: quoted-printable\r\n\r\na=b" +
                            boundary +
                            "\r\nContent-type: text/csv; name=\"points.csv\"\r\n"
                            "Content-Disposition: attachment; filename=\"points.csv\"\r\n"
                            "Content-transfer-encoding: Base64\r\n\r\n" +
                            NyrEncodeBase64(path) + boundary + "--\r\n-- end\r\n");
    EXPECT_EQ(m.AddMimePart(nullptr), 0);
}

TEST(MimeContainer, AttachmentBodyDecodesBackAndAnythingButARegularFileGivesAnEmptyBody)
{
    nyr::test::TempDir dir;
    std::string content;
    for (int i = 0; i < 1000; ++i)
        content += static_cast<char>(i * 7 % 256);
    nyr::test::WriteFile(dir.File("data.bin"), content);
    std::string body = CNyrMailMessageMimePartBinary(dir.File("data.bin").c_str()).Body();
    EXPECT_EQ(body.find("\r\n"), 76u);  // lines of 76 characters
    const unsigned long n = NyrDecodeBase64(reinterpret_cast<unsigned char*>(body.data()));
    EXPECT_EQ(std::string(body.data(), n), content);

    // A FIFO without a writer would block a plain read for ever; a device
    // or a folder would give an empty or endless attachment.
    ASSERT_EQ(mkfifo(dir.File("fifo").c_str(), 0600), 0);
    for (const std::string& path : {dir.File("gone.bin"), dir.Path(), dir.File("fifo"), std::string("/dev/null"),
                                    std::string("/dev/zero")}) {
        for (const int standard : {0, 1}) {
            CNyrMailMessageMimePartBinary special(path.c_str());
            special.StandardBase64(standard);
            EXPECT_EQ(special.Body(), "") << path;
        }
    }
    EXPECT_NE(CNyrMailMessageMimePartBinary(dir.File("gone.bin").c_str()).Header().find("filename=\"gone.bin\""),
              std::string::npos);
}

TEST(EncodeIso8859, EscapesAbove0x99AndTheEqualsSign)
{
    EXPECT_EQ(NyrEncodeIso8859("a=b\x80\x99\x9a\xff\xc3\xa4\r\n\t"), "a=3Db\x80\x99=9A=FF=C3=A4\r\n\t");
    EXPECT_EQ(NyrEncodeIso8859(nullptr), "");
    EXPECT_EQ(NyrEncodeIso8859(std::string(200, '\xe9').c_str()).size(), 600u);  // no soft line breaks
}

}  // namespace
