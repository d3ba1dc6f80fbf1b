#pragma once

// The nyr tool's subcommands. A subsystem adds one file cmd_<name>.cpp that
// defines its command and registers it with NYR_REGISTER_COMMAND.

#include <iosfwd>
#include <optional>
#include <string>
#include <vector>

namespace nyr::cli {

enum ExitCode { kSuccess = 0, kFailure = 1, kUsage = 2 };

struct Command
{
    const char* name;     // "ini"
    const char* summary;  // one line for `nyr --help`
    const char* usage;    // the full help text of `nyr NAME --help`
    int (*run)(std::vector<std::string>& args, std::ostream& out, std::ostream& err);
};

// Runs the tool's command line without the program name (argv[1] on):
// dispatches to the command, prints to `out` and `err`, returns the exit
// status. Never throws. Callable in process (the argument fuzz target does).
int Run(std::vector<std::string> args, std::ostream& out, std::ostream& err);

// Registration happens during static initialisation; see NYR_REGISTER_COMMAND.
bool RegisterCommand(const Command& command);
const std::vector<Command>& Commands();

// Argument helpers. Each removes what it takes from `args`.
// "--name VALUE" or "--name=VALUE"; nullopt when absent. A present option
// without its value sets `missingValue`.
std::optional<std::string> TakeOption(std::vector<std::string>& args, const std::string& name, bool& missingValue);
// Every occurrence of a repeatable option, in order.
std::vector<std::string> TakeOptions(std::vector<std::string>& args, const std::string& name, bool& missingValue);
// "--name" present.
bool TakeFlag(std::vector<std::string>& args, const std::string& name);
// An unknown "--option" left in args, or empty when there is none. A lone
// "-" is an argument (standard input), not an option.
std::string FirstUnknownOption(const std::vector<std::string>& args);

// Parses a whole decimal integer or a floating number; false when the text is
// not entirely that. A long is wider than most things it is narrowed to:
// check the range first, or use ParseLongInRange.
bool ParseLong(const std::string& text, long& value);
bool ParseDouble(const std::string& text, double& value);
// A whole decimal integer from `min` to `max`; false for anything else, so a
// value outside the range is never narrowed ("4294967296" is no int 0).
bool ParseLongInRange(const std::string& text, long min, long max, long& value);

// Prints "nyr NAME: message" and the usage line to err; returns kUsage.
int UsageError(const Command& command, std::ostream& err, const std::string& message);

}  // namespace nyr::cli

#define NYR_CLI_CONCAT2(a, b) a##b
#define NYR_CLI_CONCAT(a, b) NYR_CLI_CONCAT2(a, b)
#define NYR_REGISTER_COMMAND(...)                                                                          \
    namespace {                                                                                            \
    const bool NYR_CLI_CONCAT(registered_, __LINE__) = ::nyr::cli::RegisterCommand(::nyr::cli::Command{__VA_ARGS__}); \
    }
