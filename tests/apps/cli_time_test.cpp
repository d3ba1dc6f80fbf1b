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

    // An expired list is imported with a warning. (Its "#h" line was computed
    // with Python's hashlib.)
    const std::string old = dir.File("old.list");
    WriteFile(old, "#@\t3000000000\n3439756800\t34\t# 1 Jan 2009\n#h cb749f01 c2be079a 207d96bb 2a434deb d24aba28\n");
    r = Nyr({"time", "--settings", dir.File("other.INI"), "import-leap", "--list", old});
    EXPECT_EQ(r.exitCode, 0) << r.err;
    EXPECT_EQ(r.out, "added 1 row\n");
    EXPECT_NE(r.err.find("has expired"), std::string::npos);
    EXPECT_EQ(Nyr({"time", "import-leap", "--list", dir.File("missing")}).exitCode, 1);
    EXPECT_EQ(Nyr({"time", "import-leap", "extra"}).exitCode, 2);
}

// Regression: a list cut off inside its last line was imported without its
// last row, and an import whose settings file could not be written said
// "added 4 rows" with exit status 0.
TEST(CliTime, ImportFailsWithAReasonAndExitStatus1)
{
    TempDir dir;
    const std::string list = nyr::test::ReadFile("/usr/share/zoneinfo/leap-seconds.list");
    ASSERT_NE(list.find("#h"), std::string::npos) << "tzdata's leap-seconds.list is needed";
    const std::string cut = dir.File("cut.list");
    WriteFile(cut, list.substr(0, list.rfind("37") + 1));  // "... 3": inside the 2017 row, the hash line lost too
    const std::string settings = dir.File("Nyr240.INI");
    auto r = Nyr({"time", "--settings", settings, "import-leap", "--list", cut});
    EXPECT_EQ(r.exitCode, 1);
    EXPECT_EQ(r.out, "");
    EXPECT_EQ(r.err, "nyr time: The leap-second list " + cut + " has no hash line (#h): it may be cut off.\n");
    EXPECT_EQ(Nyr({"time", "--settings", settings, "leap", "2017-01-01"}).out, "14\t2006-01-01\n");

    WriteFile(dir.File("file"), "");
    const std::string unwritable = dir.File("file") + "/Nyr240.INI";
    r = Nyr({"time", "--settings", unwritable, "import-leap"});
    EXPECT_EQ(r.exitCode, 1);
    EXPECT_EQ(r.out, "");
    EXPECT_EQ(r.err, "nyr time: The leap-second table cannot be written to the settings file " + unwritable +
                         ": Not a directory\n");
}

// Regression: the table was looked up by the local civil day (Kiritimati's
// 2017-01-01 10:00 is 2016-12-31 20:00 UTC, still 17 s), and MJD 0
// (1858-11-17 00:00) was taken for a text that cannot be read.
TEST(CliTime, LeapLooksUpTheUtcInstantAndMjdZeroReads)
{
    TempDir dir;
    const std::string settings = dir.File("Nyr240.INI");
    ASSERT_EQ(Nyr({"time", "--settings", settings, "import-leap"}).exitCode, 0);
    const struct
    {
        const char* zone;
        const char* value;
        const char* out;
    } cases[] = {
        {"Pacific/Kiritimati", "2017-01-01 10:00", "17\t2015-07-01\n"},
        {"Pacific/Kiritimati", "2017-01-01 14:00", "18\t2017-01-01\n"},
        {"America/Los_Angeles", "2016-12-31 16:00", "18\t2017-01-01\n"},
        {"America/Los_Angeles", "2016-12-31 15:59:59", "17\t2015-07-01\n"},
        {"UTC", "2016-12-31 23:59:59.5", "17\t2015-07-01\n"},
    };
    for (const auto& c : cases)
        EXPECT_EQ(NyrIn(c.zone, {"time", "--settings", settings, "leap", c.value}).out, c.out) << c.zone << " " << c.value;

    auto r = NyrIn("UTC", {"time", "convert", "1858-11-17 00:00:00"});
    EXPECT_EQ(r.exitCode, 0) << r.err;
    EXPECT_EQ(r.out, "date\t1858-11-17 00:00:00.000\nmjd\t0.00000000\ngps\t-6320 -345600.000 (no GPS time)\n");
    r = NyrIn("Europe/Berlin", {"time", "parse", "--pattern", "%Y-%m-%d %H:%M:%S", "1858-11-17 00:00:00"});
    EXPECT_EQ(r.exitCode, 0) << r.err;
    EXPECT_EQ(r.out, "date\t1858-11-17 00:00:00.000\nmjd\t0.00000000\n");
    EXPECT_EQ(NyrIn("UTC", {"time", "parse", "--pattern", "%Y-%m-%d", "1858-13-17"}).exitCode, 1);
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
