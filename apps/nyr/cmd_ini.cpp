// nyr ini: the settings store.
#include <ostream>

#include "command.h"
#include "nyr/util/profile_entries.h"

namespace {

using namespace nyr::cli;

extern const Command kIni;

int RunIni(std::vector<std::string>& args, std::ostream& out, std::ostream& err)
{
    bool missing = false;
    const auto file = TakeOption(args, "--file", missing);
    const auto defaultValue = TakeOption(args, "--default", missing);
    if (missing)
        return UsageError(kIni, err, "--file and --default need a value");
    if (const auto unknown = FirstUnknownOption(args); !unknown.empty())
        return UsageError(kIni, err, "unknown option " + unknown);
    if (args.empty())
        return UsageError(kIni, err, "expected get, set or vector");
    const std::string action = args[0];
    const std::size_t operands = action == "set" ? 4 : 3;
    if ((action != "get" && action != "set" && action != "vector") || args.size() != operands)
        return UsageError(kIni, err, "expected get SECTION ENTRY, set SECTION ENTRY VALUE or vector SECTION ENTRY");
    if (defaultValue && action != "get")
        return UsageError(kIni, err, "--default goes with get only");
    const std::string& section = args[1];
    const std::string& entry = args[2];
    const std::string path = file ? *file : NyrGetProfilePath();

    if (action == "get") {
        // The store answers with the default when the entry is absent, so an
        // absent entry is told apart by a default no value can have.
        const std::string kAbsent("\n", 1);
        const std::string value = CNyrProfileEntries::ReadProfileString(path, section, entry, kAbsent);
        // A file that cannot be read (too large, not a file, no permission)
        // is not answered with the default.
        if (const std::string problem = NyrGetProfileError(); !problem.empty()) {
            err << "nyr ini: " << problem << "\n";
            return kFailure;
        }
        if (value == kAbsent && !defaultValue) {
            err << "nyr ini: no entry \"" << entry << "\" in [" << section << "] of " << path << "\n";
            return kFailure;
        }
        out << (value == kAbsent ? *defaultValue : value) << "\n";
        return kSuccess;
    }
    if (action == "vector") {
        std::vector<int> values;
        CNyrProfileEntries::ReadProfileIntVector(path, section, entry, values);
        for (const int v : values)
            out << v << "\n";
        return kSuccess;
    }
    const std::string& value = args[3];
    const int written = file ? CNyrProfileEntries::WriteProfileStringA(path, section, entry, value)
                             : CNyrProfileEntries::WriteNyrProfileString(section, entry, value);
    if (!written) {
        err << "nyr ini: " << NyrGetProfileError() << "\n";
        return kFailure;
    }
    return kSuccess;
}

const Command kIni{"ini", "read and write entries of a settings file",
                   "Usage: nyr ini get [--file FILE] SECTION ENTRY [--default TEXT]\n"
                   "       nyr ini set [--file FILE] SECTION ENTRY VALUE\n"
                   "       nyr ini vector [--file FILE] SECTION ENTRY\n\n"
                   "Reads and writes the sectioned settings file FILE, by default the\n"
                   "library's own (NyrGetProfilePath: $XDG_CONFIG_HOME or ~/.config, then\n"
                   "/Nyr240.INI), with the library's look-up rules (names compare without\n"
                   "regard to case, the first match wins).\n\n"
                   "get     prints the value; exit status 1 when the entry is absent,\n"
                   "        unless --default gives the text to print instead, and when\n"
                   "        the file cannot be read (larger than 64 MiB, not a file, ...).\n"
                   "set     sets the value, keeping every other line of the file; exit\n"
                   "        status 1 when the file cannot be written or a name or the\n"
                   "        value would break the file (line breaks, \"]\" in a section,\n"
                   "        \"=\" in an entry). Creates the library's own file and folder\n"
                   "        when missing; FILE's folder must exist. Waits at most 5 s for\n"
                   "        another program's lock on the file, then fails.\n"
                   "vector  prints the integer vector stored as \"1;2;3;\", one element\n"
                   "        per line (nothing when absent or empty).\n",
                   RunIni};
NYR_REGISTER_COMMAND(kIni)

}  // namespace
