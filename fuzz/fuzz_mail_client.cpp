// The hand-off's readers of desktop entries and of xdg-mime's output, from
// arbitrary bytes: never more than they were given, nothing found where the
// structure is missing, and a program written with the Desktop Entry
// Specification's escapes and quoting reads back exactly.
#include <cstdint>
#include <cstdlib>
#include <string>

#include "nyr/mail/mail_client_p.h"

namespace {

// `program` as one quoted Exec argument, then with the string escapes a
// desktop file needs for a value on one line.
std::string ExecLine(const std::string& program)
{
    std::string quoted = "\"";
    for (const char c : program) {
        if (c == '"' || c == '`' || c == '$' || c == '\\')
            quoted += '\\';
        quoted += c;
    }
    quoted += "\" --compose %u";
    std::string line;
    for (const char c : quoted) {
        switch (c) {
        case '\\': line += "\\\\"; break;
        case '\n': line += "\\n"; break;
        case '\r': line += "\\r"; break;
        default: line += c;
        }
    }
    return line;
}

void Check(bool condition)
{
    if (!condition)
        std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string input(reinterpret_cast<const char*>(data), size);

    const std::string exec = NyrDesktopEntryExec(input);
    Check(exec.size() <= input.size());
    Check(exec.empty() || input.find("[Desktop Entry]") != std::string::npos);
    const std::string program = NyrExecProgram(input);
    Check(program.size() <= input.size());
    if (!program.empty() && input.find('"') == std::string::npos)
        Check(input.find(program) != std::string::npos && program.find_first_of(" \t") == std::string::npos);

    const std::string id = NyrMimeDefaultId(input);
    Check(id.empty() || (input.find(id) != std::string::npos && id.find_first_of(" \t\r\n/") == std::string::npos &&
                         id.size() > 8 && id.compare(id.size() - 8, 8, ".desktop") == 0));

    // Round trips: the input as a program name inside a desktop file with
    // other groups and keys around it, and as a desktop file id.
    const std::string file = "# comment\n[Desktop Entry]\nType=Application\nExec = " + ExecLine(input) +
                             "\r\nName=x\n[Desktop Action Compose]\nExec=other\n";
    Check(NyrExecProgram(NyrDesktopEntryExec(file)) == input);
    if (!input.empty() && input.find_first_of(" \t\r\n\v\f/") == std::string::npos)
        Check(NyrMimeDefaultId("  " + input + ".desktop\n") == input + ".desktop");
    return 0;
}
