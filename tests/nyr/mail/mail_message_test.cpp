#include <gtest/gtest.h>

#include <cstdlib>
#include <ctime>
#include <regex>

#include "nyr/mail/mail_message.h"
#include "nyr/mail/mail_message_mime_container.h"
#include "nyr/mail/mail_message_mime_part.h"
#include "nyr/util/base64.h"
#include "tests/support/temp_dir.h"

namespace {

using NyrMailHelper::MAIL_ADDRESS;

struct Message : CNyrMailMessage
{
    using CNyrMailMessage::CheckMailAddress;
    using CNyrMailMessage::MailAddressFromString;
};

// The header without its first line, which is the Date.
std::string AfterDate(const std::string& header)
{
    EXPECT_EQ(header.rfind("Date: ", 0), 0u) << header;
    return header.substr(header.find("\r\n") + 2);
}

std::string DateOf(std::time_t t)
{
    std::tm utc{};
    gmtime_r(&t, &utc);
    char text[64];
    std::strftime(text, sizeof text, "Date: %a, %d %b %y %H:%M:%S GMT\r\n", &utc);  // C locale: English names
    return text;
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

    EXPECT_EQ(AfterDate(m.Header()),
              "From: \"Ann Surveyor\" <ann@example.org>\r\n"
              "Reply-To: \"Office\" <office@example.org>\r\n"
              "To: \" Bob\" <bob@example.org>,\" \" <carl@example.org>\r\n"
              "Cc: <dora@example.org>\r\n"
              "X-Mailer: NyrMail\r\n"
              "Subject: Traverse 12 closed\r\n");
    EXPECT_EQ(m.Body(), "Misclosure 4 mm.\r\n");
    EXPECT_EQ(m.GetNumRecipients(), 4u);  // Bcc counts, but is never written

    // Without To, Cc or a reply-to address those lines are left out, even
    // with a reply-to name.
    Message bare;
    bare.From("ann@example.org");
    bare.ReplyTo(MAIL_ADDRESS{"Office", ""});
    bare.AddRecipient("eve@example.org", CNyrMailMessage::BCC);
    EXPECT_EQ(AfterDate(bare.Header()), "From: \"\" <ann@example.org>\r\nX-Mailer: NyrMail\r\nSubject: \r\n");
}

TEST(MailMessage, DateIsTheCurrentUtcTimeWithATwoDigitYearAndEnglishNames)
{
    // A zone far from UTC shows a local-time slip; ctest runs in UTC.
    const char* savedTz = std::getenv("TZ");
    const std::string saved = savedTz ? savedTz : "";
    setenv("TZ", "Asia/Tokyo", 1);
    tzset();
    Message m;
    const std::time_t before = std::time(nullptr);
    const std::string header = m.Header();
    const std::time_t after = std::time(nullptr);
    savedTz ? setenv("TZ", saved.c_str(), 1) : unsetenv("TZ");
    tzset();

    const std::string date = header.substr(0, header.find("\r\n") + 2);
    EXPECT_TRUE(date == DateOf(before) || date == DateOf(after)) << date;
    EXPECT_TRUE(std::regex_match(date, std::regex("Date: (Mon|Tue|Wed|Thu|Fri|Sat|Sun), [0-3][0-9] "
                                                  "(Jan|Feb|Mar|Apr|May|Jun|Jul|Aug|Sep|Oct|Nov|Dec) [0-9]{2} "
                                                  "[0-2][0-9]:[0-5][0-9]:[0-6][0-9] GMT\r\n")))
        << date;
}

TEST(MailMessage, MailAddressFromStringSplitsNameAndAddress)
{
    const struct
    {
        const char* text;
        const char* name;
        const char* address;
    } cases[] = {
        {"Ann Surveyor <ann@example.org>", "Ann Surveyor", "ann@example.org"},
        {"  \tAnn  <ann@example.org>", "Ann", "ann@example.org"},
        {"ann@example.org", "", "ann@example.org"},
        {" ann@example.org ", "", " ann@example.org "},  // no bracket: taken whole, untrimmed
        {"<ann@example.org>", "", "ann@example.org"},
        {"Ann <ann@example.org", "Ann", "ann@example.org"},
        {"Ann <ann@x> trailing", "Ann", "ann@x"},
        {"Ann >ann@x<more", "Ann", "ann@x"},  // the first of '<' or '>' opens
        {"Ann < ann@x >", "Ann", " ann@x "},
        {"", "", ""},
        {nullptr, "", ""},
    };
    for (const auto& c : cases) {
        const MAIL_ADDRESS a = Message::MailAddressFromString(c.text);
        EXPECT_EQ(a.name, c.name) << (c.text ? c.text : "(null)");
        EXPECT_EQ(a.address, c.address) << (c.text ? c.text : "(null)");
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
        {{"", "ann@example.org"}, 1},
        {{"Ann", ""}, 0},
        {{"Ann", "ann @example.org"}, 0},
        {{"Ann", "ann\"@example.org"}, 0},
        {{"Ann", "ann<@example.org"}, 0},
        {{"Ann", "ann>@example.org"}, 0},
        {{"ann@home", "ann@example.org"}, 0},
        {{"\"Ann\"", "ann@example.org"}, 0},
        {{"A<nn", "ann@example.org"}, 0},
        {{"Ann", "ann@example.org\r\nRCPT TO:<x@y>"}, 0},
        {{"Ann", "ann@example.org\n"}, 0},
        {{"Ann", "ann\t@example.org"}, 0},
        {{"Ann", "ann\x7f@example.org"}, 0},
        {{"Ann\r\nBcc: x@y", "ann@example.org"}, 0},
        {{"An\x01n", "ann@example.org"}, 0},
        {{"Änne Müller", "aenne@example.org"}, 1},  // UTF-8 is text, not control
    };
    Message m;
    for (const auto& c : cases)
        EXPECT_EQ(m.CheckMailAddress(c.address), c.valid) << c.address.name << " / " << c.address.address;
}

TEST(MailMessage, RecipientListsAddRefuseDeleteAndReadBack)
{
    Message m;
    EXPECT_EQ(m.AddRecipient("ann@x", CNyrMailMessage::TO), 1);
    EXPECT_EQ(m.AddRecipient("Bob@home <bob@x>", CNyrMailMessage::TO), 0);
    EXPECT_EQ(m.AddRecipient("bob@x", static_cast<CNyrMailMessage::eRecipientTypes>(3)), 0);
    EXPECT_EQ(m.GetNumRecipients(), 1u);

    // Pieces are untrimmed: "ann@x, bob@x" makes " bob@x", which holds a blank.
    EXPECT_EQ(m.AddMultipleRecipients("carl@x,Dora <dora@x>", CNyrMailMessage::CC), 1);
    EXPECT_EQ(m.AddMultipleRecipients(",eve@x", CNyrMailMessage::BCC), 1);
    EXPECT_EQ(m.AddMultipleRecipients("fred@x, gina@x", CNyrMailMessage::BCC), 1);
    EXPECT_EQ(m.AddMultipleRecipients(nullptr, CNyrMailMessage::BCC), 1);
    EXPECT_EQ(m.GetNumRecipientsTo(), 1u);
    EXPECT_EQ(m.GetNumRecipientsCc(), 2u);
    EXPECT_EQ(m.GetNumRecipientsBcc(), 2u);

    std::string address = "untouched", name = "untouched";
    EXPECT_EQ(m.Recipient(address, name, 1, CNyrMailMessage::CC), 1);
    EXPECT_EQ(address, "dora@x");
    EXPECT_EQ(name, "Dora");
    EXPECT_EQ(m.Recipient(address, name, 1, CNyrMailMessage::BCC), 1);
    EXPECT_EQ(address, "fred@x");
    address = name = "untouched";
    EXPECT_EQ(m.Recipient(address, name, 2, CNyrMailMessage::CC), 0);
    EXPECT_EQ(m.Recipient(address, name, 0, static_cast<CNyrMailMessage::eRecipientTypes>(-1)), 0);
    EXPECT_EQ(address, "untouched");

    EXPECT_EQ(m.DeleteRecipient(0, CNyrMailMessage::CC), 1);
    EXPECT_EQ(m.DeleteRecipient(1, CNyrMailMessage::CC), 0);
    EXPECT_EQ(m.DeleteRecipient(0, static_cast<CNyrMailMessage::eRecipientTypes>(7)), 0);
    EXPECT_EQ(m.Recipient(address, name, 0, CNyrMailMessage::CC), 1);
    EXPECT_EQ(address, "dora@x");
    EXPECT_EQ(m.GetNumRecipients(), 4u);
}

// A hook that refuses, and sees a copy: the stored address is as parsed.
struct StrictMessage : CNyrMailMessage
{
    mutable int seen = 0;
    int TransformMailAdress(MAIL_ADDRESS a) const override
    {
        ++seen;
        return a.address.find("@example.org") != std::string::npos;
    }
};

TEST(MailMessage, TransformHookDecidesAfterTheCheckPassed)
{
    StrictMessage m;
    EXPECT_EQ(m.AddRecipient("Ann <ann@example.org>", CNyrMailMessage::TO), 1);
    EXPECT_EQ(m.AddRecipient("Bob <bob@elsewhere.net>", CNyrMailMessage::TO), 0);
    EXPECT_EQ(m.AddRecipient("Bob@home <bob@example.org>", CNyrMailMessage::TO), 0);  // refused by the check first
    EXPECT_EQ(m.seen, 2);
    EXPECT_EQ(m.GetNumRecipientsTo(), 1u);
}

TEST(MailMessage, NoCallerTextCanStartAHeaderLineOfItsOwn)
{
    CNyrMailMessageMimeContainer m;
    m.From("Ann\r\nBcc: spy@x <ann@x\r\nX-Injected: 1>");  // From stores without checking
    m.ReplyTo(MAIL_ADDRESS{"Office\nX-Injected: 2", "office@x\rX-Injected: 3"});
    m.Subject("Report\r\nBcc: spy@x\r\n\r\nbody");
    m.MailerName("NyrMail\nX-Injected: 4");
    m.Boundary("b\r\nX-Injected: 5");
    m.AddRecipient("bob@x", CNyrMailMessage::TO);
    auto* text = new CNyrMailMessageMimePartText("text");
    text->Charset("utf-8\r\nX-Injected: 6");
    m.AddMimePart(text);
    m.AddMimePart(new CNyrMailMessageMimePartBinary("/tmp/a\r\nX-Injected: 7.txt"));

    const std::string header = m.Header();
    std::size_t lines = 0;
    for (std::size_t at = 0; at < header.size(); ++lines) {
        const std::size_t end = header.find("\r\n", at);
        ASSERT_NE(end, std::string::npos);
        const std::string line = header.substr(at, end - at);
        EXPECT_EQ(line.find_first_of("\r\n"), std::string::npos) << line;
        EXPECT_NE(line.rfind("X-Injected", 0), 0u) << line;
        EXPECT_NE(line.rfind("Bcc", 0), 0u) << line;
        at = end + 2;
    }
    EXPECT_EQ(lines, 9u);  // Date, From, Reply-To, To, X-Mailer, Subject, MIME-Version, Content-Type, boundary
    EXPECT_NE(header.find("Subject: Report  Bcc: spy@x    body\r\n"), std::string::npos);
    // The body's boundary lines agree with the header's.
    EXPECT_NE(m.Body().find("\r\n--b  X-Injected: 5\r\n"), std::string::npos);
}

// Restores the class-wide defaults that a test changes.
class MailDefaults : public ::testing::Test
{
protected:
    void TearDown() override
    {
        CNyrMailMessage::MailerNameDefault("NyrMail");
        CNyrMailMessageMimeContainer::BoundaryDefault("_NextPart_CNyrMail_1dE8e48F60beBCECoestrsf");
        CNyrMailMessageMimePartText::CharsetDefault("iso-8859-1");
        CNyrMailMessageMimePartText::ContentTypeDefault("text/plain");
        CNyrMailMessageMimePartText::ContentTransferEncodingDefault("quoted-printable");
        CNyrMailMessageMimePartBinary::ContentTypeDefault("application/octet-stream");
        CNyrMailMessageMimePartBinary::ContentDispositionDefault("attachment");
        CNyrMailMessageMimePartBinary::ContentTransferEncodingDefault("Base64");
    }
};

TEST_F(MailDefaults, ClassWideDefaultsReachOnlyLaterConstructions)
{
    CNyrMailMessageMimeContainer before;
    CNyrMailMessageMimePartText textBefore("t");
    CNyrMailMessage::MailerNameDefault("Surveyor 7");
    CNyrMailMessageMimeContainer::BoundaryDefault("XYZ");
    CNyrMailMessageMimePartText::CharsetDefault("utf-8");
    CNyrMailMessageMimePartBinary::ContentDispositionDefault("inline");
    CNyrMailMessageMimeContainer after;
    CNyrMailMessageMimePartText textAfter("t");
    CNyrMailMessageMimePartBinary binaryAfter("/x/y.bin");

    EXPECT_EQ(before.MailerName(), "NyrMail");
    EXPECT_EQ(before.Boundary(), "_NextPart_CNyrMail_1dE8e48F60beBCECoestrsf");
    EXPECT_EQ(textBefore.Charset(), "iso-8859-1");
    EXPECT_EQ(after.MailerName(), "Surveyor 7");
    EXPECT_EQ(after.Boundary(), "XYZ");
    EXPECT_EQ(textAfter.Header(), "Content-type: text/plain; charset=\"utf-8\"\r\n"
                                  "Content-transfer-encoding: quoted-printable\r\n");
    EXPECT_EQ(binaryAfter.Header(), "Content-type: application/octet-stream; name=\"y.bin\"\r\n"
                                    "Content-Disposition: inline; filename=\"y.bin\"\r\n"
                                    "Content-transfer-encoding: Base64\r\n");
}

TEST(MimeContainer, ZeroOneAndManyParts)
{
    nyr::test::TempDir dir;
    const std::string path = dir.File("points.csv");
    nyr::test::WriteFile(path, std::string("P1,100.000,200.000\n\0\xff", 21));

    CNyrMailMessageMimeContainer m;
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
    m.PreMime("This is a multi-part message in MIME format.\r\n");
    m.PostMime("-- end\r\n");
    EXPECT_EQ(AfterDate(m.Header()), plain + "MIME-Version: 1.0\r\n"
                                             "Content-Type: multipart/mixed;\r\n"
                                             "\tboundary=_NextPart_CNyrMail_1dE8e48F60beBCECoestrsf\r\n");
    const std::string encoded = NyrEncodeBase64(path);
    EXPECT_EQ(m.Body(), "This is a multi-part message in MIME format.\r\n"
                        "\r\n--_NextPart_CNyrMail_1dE8e48F60beBCECoestrsf\r\n"
                        "Content-type: text/plain; charset=\"iso-8859-1\"\r\n"
                        "Content-transfer-encoding: quoted-printable\r\n"
                        "\r\n"
                        "a=b"
                        "\r\n--_NextPart_CNyrMail_1dE8e48F60beBCECoestrsf\r\n"
                        "Content-type: text/csv; name=\"points.csv\"\r\n"
                        "Content-Disposition: attachment; filename=\"points.csv\"\r\n"
                        "Content-transfer-encoding: Base64\r\n"
                        "\r\n" +
                            encoded +
                            "\r\n--_NextPart_CNyrMail_1dE8e48F60beBCECoestrsf--\r\n"
                            "-- end\r\n");
    EXPECT_EQ(m.AddMimePart(nullptr), 0);
}

TEST(MimeContainer, AttachmentBodyDecodesBackAndAnUnreadableFileGivesAnEmptyBody)
{
    nyr::test::TempDir dir;
    std::string content;
    for (int i = 0; i < 1000; ++i)
        content += static_cast<char>(i * 7 % 256);
    nyr::test::WriteFile(dir.File("data.bin"), content);

    CNyrMailMessageMimePartBinary part(dir.File("data.bin").c_str());
    std::string body = part.Body();
    for (std::size_t at = 0; at < body.size();) {  // lines of 76 characters
        const std::size_t end = body.find("\r\n", at);
        EXPECT_LE((end == std::string::npos ? body.size() : end) - at, 76u);
        at = end == std::string::npos ? body.size() : end + 2;
    }
    const unsigned long n = NyrDecodeBase64(reinterpret_cast<unsigned char*>(body.data()));
    EXPECT_EQ(std::string(body.data(), n), content);

    CNyrMailMessageMimePartBinary missing(dir.File("gone.bin").c_str());
    EXPECT_EQ(missing.Body(), "");
    EXPECT_EQ(missing.Header(), "Content-type: application/octet-stream; name=\"gone.bin\"\r\n"
                                "Content-Disposition: attachment; filename=\"gone.bin\"\r\n"
                                "Content-transfer-encoding: Base64\r\n");
}

struct CountedPart : CNyrMailMessageMimePartText
{
    explicit CountedPart(int* deleted) : CNyrMailMessageMimePartText("x"), m_deleted(deleted) {}
    ~CountedPart() override { ++*m_deleted; }
    int* m_deleted;
};

TEST(MimeContainer, OwnsItsParts)
{
    int deleted = 0;
    {
        CNyrMailMessageMimeContainer m;
        m.AddMimePart(new CountedPart(&deleted));
        m.AddMimePart(new CountedPart(&deleted));
        EXPECT_EQ(deleted, 0);
    }
    EXPECT_EQ(deleted, 2);
}

TEST(EncodeIso8859, EscapesAbove0x99AndTheEqualsSign)
{
    const struct
    {
        const char* in;
        const char* out;
    } cases[] = {
        {"a=b", "a=3Db"},
        {"\x99", "\x99"},  // the threshold is 0x99, intended
        {"\x80\x90", "\x80\x90"},
        {"\x9a", "=9A"},
        {"\xff\xc3\xa4", "=FF=C3=A4"},
        {"line 1\r\n\tline 2", "line 1\r\n\tline 2"},
        {"", ""},
    };
    for (const auto& c : cases)
        EXPECT_EQ(NyrEncodeIso8859(c.in), c.out) << c.in;
    EXPECT_EQ(NyrEncodeIso8859(nullptr), "");
    EXPECT_EQ(NyrEncodeIso8859(std::string(200, '\xe9').c_str()).size(), 600u);  // no soft line breaks
}

}  // namespace
