// nyr angle, nyr distance: unit conversion, text forms and reading of values.
#include <charconv>
#include <cmath>
#include <memory>
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
    case NYR_VALUE_NEGATIVE_ZERO: return "negative zero";
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

int RunValues(const Command& command, bool angle, std::vector<std::string>& args, std::ostream& out,
              std::ostream& err)
{
    if (args.empty())
        return UsageError(command, err, "expected convert, format or parse");
    const std::string action = args[0];
    args.erase(args.begin());

    bool missing = false;
    const auto from = TakeOption(args, "--from", missing);
    const auto to = TakeOption(args, "--to", missing);
    const auto unitText = TakeOption(args, "--unit", missing);
    const auto precisionText = TakeOption(args, "--precision", missing);
    const bool symbols = angle && TakeFlag(args, "--symbols");
    const bool secondsOnly = angle && TakeFlag(args, "--seconds-only");
    const bool lat = angle && TakeFlag(args, "--lat");
    const bool lon = angle && TakeFlag(args, "--lon");
    if (missing)
        return UsageError(command, err, "an option lacks its value");
    if (const auto unknown = FirstUnknownOption(args); !unknown.empty())
        return UsageError(command, err, "unknown option " + unknown);
    if (!args.empty() && args[0] == "--")
        args.erase(args.begin());
    if (args.size() != 1)
        return UsageError(command, err, "expected one value");
    if (lat && lon)
        return UsageError(command, err, "--lat and --lon exclude each other");
    long precision = -1;
    if (precisionText && !ParseLongInRange(*precisionText, 0, 15, precision))
        return UsageError(command, err, "--precision takes 0 to 15");

    if (action == "convert") {
        if (!from || !to || unitText || symbols || secondsOnly || lat || lon)
            return UsageError(command, err, "convert takes --from, --to and --precision");
        const long fromUnit = ParseUnit(*from, angle);
        const long toUnit = ParseUnit(*to, angle);
        if (fromUnit < 0 || toUnit < 0)
            return UsageError(command, err, "unknown unit " + (fromUnit < 0 ? *from : *to));
        double value = 0;
        if (!ParseDouble(args[0], value))
            return UsageError(command, err, "not a number: " + args[0]);
        double converted = 0;
        CNyrValue::Convert(value, fromUnit, converted, toUnit, static_cast<int>(precision), 0);
        if (!std::isfinite(value) || !std::isfinite(converted)) {
            err << "nyr " << command.name << ": " << args[0] << ": out of range\n";
            return kFailure;
        }
        out << Number(converted, static_cast<int>(precision)) << "\n";
        return kSuccess;
    }

    if (action != "format" && action != "parse")
        return UsageError(command, err, "unknown action " + action);
    if (!unitText || from || to || (action == "parse" && (precisionText || symbols || secondsOnly)))
        return UsageError(command, err, action == "parse" ? "parse takes --unit" : "format takes --unit and flags");
    const long unit = ParseUnit(*unitText, angle);
    if (unit < 0)
        return UsageError(command, err, "unknown unit " + *unitText);

    std::unique_ptr<CNyrUnitSettings> settings;
    std::unique_ptr<CNyrValue> value;
    if (!angle) {
        settings = std::make_unique<CNyrUnitSettingsDistance>();
        value = std::make_unique<CNyrValueDistance>(0.0, *settings);
    } else if (lat || lon) {
        settings = std::make_unique<CNyrUnitSettingsAngleLatLon>();
        value = lat ? std::unique_ptr<CNyrValue>(std::make_unique<CNyrValueAngleLat>(0.0, *settings))
                    : std::make_unique<CNyrValueAngleLon>(0.0, *settings);
    } else {
        settings = std::make_unique<CNyrUnitSettingsAngle>();
        value = std::make_unique<CNyrValueAngle>(0.0, *settings);
    }
    settings->Unit(unit);
    if (precision >= 0)
        settings->Precision(static_cast<int>(precision));
    settings->Format().UseDmsSymbols(symbols);
    settings->Format().UseSecOnly(secondsOnly);

    int status = NYR_VALUE_OK;
    if (action == "format") {
        double number = 0;
        if (!ParseDouble(args[0], number))
            return UsageError(command, err, "not a number: " + args[0]);
        status = value->SetDouble(number);
    } else {
        status = value->ConvertToStd(args[0].c_str(), unit);
    }
    if (status != NYR_VALUE_OK) {
        err << "nyr " << command.name << ": '" << args[0] << "': " << StatusText(status) << "\n";
        return kFailure;
    }
    if (action == "format") {
        std::string text;
        value->GetString(text);
        out << text << "\n";
    } else {
        out << Number(value->GetDouble(), -1) << "\n";
    }
    return kSuccess;
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
