#include "command.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <ostream>

namespace nyr::cli {

namespace {

std::vector<Command>& Registry()
{
    static std::vector<Command> commands;
    return commands;
}

// Index of "--name" or "--name=..." in args, or args.size().
std::size_t Find(const std::vector<std::string>& args, const std::string& name)
{
    for (std::size_t i = 0; i < args.size(); ++i) {
        if (args[i] == "--")
            break;
        if (args[i] == name || args[i].rfind(name + "=", 0) == 0)
            return i;
    }
    return args.size();
}

}  // namespace

bool RegisterCommand(const Command& command)
{
    auto& commands = Registry();
    const auto at = std::lower_bound(commands.begin(), commands.end(), command, [](const Command& a, const Command& b) {
        return std::string(a.name) < b.name;
    });
    commands.insert(at, command);
    return true;
}

const std::vector<Command>& Commands()
{
    return Registry();
}

std::optional<std::string> TakeOption(std::vector<std::string>& args, const std::string& name, bool& missingValue)
{
    const std::size_t i = Find(args, name);
    if (i == args.size())
        return std::nullopt;
    std::string value;
    if (args[i].size() > name.size()) {
        value = args[i].substr(name.size() + 1);
        args.erase(args.begin() + static_cast<long>(i));
    } else if (i + 1 < args.size()) {
        value = args[i + 1];
        args.erase(args.begin() + static_cast<long>(i), args.begin() + static_cast<long>(i) + 2);
    } else {
        missingValue = true;
        args.erase(args.begin() + static_cast<long>(i));
        return std::nullopt;
    }
    return value;
}

std::vector<std::string> TakeOptions(std::vector<std::string>& args, const std::string& name, bool& missingValue)
{
    std::vector<std::string> values;
    while (auto value = TakeOption(args, name, missingValue))
        values.push_back(*value);
    return values;
}

bool TakeFlag(std::vector<std::string>& args, const std::string& name)
{
    const std::size_t i = Find(args, name);
    if (i == args.size() || args[i] != name)
        return false;
    args.erase(args.begin() + static_cast<long>(i));
    return true;
}

std::string FirstUnknownOption(const std::vector<std::string>& args)
{
    for (const std::string& arg : args) {
        if (arg == "--")
            break;
        // "-12.5" is a negative number, not an option.
        if (arg.size() > 1 && arg[0] == '-' && !(arg[1] >= '0' && arg[1] <= '9') && arg[1] != '.')
            return arg;
    }
    return {};
}

bool ParseLong(const std::string& text, long& value)
{
    if (text.empty())
        return false;
    errno = 0;
    char* end = nullptr;
    value = std::strtol(text.c_str(), &end, 10);
    return errno == 0 && *end == '\0';
}

bool ParseLongInRange(const std::string& text, long min, long max, long& value)
{
    long parsed = 0;
    if (!ParseLong(text, parsed) || parsed < min || parsed > max)
        return false;
    value = parsed;
    return true;
}

bool ParseDouble(const std::string& text, double& value)
{
    if (text.empty())
        return false;
    char* end = nullptr;
    value = std::strtod(text.c_str(), &end);
    return *end == '\0';
}

int UsageError(const Command& command, std::ostream& err, const std::string& message)
{
    err << "nyr " << command.name << ": " << message << "\n" << command.usage;
    return kUsage;
}

}  // namespace nyr::cli
