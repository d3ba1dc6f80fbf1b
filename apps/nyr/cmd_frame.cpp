// nyr text, nyr messages, nyr requirements: the library frame.
#include <memory>
#include <ostream>

#include "command.h"
#include "nyr/frame/notifications.h"
#include "nyr/frame/resource_module.h"
#include "nyr/frame/version_check.h"

namespace {

using namespace nyr::cli;

extern const Command kText;

int RunText(std::vector<std::string>& args, std::ostream& out, std::ostream& err)
{
    bool missing = false;
    const auto language = TakeOption(args, "--language", missing);
    const bool dump = TakeFlag(args, "--dump");
    if (missing)
        return UsageError(kText, err, "--language needs a file");
    if (const auto unknown = FirstUnknownOption(args); !unknown.empty())
        return UsageError(kText, err, "unknown option " + unknown);
    if (dump ? !args.empty() : args.size() != 1)
        return UsageError(kText, err, dump ? "--dump takes no text number" : "expected one text number");

    // The module is current for this command only: it dies with it.
    struct Restore
    {
        NyrResourceHandle previous = NyrGetNyrResourceHandle();
        ~Restore() { NyrSetNyrResourceHandle(previous); }
    } restore;
    std::unique_ptr<CNyrResourceModule> module;
    if (language) {
        std::string problem;
        module = CNyrResourceModule::LoadFromFile(*language, &problem);
        if (!module) {
            err << "nyr text: " << problem << "\n";
            return kFailure;
        }
        NyrSetNyrResourceHandle(module.get());
    }
    if (dump) {
        out << NyrGetNyrResourceHandle()->ToText();
        return kSuccess;
    }
    long id = 0;
    if (!ParseLongInRange(args[0], 0, 0xFFFFFFFFL, id))
        return UsageError(kText, err, "not a text number: " + args[0]);
    std::string text;
    if (!NyrGetNyrResourceHandle()->LoadString(static_cast<unsigned>(id), text)) {
        err << "nyr text: no text " << id << "\n";
        return kFailure;
    }
    out << text << "\n";
    return kSuccess;
}

const Command kText{"text", "print a text of the library's text table",
                    "Usage: nyr text [--language FILE] ID\n"
                    "       nyr text [--language FILE] --dump\n\n"
                    "Prints text ID of the current language module: the built-in English\n"
                    "table, or the module FILE (see resource_module.h for its format).\n"
                    "--dump prints the whole module in the module file format.\n"
                    "Exit status 1 when the module has no text ID.\n",
                    RunText};
NYR_REGISTER_COMMAND(kText)

extern const Command kMessages;

int RunMessages(std::vector<std::string>& args, std::ostream& out, std::ostream& err)
{
    if (!args.empty())
        return UsageError(kMessages, err, "no arguments expected");
    for (const auto& [name, number] : NyrLibraryNotifications())
        out << "0x" << std::hex << number << std::dec << "\t" << number << "\t" << name << "\n";
    return kSuccess;
}

const Command kMessages{"messages", "list the registered notifications with their numbers",
                        "Usage: nyr messages\n\n"
                        "Lists the library's registered notifications: hexadecimal number,\n"
                        "decimal number and name, in registration order.\n",
                        RunMessages};
NYR_REGISTER_COMMAND(kMessages)

extern const Command kRequirements;

int RunRequirements(std::vector<std::string>& args, std::ostream& out, std::ostream& err)
{
    if (!args.empty())
        return UsageError(kRequirements, err, "no arguments expected");
    eNyrRequirements missing = NYR_REQUIREMENTS_MET;
    std::string message;
    const bool met = NyrCheckAllRequirements(missing, message);
    out << "result " << static_cast<int>(missing) << "\n";
    out << (met ? "All requirements are met." : message) << "\n";
    return met ? kSuccess : kFailure;
}

const Command kRequirements{"requirements", "run the combined system library version check",
                            "Usage: nyr requirements\n\n"
                            "Runs the combined version check and prints its result code (0 all\n"
                            "met; 1 ComCtl32, 2 Shell32, 4 Shlwapi, 8 MFC) and its message.\n"
                            "Exit status 1 when a requirement is not met.\n",
                            RunRequirements};
NYR_REGISTER_COMMAND(kRequirements)

}  // namespace
