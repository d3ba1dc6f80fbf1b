// nyr: the library's command-line tool, one subcommand per subsystem.
// Exit status: 0 success, 1 failure, 2 usage error.
#include <iostream>
#include <string>
#include <vector>

#include "command.h"

int main(int argc, char** argv)
{
    return nyr::cli::Run(std::vector<std::string>(argv + 1, argv + argc), std::cout, std::cerr);
}
