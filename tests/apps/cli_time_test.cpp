#include <gtest/gtest.h>

#include "cli_test_p.h"

namespace {

using nyr::test::TempDir;
using nyr::test::WriteFile;

// The tool in a given TZ zone.
nyr::test::ProcessResult NyrIn(const std::string& zone, std::vector<std::string> args)
{
    args.insert(args.begin(), {"/usr/bin/env", "TZ=" + zone, NYR_TOOL});
    return nyr::test::RunProcess(args);
}

TEST(CliTime, ConvertsBetweenCalendarMjdAndGps)
{
    const struct
    {
        const char* zone;
        const char* value;
        const char* out;
    } cases[] = {
        {"UTC", "2017-01-01 12:00", "date\t2017-01-01 12:00:00.000\nmjd\t57754.50000000\ngps\t1930 43200.000\n"},
        {"UTC", "57754.5", "date\t2017-01-01 12:00:00.000\nmjd\t57754.50000000\ngps\t1930 43200.000\n"},
        {"Europe/Berlin", "gps:2300:345600.5",
         "date\t2024-02-08 00:00:00.500\nmjd\t60348.00000579\ngps\t2300 345600.500\n"},
        {"America/New_York", "mjd:44243.5",
         "date\t1980-01-05 12:00:00.000\nmjd\t44243.50000000\ngps\t0 -43200.000 (no GPS time)\n"},
    };
    for (const auto& c : cases) {
        const auto r = NyrIn(c.zone, {"time", "convert", c.value});
        EXPECT_EQ(r.exitCode, 0) << r.err;
        EXPECT_EQ(r.out, c.out) << c.zone << " " << c.value;
    }
    for (const char* bad : {"mjd:1e12", "gps:x:1", "2024-02-30", "yesterday", "mjd:nan"})
        EXPECT_EQ(NyrIn("UTC", {"time", "convert", bad}).exitCode, 2) << bad;
}

TEST(CliTime, FormatsWithATableRowAPatternOrTheStoredFormat)
{
    TempDir dir;
    const std::string settings = dir.File("Nyr240.INI");
    WriteFile(settings, "[CNyrTime]\nTime Format (###)=17\n");
    const struct
    {
        std::vector<std::string> args;
        const char* out;
    } cases[] = {
        {{"format", "--row", "26", "2024-07-03 20:05:09.7"}, "3. Jul 2024 8:05:10 PM\n"},
        {{"format", "--row", "26", "--round", "1", "2024-07-03 20:05:09.7"}, "3. Jul 2024 8:05:00 PM\n"},
        {{"format", "2024-07-03 20:05:09"}, "03.07.2024 20:05:09\n"},
        {{"format", "--pattern", "%a, %d %b %y %H:%M:%S GMT", "--utc", "2024-07-03 20:05:09"},
         "Wed, 03 Jul 24 18:05:09 GMT\n"},
    };
    for (const auto& c : cases) {
        std::vector<std::string> args = {"time", "--settings", settings};
        args.insert(args.end(), c.args.begin(), c.args.end());
        const auto r = NyrIn("Europe/Berlin", args);
        EXPECT_EQ(r.exitCode, 0) << r.err;
        EXPECT_EQ(r.out, c.out);
    }
    EXPECT_EQ(NyrIn("UTC", {"time", "format", "--row", "32"}).exitCode, 2);
    EXPECT_EQ(NyrIn("UTC", {"time", "format", "--pattern", std::string(130, 'x')}).exitCode, 1);
    EXPECT_EQ(NyrIn("UTC", {"time", "format", "--row", "1", "--pattern", "%Y"}).exitCode, 2);
}

TEST(CliTime, ParsesWithAPattern)
{
    auto r = NyrIn("UTC", {"time", "parse", "--row", "1", "31/12/2024 23:59:58"});
    EXPECT_EQ(r.exitCode, 0) << r.err;
    EXPECT_EQ(r.out, "date\t2024-12-31 23:59:58.000\nmjd\t60675.99997685\n");
    r = NyrIn("UTC", {"time", "parse", "--pattern", "%Y-%m-%d %H:%M:%s", "2024-07-03 12:30:15.25"});
    EXPECT_EQ(r.out, "date\t2024-07-03 12:30:15.250\nmjd\t60494.52100984\n");
    r = NyrIn("UTC", {"time", "parse", "--row", "24", "3. Jul 2024 20:05:09"});
    EXPECT_EQ(r.exitCode, 1);  // month names cannot be read back
    EXPECT_NE(r.err.find("does not read as"), std::string::npos);
    TempDir dir;
    WriteFile(dir.File("Nyr240.INI"), "[CNyrTime]\nTime Format (###)=1\n");
    r = NyrIn("UTC", {"time", "--settings", dir.File("Nyr240.INI"), "parse", "31/12/2024"});
    EXPECT_EQ(r.out, "date\t2024-12-31 00:00:00.000\nmjd\t60675.00000000\n");
    EXPECT_EQ(NyrIn("UTC", {"time", "parse", "--row", "1"}).exitCode, 2);
}

TEST(CliTime, LeapSecondsAndTheirImportPersistInTheSettingsFile)
{
    TempDir dir;
    const std::string settings = dir.File("Nyr240.INI");
    auto leap = [&](const char* value) { return Nyr({"time", "--settings", settings, "leap", value}).out; };
    EXPECT_EQ(leap("2017-01-01"), "14\t2006-01-01\n");
    EXPECT_EQ(leap("1979-12-31"), "0\t-\n");

    auto r = Nyr({"time", "--settings", settings, "import-leap"});
    ASSERT_EQ(r.exitCode, 0) << r.err;
    EXPECT_EQ(r.out, "added 4 rows\n");
    EXPECT_EQ(leap("2017-01-01"), "18\t2017-01-01\n");
    EXPECT_EQ(leap("2016-12-31 23:59:59"), "17\t2015-07-01\n");
    EXPECT_EQ(Nyr({"time", "--settings", settings, "import-leap"}).out, "added 0 rows\n");

    const std::string old = dir.File("old.list");
    WriteFile(old, "#@\t3000000000\n3439756800\t34\t# 1 Jan 2009\n");
    r = Nyr({"time", "--settings", dir.File("other.INI"), "import-leap", "--list", old});
    EXPECT_EQ(r.exitCode, 0);
    EXPECT_EQ(r.out, "added 1 row\n");
    EXPECT_NE(r.err.find("has expired"), std::string::npos);
    EXPECT_EQ(Nyr({"time", "import-leap", "--list", dir.File("missing")}).exitCode, 1);
    EXPECT_EQ(Nyr({"time", "import-leap", "extra"}).exitCode, 2);
}

TEST(CliTime, UsageErrors)
{
    EXPECT_EQ(Nyr({"time", "--help"}).exitCode, 0);
    EXPECT_EQ(Nyr({"time"}).exitCode, 2);
    EXPECT_EQ(Nyr({"time", "bogus"}).exitCode, 2);
    EXPECT_EQ(Nyr({"time", "--bogus", "convert", "0"}).exitCode, 2);
    EXPECT_EQ(Nyr({"time", "convert"}).exitCode, 2);
    EXPECT_EQ(Nyr({"time", "--settings"}).exitCode, 2);
}

}  // namespace
