// nyr: the library's command-line tool, one subcommand per subsystem.
// Exit status: 0 success, 1 failure, 2 usage error.
#include <iostream>
#include <string>
#include <vector>

#include "command.h"

namespace {

void PrintHelp(std::ostream& out)
{
    out << "Usage: nyr COMMAND [ARGUMENTS...]\n"
           "       nyr COMMAND --help\n\n"
           "Commands:\n";
    for (const auto& command : nyr::cli::Commands()) {
        std::string name = command.name;
        name.resize(14, ' ');
        out << "  " << name << command.summary << "\n";
    }
}

}  // namespace

int main(int argc, char** argv)
{
    using namespace nyr::cli;
    std::vector<std::string> args(argv + 1, argv + argc);
    if (args.empty()) {
        PrintHelp(std::cerr);
        return kUsage;
    }
    if (args[0] == "--help" || args[0] == "-h" || args[0] == "help") {
        PrintHelp(std::cout);
        return kSuccess;
    }
    for (const auto& command : Commands()) {
        if (args[0] != command.name)
            continue;
        args.erase(args.begin());
        if (TakeFlag(args, "--help") || TakeFlag(args, "-h")) {
            std::cout << command.usage;
            return kSuccess;
        }
        return command.run(args, std::cout, std::cerr);
    }
    std::cerr << "nyr: unknown command '" << args[0] << "'\n\n";
    PrintHelp(std::cerr);
    return kUsage;
}
