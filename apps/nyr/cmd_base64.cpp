// nyr base64: the library's Base64, in pieces: memory stays flat whatever
// the size of the input.
#include <unistd.h>

#include <cerrno>
#include <climits>
#include <iostream>
#include <vector>

#include "command.h"
#include "nyr/platform/file_read.h"
#include "nyr/platform/system_error.h"
#include "nyr/util/base64.h"

namespace {

using namespace nyr::cli;

extern const Command kBase64;

// Hands FILE (a regular file only: a FIFO or device could block or never
// end), or standard input for "-", to `use` in pieces until `use` returns
// false or the input ends. False with a reason in `problem` when it cannot be
// read.
template <class Use>
bool ForEachPiece(const std::string& name, Use use, std::string& problem)
{
    const int fd = name == "-" ? STDIN_FILENO : NyrOpenRegularFile(name, &problem);
    if (fd < 0)
        return false;
    char piece[65535];  // whole groups of three
    bool ok = true;
    for (;;) {
        const ssize_t n = read(fd, piece, sizeof piece);
        if (n < 0 && errno == EINTR)
            continue;
        if (n < 0) {
            problem = name + ": " + NyrSystemErrorText(static_cast<unsigned long>(errno));
            ok = false;
        }
        if (n <= 0 || !use(piece, static_cast<std::size_t>(n)))
            break;
    }
    if (fd != STDIN_FILENO)
        close(fd);
    return ok;
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
    if (line && !ParseLongInRange(*line, 0, UINT_MAX, lineLength))
        return UsageError(kBase64, err, "--line takes 0 to " + std::to_string(UINT_MAX) + ": " + *line);

    const std::string name = args.size() == 2 ? args[1] : "-";
    std::string problem;
    char last = '\n';
    const auto emit = [&](const char* text, std::size_t n) {
        if (n > 0)
            last = text[n - 1];
        out.write(text, static_cast<std::streamsize>(n));
    };
    std::vector<char> text;
    bool read = false;
    if (encode) {
        CNyrBase64Encoder encoder(static_cast<unsigned>(lineLength));
        read = ForEachPiece(
            name,
            [&](const char* piece, std::size_t n) {
                text.resize(encoder.MaxText(n));
                emit(text.data(), encoder.Add(reinterpret_cast<const unsigned char*>(piece), n, text.data()));
                return true;
            },
            problem);
        if (read) {
            text.resize(encoder.MaxText(0));
            emit(text.data(), encoder.Finish(text.data()));
            if (last != '\n')
                out << "\n";
        }
    } else {
        // Decoding stops at the first "=" or zero byte (see base64.h).
        CNyrBase64Decoder decoder;
        read = ForEachPiece(
            name,
            [&](const char* piece, std::size_t n) {
                text.resize(n);
                emit(text.data(), decoder.Add(piece, n, reinterpret_cast<unsigned char*>(text.data())));
                return !decoder.Ended();
            },
            problem);
    }
    if (!read) {
        err << "nyr base64: " << problem << "\n";
        return kFailure;
    }
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
                      "FILE must be a regular file; any size is read in pieces.\n"
                      "Exit status 1 when FILE cannot be read.\n",
                      RunBase64};
NYR_REGISTER_COMMAND(kBase64)

}  // namespace
