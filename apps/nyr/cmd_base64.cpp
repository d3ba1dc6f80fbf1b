// nyr base64: the library's Base64.
#include <climits>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <sstream>

#include "command.h"
#include "nyr/util/base64.h"

namespace {

using namespace nyr::cli;

extern const Command kBase64;

// The whole of FILE, or of standard input for "-"; false when unreadable.
bool ReadInput(const std::string& name, std::string& content)
{
    std::ostringstream buffer;
    if (name == "-") {
        buffer << std::cin.rdbuf();
    } else {
        std::error_code ignored;
        std::ifstream in(name, std::ios::binary);
        if (!in || std::filesystem::is_directory(name, ignored))
            return false;
        buffer << in.rdbuf();
        if (in.bad())
            return false;
    }
    content = buffer.str();
    return true;
}

int RunBase64(std::vector<std::string>& args, std::ostream& out, std::ostream& err)
{
    bool missing = false;
    const auto line = TakeOption(args, "--line", missing);
    if (missing)
        return UsageError(kBase64, err, "--line needs a number");
    if (const auto unknown = FirstUnknownOption(args); !unknown.empty())
        return UsageError(kBase64, err, "unknown option " + unknown);
    if (args.empty() || (args[0] != "encode" && args[0] != "decode") || args.size() > 2)
        return UsageError(kBase64, err, "expected encode or decode and at most one FILE");
    const bool encode = args[0] == "encode";
    if (line && !encode)
        return UsageError(kBase64, err, "--line goes with encode only");
    long lineLength = 76;
    if (line && (!ParseLong(*line, lineLength) || lineLength < 0 || lineLength > UINT_MAX))
        return UsageError(kBase64, err, "not a line length: " + *line);

    const std::string name = args.size() == 2 ? args[1] : "-";
    std::string content;
    if (!ReadInput(name, content)) {
        err << "nyr base64: cannot read " << name << "\n";
        return kFailure;
    }
    if (encode) {
        const std::string text = NyrEncodeBase64(reinterpret_cast<const unsigned char*>(content.data()),
                                                 content.size(), static_cast<unsigned>(lineLength));
        out << text;
        if (text.empty() || text.back() != '\n')
            out << "\n";
        return kSuccess;
    }
    // Decoding stops at the first "=" or zero byte (see base64.h).
    content.push_back('\0');
    const unsigned long n = NyrDecodeBase64(reinterpret_cast<unsigned char*>(content.data()));
    out.write(content.data(), static_cast<std::streamsize>(n));
    return kSuccess;
}

const Command kBase64{"base64", "encode and decode with the library's Base64",
                      "Usage: nyr base64 encode [--line N] [FILE|-]\n"
                      "       nyr base64 decode [FILE|-]\n\n"
                      "Encodes FILE (standard input for - or none) with a CR LF line break\n"
                      "after every N characters (default 76, 0: none), as the library does:\n"
                      "one extra zero byte is encoded after the data and the \"=\" padding\n"
                      "counts the line breaks, so \"abc\" gives YWJjA===. A line break\n"
                      "follows the text when it does not end in one.\n"
                      "Decodes Base64 text to bytes on standard output: reading stops at\n"
                      "the first \"=\", a line break starts a new group of four, other\n"
                      "characters outside the alphabet are skipped.\n"
                      "Exit status 1 when FILE cannot be read.\n",
                      RunBase64};
NYR_REGISTER_COMMAND(kBase64)

}  // namespace
