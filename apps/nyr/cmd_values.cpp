// nyr angle, nyr distance: unit conversion, text forms and reading of values.
#include <charconv>
#include <cmath>
#include <memory>
#include <optional>
#include <ostream>
#include <span>

#include "command.h"
#include "nyr/values/unit_settings.h"
#include "nyr/values/value_angle.h"
#include "nyr/values/value_distance.h"

namespace {

using namespace nyr::cli;

struct UnitName
{
    const char* name;
    long unit;
};

// Abbreviations, with "dms" and "gcc" for the two field units that have none.
constexpr UnitName kAngleUnits[] = {{"dec", 11}, {"dms", 12}, {"deg", 13}, {"grad", 14},
                                    {"gcc", 15}, {"gon", 16}, {"rev", 17}, {"rad", 18}};
constexpr UnitName kDistanceUnits[] = {{"m", 21}, {"fts", 22}, {"fti", 23}};

long ParseUnit(const std::string& text, bool angle)
{
    long code = 0;
    if (ParseLong(text, code))
        return (angle ? NyrIsAngleUnit(code) : NyrIsDistanceUnit(code)) ? code : -1;
    for (const UnitName& u : angle ? std::span<const UnitName>(kAngleUnits) : std::span<const UnitName>(kDistanceUnits))
        if (text == u.name)
            return u.unit;
    return -1;
}

const char* StatusText(int status)
{
    switch (status) {
    case NYR_VALUE_WRONG_UNIT: return "not a unit of this kind";
    case NYR_VALUE_UNREADABLE: return "cannot be read";
    case NYR_VALUE_OUT_OF_RANGE: return "out of range";
    case NYR_VALUE_TOO_LONG: return "text too long";
    default: return "refused";
    }
}

std::string Number(double value, int decimals)
{
    char buffer[400];
    const auto result = decimals < 0 ? std::to_chars(buffer, buffer + sizeof buffer, value)
                                     : std::to_chars(buffer, buffer + sizeof buffer, value, std::chars_format::fixed,
                                                     decimals);
    return std::string(buffer, result.ptr);
}

// What one command line asks for, options taken out of it.
struct Request
{
    std::string action;  // convert, format or parse
    std::optional<std::string> from, to, unit, precisionText;
    long precision = -1;  // -1: not given
    bool symbols = false, secondsOnly = false, lat = false, lon = false;
    std::string value;  // the one argument
};

// Takes the options out of `args` into `request`; the usage error's message,
// or empty when the command line has the shape every action shares.
std::string ReadRequest(bool angle, std::vector<std::string>& args, Request& request)
{
    bool missing = false;
    request.from = TakeOption(args, "--from", missing);
    request.to = TakeOption(args, "--to", missing);
    request.unit = TakeOption(args, "--unit", missing);
    request.precisionText = TakeOption(args, "--precision", missing);
    request.symbols = angle && TakeFlag(args, "--symbols");
    request.secondsOnly = angle && TakeFlag(args, "--seconds-only");
    request.lat = angle && TakeFlag(args, "--lat");
    request.lon = angle && TakeFlag(args, "--lon");
    if (missing)
        return "an option lacks its value";
    if (const auto unknown = FirstUnknownOption(args); !unknown.empty())
        return "unknown option " + unknown;
    if (!args.empty() && args[0] == "--")
        args.erase(args.begin());
    if (args.size() != 1)
        return "expected one value";
    if (request.lat && request.lon)
        return "--lat and --lon exclude each other";
    if (request.precisionText && !ParseLongInRange(*request.precisionText, 0, 15, request.precision))
        return "--precision takes 0 to 15";
    request.value = args[0];
    return {};
}

int RunConvert(const Command& command, bool angle, const Request& r, std::ostream& out, std::ostream& err)
{
    if (!r.from || !r.to || r.unit || r.symbols || r.secondsOnly || r.lat || r.lon)
        return UsageError(command, err, "convert takes --from, --to and --precision");
    const long fromUnit = ParseUnit(*r.from, angle);
    const long toUnit = ParseUnit(*r.to, angle);
    if (fromUnit < 0 || toUnit < 0)
        return UsageError(command, err, "unknown unit " + (fromUnit < 0 ? *r.from : *r.to));
    double value = 0;
    if (!ParseDouble(r.value, value))
        return UsageError(command, err, "not a number: " + r.value);
    double converted = 0;
    CNyrValue::Convert(value, fromUnit, converted, toUnit, static_cast<int>(r.precision), 0);
    if (!std::isfinite(value) || !std::isfinite(converted)) {
        err << "nyr " << command.name << ": " << r.value << ": out of range\n";
        return kFailure;
    }
    out << Number(converted, static_cast<int>(r.precision)) << "\n";
    return kSuccess;
}

// A value of the command's kind in `unit`, shown as the request's options
// say; `settings` receives the settings object the value refers to.
std::unique_ptr<CNyrValue> MakeValue(bool angle, const Request& r, long unit,
                                     std::unique_ptr<CNyrUnitSettings>& settings)
{
    std::unique_ptr<CNyrValue> value;
    if (!angle) {
        settings = std::make_unique<CNyrUnitSettingsDistance>();
        value = std::make_unique<CNyrValueDistance>(0.0, *settings);
    } else if (r.lat || r.lon) {
        settings = std::make_unique<CNyrUnitSettingsAngleLatLon>();
        value = r.lat ? std::unique_ptr<CNyrValue>(std::make_unique<CNyrValueAngleLat>(0.0, *settings))
                      : std::make_unique<CNyrValueAngleLon>(0.0, *settings);
    } else {
        settings = std::make_unique<CNyrUnitSettingsAngle>();
        value = std::make_unique<CNyrValueAngle>(0.0, *settings);
    }
    settings->Unit(unit);
    if (r.precision >= 0)
        settings->Precision(static_cast<int>(r.precision));
    settings->Format().UseDmsSymbols(r.symbols);
    settings->Format().UseSecOnly(r.secondsOnly);
    return value;
}

// format: a number in standard units to its text; parse: a text to the
// number in standard units.
int RunFormatOrParse(const Command& command, bool angle, const Request& r, std::ostream& out, std::ostream& err)
{
    const bool format = r.action == "format";
    if (!r.unit || r.from || r.to || (!format && (r.precisionText || r.symbols || r.secondsOnly)))
        return UsageError(command, err, format ? "format takes --unit and flags" : "parse takes --unit");
    const long unit = ParseUnit(*r.unit, angle);
    if (unit < 0)
        return UsageError(command, err, "unknown unit " + *r.unit);
    std::unique_ptr<CNyrUnitSettings> settings;
    const std::unique_ptr<CNyrValue> value = MakeValue(angle, r, unit, settings);
    int status = NYR_VALUE_OK;
    if (format) {
        double number = 0;
        if (!ParseDouble(r.value, number))
            return UsageError(command, err, "not a number: " + r.value);
        status = value->SetDouble(number);
    } else {
        status = value->ConvertToStd(r.value.c_str(), unit);
    }
    if (status != NYR_VALUE_OK) {
        err << "nyr " << command.name << ": '" << r.value << "': " << StatusText(status) << "\n";
        return kFailure;
    }
    std::string text;
    if (format)
        value->GetString(text);
    else
        text = Number(value->GetDouble(), -1);
    out << text << "\n";
    return kSuccess;
}

int RunValues(const Command& command, bool angle, std::vector<std::string>& args, std::ostream& out,
              std::ostream& err)
{
    if (args.empty())
        return UsageError(command, err, "expected convert, format or parse");
    Request request;
    request.action = args[0];
    args.erase(args.begin());
    if (const std::string problem = ReadRequest(angle, args, request); !problem.empty())
        return UsageError(command, err, problem);
    if (request.action == "convert")
        return RunConvert(command, angle, request, out, err);
    if (request.action != "format" && request.action != "parse")
        return UsageError(command, err, "unknown action " + request.action);
    return RunFormatOrParse(command, angle, request, out, err);
}

extern const Command kAngle;
extern const Command kDistance;

int RunAngle(std::vector<std::string>& args, std::ostream& out, std::ostream& err)
{
    return RunValues(kAngle, true, args, out, err);
}

int RunDistance(std::vector<std::string>& args, std::ostream& out, std::ostream& err)
{
    return RunValues(kDistance, false, args, out, err);
}

const Command kAngle{
    "angle", "convert, format and read angles in the library's units",
    "Usage: nyr angle convert VALUE --from UNIT --to UNIT [--precision P]\n"
    "       nyr angle format RADIANS --unit UNIT [--precision P] [--symbols] [--seconds-only]\n"
    "                    [--lat|--lon]\n"
    "       nyr angle parse TEXT --unit UNIT [--lat|--lon]\n\n"
    "Units by code or name: 11 dec (degrees), 12 dms (DMS fields, packed DDD.MMSSsss),\n"
    "13 deg (decimal DMS), 14 grad, 15 gcc (gon fields, packed GGG.CCcc), 16 gon\n"
    "(decimal gon), 17 rev, 18 rad.\n\n"
    "convert  converts VALUE between units; the packed units (12, 13, 15, 16) take\n"
    "         their numbers packed. --precision P rounds packed results to P decimals\n"
    "         of the packed number and prints every result with P decimals; without\n"
    "         it the result is printed in its shortest exact form.\n"
    "format   prints the text of RADIANS in UNIT: --precision decimals (default 6;\n"
    "         the seconds of DMS and gon fields), --symbols puts ° ' \" (g c cc) after\n"
    "         the fields, --seconds-only shows arc seconds (cc), --lat and --lon show\n"
    "         a latitude or longitude with its hemisphere letter.\n"
    "parse    reads TEXT in UNIT (\"12 30 15.5\", \"12°30'15.5\\\" S\", \"-12.5\") and prints\n"
    "         the angle in radians.\n"
    "Exit status 1 when a value is refused (out of range, unreadable, ...).\n",
    RunAngle};
NYR_REGISTER_COMMAND(kAngle)

const Command kDistance{"distance", "convert, format and read distances in the library's units",
                        "Usage: nyr distance convert VALUE --from UNIT --to UNIT [--precision P]\n"
                        "       nyr distance format METRES --unit UNIT [--precision P]\n"
                        "       nyr distance parse TEXT --unit UNIT\n\n"
                        "Units by code or name: 21 m (metres), 22 fts (US survey feet),\n"
                        "23 fti (international feet).\n\n"
                        "convert  converts VALUE between units (--precision P: print P decimals).\n"
                        "format   prints the text of METRES in UNIT with P decimals (default 6).\n"
                        "parse    reads TEXT in UNIT and prints the distance in metres.\n"
                        "Exit status 1 when a value is refused (out of range, unreadable, ...).\n",
                        RunDistance};
NYR_REGISTER_COMMAND(kDistance)

}  // namespace
