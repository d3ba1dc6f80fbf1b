// Composed messages read by another implementation, Python's email package
// (what strict mail filters are built on): every attachment decodes, no
// caller's text adds a part, every file name arrives whole.
#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <sstream>

#include "nyr/mail/mail_message_mime_container.h"
#include "nyr/util/base64.h"
#include "tests/nyr/mail/mail_test_text.h"
#include "tests/support/temp_dir.h"

namespace {

using nyr::test::FromHex;
using nyr::test::TempDir;
using nyr::test::WriteFile;

struct PythonPart
{
    std::string name;
    std::string defects;  // "-" when none
    std::string payload;
};

struct PythonView
{
    std::string defects;  // of the message itself
    std::vector<PythonPart> parts;
};

// What Python's email package reads from the message, under `policy`
// ("compat32" or "default").
PythonView ReadWithPython(const CNyrMailMessageMimeContainer& m, const char* policy)
{
    TempDir dir;
    WriteFile(dir.File("m.eml"), m.Header() + "\r\n" + m.Body());
    const auto run = nyr::test::RunProcess(
        {"/usr/bin/python3", NYR_SOURCE_DIR "/tests/nyr/mail/mime_dump.py", policy, dir.File("m.eml")});
    EXPECT_EQ(run.exitCode, 0) << run.err;
    PythonView view;
    std::istringstream lines(run.out);
    std::string word;
    std::size_t count = 0;
    lines >> word >> count >> view.defects;
    for (std::string name, defects, payload; lines >> name >> defects >> payload;)
        view.parts.push_back({FromHex(name), defects, FromHex(payload)});
    EXPECT_EQ(view.parts.size(), count);
    return view;
}

std::string RandomBytes(std::size_t size, std::mt19937& random)
{
    std::string bytes(size, '\0');
    for (char& c : bytes)
        c = static_cast<char>(random());
    return bytes;
}

TEST(MimeInterop, EveryAttachmentLengthDecodesWithoutDefectsInStandardBase64)
{
    TempDir dir;
    std::mt19937 random(301);
    std::vector<std::string> files;
    for (std::size_t length = 0; length <= 300; ++length) {
        files.push_back(RandomBytes(length, random));
        WriteFile(dir.File("f" + std::to_string(length)), files.back());
    }
    for (const int standard : {1, 0}) {
        CNyrMailMessageMimeContainer m;
        m.From("ann@example.org");
        m.AddRecipient("bob@example.org", CNyrMailMessage::TO);
        m.AddMimePart(new CNyrMailMessageMimePartText("Lengths 0 to 300.\r\n"));
        for (std::size_t length = 0; length <= 300; ++length) {
            auto* part = new CNyrMailMessageMimePartBinary(dir.File("f" + std::to_string(length)).c_str());
            part->StandardBase64(standard);
            m.AddMimePart(part);
            if (!standard) {  // the library reads its own form back exactly
                std::string body = part->Body();
                const auto n = NyrDecodeBase64(reinterpret_cast<unsigned char*>(body.data()));
                EXPECT_EQ(std::string(body.data(), n), files[length]) << length;
            }
        }
        for (const char* policy : {"compat32", "default"}) {
            const PythonView view = ReadWithPython(m, policy);
            ASSERT_EQ(view.parts.size(), 302u) << policy;
            EXPECT_EQ(view.defects, "-") << policy;
            std::size_t withDefects = 0;
            for (std::size_t length = 0; length <= 300; ++length) {
                const PythonPart& part = view.parts[length + 1];
                EXPECT_EQ(part.name, "f" + std::to_string(length));
                withDefects += part.defects != "-";
                if (standard) {
                    EXPECT_EQ(part.defects, "-") << policy << " length " << length;
                    EXPECT_EQ(part.payload, files[length]) << policy << " length " << length;
                }
            }
            // The library's own form is why the standard one exists: strict readers stumble over it.
            if (!standard) {
                EXPECT_GT(withDefects, 100u) << policy;
            }
        }
    }
}

TEST(MimeInterop, TextHoldingTheDelimiterNeverStartsAnotherPart)
{
    const std::string b = CNyrMailMessageMimeContainer::BoundaryDefault();
    const struct
    {
        std::string preMime;
        std::string text;
        std::string wireBoundary;
    } cases[] = {
        {"", "No delimiter: --" + b + " inside a line\r\n", b},
        {"", "--" + b + "\r\nContent-type: application/x-evil\r\n\r\nBAD\r\n", b + "_1"},
        {"", "x\r\n--" + b + "--\r\nafter the end", b + "_1"},
        {"", "lax\n--" + b + "\nContent-type: application/x-evil\n\nBAD", b + "_1"},
        {"", "cr\r--" + b + "_1\r--" + b + "\r", b + "_2"},
        {"Preamble\r\n--" + b + "\r\nContent-type: application/x-evil\r\n\r\nBAD\r\n", "text", b + "_1"},
    };
    TempDir dir;
    WriteFile(dir.File("data.bin"), "\x01\x02\x03");
    for (const auto& c : cases) {
        CNyrMailMessageMimeContainer m;
        m.From("ann@example.org");
        m.AddRecipient("bob@example.org", CNyrMailMessage::TO);
        m.PreMime(c.preMime);
        auto* hostile = new CNyrMailMessageMimePartText(c.text.c_str());
        hostile->ContentTransferEncoding("8bit");  // so the payload reads back byte for byte
        m.AddMimePart(hostile);
        m.AddMimePart(new CNyrMailMessageMimePartText("second\r\n"));
        auto* binary = new CNyrMailMessageMimePartBinary(dir.File("data.bin").c_str());
        binary->StandardBase64(1);
        m.AddMimePart(binary);
        EXPECT_EQ(m.Boundary(), b);
        EXPECT_NE(m.Header().find("\tboundary=" + c.wireBoundary + "\r\n"), std::string::npos) << c.text;
        EXPECT_EQ(m.Body().find("\r\n--" + c.wireBoundary + "\r\n"), c.preMime.size());
        const PythonView view = ReadWithPython(m, "default");
        ASSERT_EQ(view.parts.size(), 3u) << c.text;
        EXPECT_EQ(view.parts[0].payload, c.text);
        EXPECT_EQ(view.parts[1].payload, "second\r\n");
        EXPECT_EQ(view.parts[2].payload, std::string("\x01\x02\x03", 3));
    }
}

TEST(MimeInterop, FileNamesArriveWholeAndAddNoParameter)
{
    const std::string names[] = {
        "plain.txt", "a\"b.txt", "x\"; name=\"evil.exe", "back\\slash.txt", "\xc3\x9c" "bersicht.pdf",
        "tab\there.txt", "new\nline.txt", "quote\"; filename*=UTF-8''evil.exe",
    };
    TempDir dir;
    CNyrMailMessageMimeContainer m;
    m.From("ann@example.org");
    m.AddRecipient("bob@example.org", CNyrMailMessage::TO);
    m.AddMimePart(new CNyrMailMessageMimePartText("Files.\r\n"));
    for (const auto& name : names) {
        WriteFile(dir.File(name), name);
        auto* part = new CNyrMailMessageMimePartBinary(dir.File(name).c_str());
        part->StandardBase64(1);
        m.AddMimePart(part);
    }
    // Plain ASCII names keep the exact form.
    EXPECT_NE(m.Body().find("Content-type: application/octet-stream; name=\"plain.txt\"\r\n"
                            "Content-Disposition: attachment; filename=\"plain.txt\"\r\n"),
              std::string::npos);
    for (const char* policy : {"compat32", "default"}) {
        const PythonView view = ReadWithPython(m, policy);
        ASSERT_EQ(view.parts.size(), 1 + std::size(names)) << policy;
        for (std::size_t i = 0; i < std::size(names); ++i) {
            EXPECT_EQ(view.parts[i + 1].payload, names[i]) << policy;
            // The older policy reads only the plain form, which cannot carry
            // line breaks and where 8-bit bytes are not defined.
            const bool printable = std::all_of(names[i].begin(), names[i].end(), [](char c) { return c >= 0x20; });
            if (std::string(policy) == "default" || printable) {
                EXPECT_EQ(view.parts[i + 1].name, names[i]) << policy;
            }
        }
    }
}

}  // namespace
