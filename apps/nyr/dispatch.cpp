#include <exception>
#include <ostream>

#include "command.h"

namespace nyr::cli {

namespace {

void PrintHelp(std::ostream& out)
{
    out << "Usage: nyr COMMAND [ARGUMENTS...]\n"
           "       nyr COMMAND --help\n\n"
           "Commands:\n";
    for (const auto& command : Commands()) {
        std::string name = command.name;
        name.resize(14, ' ');
        out << "  " << name << command.summary << "\n";
    }
}

int Dispatch(std::vector<std::string>& args, std::ostream& out, std::ostream& err)
{
    if (args.empty()) {
        PrintHelp(err);
        return kUsage;
    }
    if (args[0] == "--help" || args[0] == "-h" || args[0] == "help") {
        PrintHelp(out);
        return kSuccess;
    }
    for (const auto& command : Commands()) {
        if (args[0] != command.name)
            continue;
        args.erase(args.begin());
        if (TakeFlag(args, "--help") || TakeFlag(args, "-h")) {
            out << command.usage;
            return kSuccess;
        }
        return command.run(args, out, err);
    }
    err << "nyr: unknown command '" << args[0] << "'\n\n";
    PrintHelp(err);
    return kUsage;
}

}  // namespace

int Run(std::vector<std::string> args, std::ostream& out, std::ostream& err)
{
    try {
        return Dispatch(args, out, err);
    } catch (const std::exception& e) {
        // The library throws nothing; the tool's own strings may run out of memory.
        err << "nyr: " << e.what() << "\n";
        return kFailure;
    }
}

}  // namespace nyr::cli
