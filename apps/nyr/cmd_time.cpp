// nyr time: time points in their calendar, MJD and GPS forms, the format
// table, reading text back, and the leap-second table.
#include <cmath>
#include <ostream>

#include "command.h"
#include "nyr/platform/string_format.h"
#include "nyr/time/time.h"
#include "nyr/util/profile_entries.h"

namespace {

using namespace nyr::cli;

extern const Command kTime;

// Calendar text is read with the library's own reader.
constexpr const char* kCalendarPattern = "%Y-%m-%d %H:%M:%s";

std::string Calendar(const CNyrTime& t)
{
    return t.Format("%Y-%m-%d %H:%M:%S", CNyrTimeHelper::eRoundThousandth) +
           t.FormatFracSec(CNyrTimeHelper::eRoundThousandth);
}

// ScanTime answers 0.0 both for a text it cannot read and for MJD 0
// (1858-11-17 00:00); only a failure leaves the seconds count 0 (1970).
bool Scan(CNyrTime& time, const std::string& text, const std::string& pattern)
{
    return time.ScanTime(text, pattern) != 0.0 || time.GetTime().GetTime() != 0;
}

// VALUE: "gps:WEEK:SECONDS", "mjd:DAYS", a plain number (an MJD) or
// calendar text "YYYY-MM-DD[ HH:MM[:SS[.fff]]]" of local time.
bool ParseValue(const std::string& text, CNyrTime& time, std::string& problem)
{
    double mjd = 0.0;
    bool ok = false;
    if (text.rfind("gps:", 0) == 0) {
        const std::size_t colon = text.find(':', 4);
        long week = 0;
        double seconds = 0.0;
        ok = colon != std::string::npos && ParseLongInRange(text.substr(4, colon - 4), 0, 100000, week) &&
             ParseDouble(text.substr(colon + 1), seconds) &&
             CNyrTimeHelper::SetMjd(CNyrTime::GpsTime(static_cast<int>(week), seconds), time);
    } else if (text.rfind("mjd:", 0) == 0) {
        ok = ParseDouble(text.substr(4), mjd) && CNyrTimeHelper::SetMjd(mjd, time);
    } else if (ParseDouble(text, mjd) && text.find('-', 1) == std::string::npos) {
        ok = CNyrTimeHelper::SetMjd(mjd, time);
    } else {
        ok = Scan(time, text, kCalendarPattern);
    }
    if (!ok)
        problem = "not a local date, MJD or GPS time: " + text;
    return ok;
}

std::string Pattern(const std::optional<std::string>& row, const std::optional<std::string>& pattern,
                    std::string& problem)
{
    if (pattern)
        return *pattern;
    long index = 0;
    if (row && !ParseLongInRange(*row, 0, CNyrTime::eTimeFormatCount - 1, index)) {
        problem = "--row takes 0 to 31";
        return {};
    }
    return row ? CNyrTime::TimeFormatPattern(static_cast<int>(index)) : CNyrTime::CurrentTimeFormat();
}

int Convert(std::vector<std::string>& args, std::ostream& out, std::ostream& err)
{
    if (args.size() != 1)
        return UsageError(kTime, err, "convert takes one value");
    CNyrTime t(CTime(0));
    std::string problem;
    if (!ParseValue(args[0], t, problem))
        return UsageError(kTime, err, problem);
    int week = 0;
    double seconds = 0.0;
    const bool gps = t.GetGpsTime(week, seconds);
    out << "date\t" << Calendar(t) << "\n";
    out << NyrFormat("mjd\t%.8f\n", t.Mjd());
    out << NyrFormat("gps\t%d %.3f%s\n", week, seconds, gps ? "" : " (no GPS time)");
    return kSuccess;
}

int Format(std::vector<std::string>& args, std::ostream& out, std::ostream& err)
{
    bool missing = false;
    const auto row = TakeOption(args, "--row", missing);
    const auto pattern = TakeOption(args, "--pattern", missing);
    const auto round = TakeOption(args, "--round", missing);
    const bool utc = TakeFlag(args, "--utc");
    if (missing || args.size() > 1 || (row && pattern))
        return UsageError(kTime, err, "format takes --row N or --pattern P, --round F, --utc and one value");
    std::string problem;
    const std::string text = Pattern(row, pattern, problem);
    long flag = CNyrTimeHelper::eRoundSecond;
    if (round && !ParseLongInRange(*round, CNyrTimeHelper::eRoundSecond, CNyrTimeHelper::eRoundHundredth, flag))
        problem = "--round takes 0 to 5";
    CNyrTime t;
    if (problem.empty() && !args.empty())
        ParseValue(args[0], t, problem);
    if (!problem.empty())
        return UsageError(kTime, err, problem);
    const std::string result = utc ? t.FormatUTC(text, static_cast<int>(flag)) : t.Format(text, static_cast<int>(flag));
    if (result.empty()) {
        err << "nyr time: the pattern gives no text (128 characters or more, or no local time)\n";
        return kFailure;
    }
    out << result << "\n";
    return kSuccess;
}

int Parse(std::vector<std::string>& args, std::ostream& out, std::ostream& err)
{
    bool missing = false;
    const auto row = TakeOption(args, "--row", missing);
    const auto pattern = TakeOption(args, "--pattern", missing);
    if (missing || args.size() != 1 || (row && pattern))
        return UsageError(kTime, err, "parse takes --row N or --pattern P and one text");
    std::string problem;
    const std::string text = Pattern(row, pattern, problem);
    if (!problem.empty())
        return UsageError(kTime, err, problem);
    CNyrTime t;
    if (!Scan(t, args[0], text)) {
        err << "nyr time: \"" << args[0] << "\" does not read as \"" << text << "\"\n";
        return kFailure;
    }
    out << "date\t" << Calendar(t) << "\n" << NyrFormat("mjd\t%.8f\n", t.Mjd());
    return kSuccess;
}

int Leap(std::vector<std::string>& args, std::ostream& out, std::ostream& err)
{
    if (args.size() != 1)
        return UsageError(kTime, err, "leap takes one value");
    CNyrTime t(CTime(0));
    std::string problem;
    if (!ParseValue(args[0], t, problem))
        return UsageError(kTime, err, problem);
    // The table's rows are UTC days: a local day would be off near midnight.
    double row = 0.0;
    const double offset = CNyrTimeHelper::GetLeapSeconds(CNyrTimeHelper::GetMjdUTC(t), &row);
    out << std::lround(offset * 86400) << "\t"
        << (row == 0.0 ? std::string("-") : CNyrTime::FormatUTC(row, "%Y-%m-%d")) << "\n";
    return kSuccess;
}

int ImportLeap(std::vector<std::string>& args, std::ostream& out, std::ostream& err)
{
    bool missing = false;
    const auto list = TakeOption(args, "--list", missing);
    if (missing || !args.empty())
        return UsageError(kTime, err, "import-leap takes only --list FILE");
    bool expired = false;
    const std::string path = list ? *list : CNyrTimeHelper::SystemLeapSecondsList();
    std::string problem;
    const int added = CNyrTimeHelper::ImportLeapSecondsList(path, &expired, &problem);
    if (added < 0) {
        err << "nyr time: " << problem << "\n";
        return kFailure;
    }
    if (expired)
        err << "nyr time: warning: " << path << " has expired; a newer one may list more leap seconds\n";
    out << "added " << added << (added == 1 ? " row" : " rows") << "\n";
    return kSuccess;
}

int RunTime(std::vector<std::string>& args, std::ostream& out, std::ostream& err)
{
    bool missing = false;
    const auto settings = TakeOption(args, "--settings", missing);
    if (missing)
        return UsageError(kTime, err, "--settings needs a file");
    // The settings file is this command's only.
    struct Restore
    {
        std::string previous = NyrGetProfilePath();
        ~Restore() { NyrSetProfilePath(previous); }
    } restore;
    if (settings)
        NyrSetProfilePath(*settings);
    if (const auto unknown = FirstUnknownOption(args);
        !unknown.empty() && unknown != "--row" && unknown != "--pattern" && unknown != "--round" &&
        unknown != "--utc" && unknown != "--list")
        return UsageError(kTime, err, "unknown option " + unknown);
    if (args.empty())
        return UsageError(kTime, err, "expected a subcommand");
    const std::string verb = args.front();
    args.erase(args.begin());
    if (verb == "convert")
        return Convert(args, out, err);
    if (verb == "format")
        return Format(args, out, err);
    if (verb == "parse")
        return Parse(args, out, err);
    if (verb == "leap")
        return Leap(args, out, err);
    if (verb == "import-leap")
        return ImportLeap(args, out, err);
    return UsageError(kTime, err, "unknown subcommand " + verb);
}

const Command kTime{
    "time", "convert, format and parse time points; leap seconds",
    "Usage: nyr time [--settings FILE] convert VALUE\n"
    "       nyr time [--settings FILE] format [--row N | --pattern P] [--round F] [--utc] [VALUE]\n"
    "       nyr time [--settings FILE] parse [--row N | --pattern P] TEXT\n"
    "       nyr time [--settings FILE] leap VALUE\n"
    "       nyr time [--settings FILE] import-leap [--list FILE]\n\n"
    "VALUE is calendar text YYYY-MM-DD[ HH:MM[:SS[.fff]]], an MJD (a number or\n"
    "mjd:DAYS) or a GPS time gps:WEEK:SECONDS. Calendar text is local time of\n"
    "the TZ zone (TZ=UTC for UTC).\n\n"
    "convert      prints the value as date, MJD and GPS week and seconds.\n"
    "format       prints VALUE (default: now) with row N of the format table\n"
    "             (0-31), a strftime pattern P, or the current format of the\n"
    "             settings file; F is a rounding flag (0 second, 1 minute,\n"
    "             2 hour, 3/4/5 thousandths/tenths/hundredths); --utc shows UTC.\n"
    "parse        reads TEXT with row N, pattern P or the current format;\n"
    "             exit status 1 when it does not read as a time.\n"
    "leap         prints GPS-UTC in seconds at the instant VALUE and the UTC\n"
    "             day that row starts on.\n"
    "import-leap  adds the leap seconds of the system's time-zone data\n"
    "             (/usr/share/zoneinfo/leap-seconds.list, or FILE) to the table\n"
    "             of the settings file and prints how many rows it gained;\n"
    "             warns when the list has expired. A list whose hash line\n"
    "             (#h) is missing or wrong, or whose rows do not rise by one\n"
    "             second each, is refused whole (exit status 1), and so is\n"
    "             an import the settings file cannot take.\n"
    "--settings   uses FILE as the library's settings file.\n",
    RunTime};
NYR_REGISTER_COMMAND(kTime)

}  // namespace
