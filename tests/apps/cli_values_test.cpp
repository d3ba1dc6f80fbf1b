#include <gtest/gtest.h>

#include "cli_test_p.h"

namespace {

struct CliCase
{
    std::vector<std::string> args;
    int exitCode;
    const char* out;
};

TEST(CliValues, AngleAndDistanceCommands)
{
    const CliCase cases[] = {
        {{"angle", "convert", "12.5", "--from", "dec", "--to", "dms"}, 0, "12.3\n"},
        {{"angle", "convert", "29.999999999", "--from", "11", "--to", "12", "--precision", "4"}, 0, "30.0000\n"},
        {{"angle", "convert", "12.3", "--from", "dms", "--to", "gon", "--precision", "4"}, 0, "13.8889\n"},
        {{"angle", "format", "0.2182413026198632", "--unit", "dms", "--precision", "5"}, 0, "  12 30 15.50000\n"},
        {{"angle", "format", "-0.2182413026198632", "--unit", "dms", "--symbols", "--lat"},
         0, "12\u00b0 30' 15.500000\" S\n"},
        {{"angle", "format", "0.1", "--unit", "gcc", "--precision", "2", "--symbols", "--lon"},
         0, "  6g 36c 61.98000cc E\n"},  // rounded at 2, shown with 5
        {{"angle", "format", "0.5", "--unit", "rad", "--precision", "3", "--seconds-only"}, 0, " 0.500\n"},
        {{"angle", "format", "--unit", "dec", "--seconds-only", "--", "-0.00024240684055476"}, 0, "-50.000000\n"},
        {{"angle", "parse", "12\u00b030'15.5\" S", "--unit", "dms"}, 0, "-0.2182413026198632\n"},
        {{"angle", "parse", "100", "--unit", "14"}, 0, "1.5707963267948968\n"},
        {{"angle", "parse", "95", "--unit", "dec", "--lat"}, 1, ""},
        {{"angle", "parse", "12 30.5", "--unit", "dms"}, 0, "0.21816858056769675\n"},  // 12° 30' 0.5"
        {{"angle", "parse", "--unit", "dec", "--", "-0"}, 0, "0\n"},
        {{"angle", "format", "1e308", "--unit", "dec"}, 1, ""},
        {{"angle", "convert", "inf", "--from", "dec", "--to", "rad"}, 1, ""},
        {{"distance", "convert", "1", "--from", "fts", "--to", "m"}, 0, "0.3048006096012192\n"},
        {{"distance", "convert", "100", "--from", "m", "--to", "23", "--precision", "2"}, 0, "328.08\n"},
        {{"distance", "format", "12.5", "--unit", "m"}, 0, " 12.500000\n"},
        {{"distance", "format", "-3", "--unit", "fti", "--precision", "1"}, 0, "-9.8\n"},
        {{"distance", "parse", "12.5 m", "--unit", "m"}, 0, "12.5\n"},
        {{"distance", "parse", "m 12", "--unit", "m"}, 1, ""},
        // Usage errors.
        {{"angle"}, 2, ""},
        {{"angle", "rotate", "1", "--unit", "dec"}, 2, ""},
        {{"angle", "convert", "1", "--from", "m", "--to", "dec"}, 2, ""},
        {{"angle", "convert", "abc", "--from", "dec", "--to", "rad"}, 2, ""},
        {{"angle", "format", "1", "--unit", "dec", "--lat", "--lon"}, 2, ""},
        {{"angle", "format", "1", "--unit", "dec", "--precision", "16"}, 2, ""},
        {{"angle", "parse", "1", "--unit"}, 2, ""},
        {{"distance", "format", "1", "--unit", "m", "--symbols"}, 2, ""},
        {{"distance", "parse", "1", "--unit", "dec"}, 2, ""},
        {{"angle", "convert", "1", "--from", "dec", "--to", "rad", "--unit", "dec"}, 2, ""},
        {{"angle", "convert", "1", "--from", "dec", "--to", "rad", "--lat"}, 2, ""},
        {{"angle", "convert", "1", "--from", "dec"}, 2, ""},
        {{"angle", "format", "1", "--unit", "dec", "--from", "dec"}, 2, ""},
        {{"angle", "format", "1"}, 2, ""},
        {{"angle", "parse", "1", "--unit", "dec", "--precision", "3"}, 2, ""},
        {{"angle", "parse", "1", "--unit", "dec", "--seconds-only"}, 2, ""},
        {{"angle", "parse", "1", "2", "--unit", "dec"}, 2, ""},
        {{"angle", "parse", "1", "--unit", "dec", "--sideways"}, 2, ""},
        {{"distance", "format", "1", "--unit", "m", "--lat"}, 2, ""},
    };
    for (const CliCase& c : cases) {
        const auto r = Nyr(c.args);
        std::string line;
        for (const auto& a : c.args)
            line += a + " ";
        EXPECT_EQ(r.exitCode, c.exitCode) << line << "\n" << r.err;
        if (c.exitCode == 0)
            EXPECT_EQ(r.out, c.out) << line;
        else
            EXPECT_EQ(r.out, "") << line;
        EXPECT_EQ(r.err.empty(), c.exitCode == 0) << line;
    }
    EXPECT_EQ(Nyr({"angle", "--help"}).out.rfind("Usage: nyr angle convert", 0), 0u);
    EXPECT_EQ(Nyr({"distance", "--help"}).exitCode, 0);
}

}  // namespace
