// Numeric options of every command: out of range is a usage error (exit 2
// and a message), never a value narrowed into range.
#include <gtest/gtest.h>

#include "cli_test_p.h"

namespace {

TEST(CliOptions, NumbersOutOfRangeAreUsageErrorsNotNarrowedValues)
{
    const struct
    {
        std::vector<std::string> args;
        const char* message;
    } refused[] = {
        {{"time", "format", "--row", "4294967296", "2024-01-01"}, "--row takes 0 to 31"},  // was row 0
        {{"time", "format", "--row", "4294967327", "2024-01-01"}, "--row takes 0 to 31"},  // was row 31
        {{"time", "format", "--row", "32", "2024-01-01"}, "--row takes 0 to 31"},
        {{"time", "format", "--row", "-1", "2024-01-01"}, "--row takes 0 to 31"},
        {{"time", "parse", "--row", "4294967296", "2024-01-01"}, "--row takes 0 to 31"},
        {{"time", "format", "--round", "4294967299", "2024-01-01"}, "--round takes 0 to 5"},  // was 3
        {{"time", "format", "--round", "6", "2024-01-01"}, "--round takes 0 to 5"},
        {{"time", "format", "--round", "-1", "2024-01-01"}, "--round takes 0 to 5"},
        {{"time", "convert", "gps:4294967296:0"}, "not a local date, MJD or GPS time"},
        {{"base64", "encode", "--line", "4294967296"}, "--line takes 0 to 4294967295"},
        {{"base64", "encode", "--line", "-1"}, "--line takes 0 to 4294967295"},
        {{"text", "4294967296"}, "not a text number"},
        {{"text", "-1"}, "not a text number"},
        {{"angle", "format", "1", "--unit", "dms", "--precision", "4294967296"}, "--precision takes 0 to 15"},
        {{"distance", "format", "1", "--unit", "m", "--precision", "-1"}, "--precision takes 0 to 15"},
        {{"angle", "convert", "1", "--from", "4294967307", "--to", "dms"}, "unknown unit 4294967307"},
        {{"time", "format", "--row", "99999999999999999999", "2024-01-01"}, "--row takes 0 to 31"},
    };
    for (const auto& c : refused) {
        const auto r = Nyr(c.args);
        EXPECT_EQ(r.exitCode, 2) << c.args[0] << " " << c.args[2] << " " << c.args[3] << "\n" << r.out;
        EXPECT_NE(r.err.find(c.message), std::string::npos) << r.err;
        EXPECT_EQ(r.out, "");
    }
    // The edges of each range are taken.
    const std::vector<std::string> accepted[] = {
        {"time", "format", "--row", "31", "--round", "5", "2024-01-01"},
        {"time", "format", "--row", "0", "--round", "0", "2024-01-01"},
        {"angle", "format", "1", "--unit", "dms", "--precision", "15"},
    };
    for (const auto& args : accepted)
        EXPECT_EQ(Nyr(args).exitCode, 0) << args[2] << " " << args[3];
    EXPECT_EQ(Nyr({"base64", "encode", "--line", "4294967295"}, "abc").out, "YWJjA===\n");
    EXPECT_EQ(Nyr({"text", "4294967295"}).exitCode, 1);  // a number, but no text
}

}  // namespace
