#include "nyr/app/about_report.h"

#include <sys/utsname.h>

#include "nyr/frame/resource_module.h"
#include "nyr/frame/text_ids.h"
#include "nyr/frame/version_check.h"
#include "nyr/platform/string_format.h"

namespace {

// A check's text spans lines ("...found.\n\nRequired is..."); a report line
// must not.
std::string OneLine(const std::string& text)
{
    std::string out;
    for (const char c : text) {
        const bool lineBreak = c == '\n' || c == '\r';
        if (!lineBreak)
            out += c;
        else if (!out.empty() && out.back() != ' ')
            out += ' ';
    }
    return out;
}

}  // namespace

const char* NyrLibraryVersion()
{
    return NYR_LIBRARY_VERSION;
}

std::vector<CNyrAboutLine> NyrAboutLines(const std::string& appName, const std::string& appVersion,
                                         const std::vector<CNyrAboutLine>& more)
{
    std::vector<CNyrAboutLine> lines;
    lines.emplace_back(NyrLoadString(NYR_IDS_ABOUT_APPLICATION),
                       appVersion.empty() ? appName : appName + " " + appVersion);
    lines.emplace_back(NyrLoadString(NYR_IDS_ABOUT_LIBRARY), std::string("Nyr240 ") + NyrLibraryVersion());
    lines.insert(lines.end(), more.begin(), more.end());
    utsname system{};
    if (uname(&system) == 0)
        lines.emplace_back(NyrLoadString(NYR_IDS_ABOUT_SYSTEM),
                           std::string(system.sysname) + " " + system.release + " " + system.machine);
    eNyrRequirements missing = NYR_REQUIREMENTS_MET;
    std::string message;
    lines.emplace_back(NyrLoadString(NYR_IDS_ABOUT_REQUIREMENTS),
                       NyrCheckAllRequirements(missing, message)
                           ? NyrLoadString(NYR_IDS_ABOUT_REQUIREMENTS_MET)
                           : NyrFormat(NyrLoadString(NYR_IDS_ABOUT_NOT_MET).c_str(), static_cast<int>(missing),
                                       OneLine(message).c_str()));
    return lines;
}

std::string NyrAboutText(const std::vector<CNyrAboutLine>& lines)
{
    std::string text;
    for (const auto& [label, value] : lines)
        text.append(label).append(": ").append(value).append("\n");
    return text;
}
