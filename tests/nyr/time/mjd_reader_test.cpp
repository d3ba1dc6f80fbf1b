#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <random>

#include "nyr/time/mjd_reader_p.h"
#include "tests/nyr/time/scoped_zone_p.h"

namespace {

// The reader's MJD is the very number Mjd() gives, bit for bit: at random
// instants over the whole range (years 1..9999 and beyond, where both give
// 0.0), and at every second around the clock changes of zones with summer
// time, half-hour offsets and a 30-minute shift, with fractions.
TEST(MjdReader, GivesTheMjdOfEveryPointBitForBit)
{
    int changeDays = 0;
    for (const char* zone : {"UTC", "Europe/Berlin", "America/St_Johns", "Australia/Lord_Howe", "Asia/Kolkata"}) {
        const nyr::test::ScopedZone scoped(zone);
        nyr::time_detail::MjdReader reader;
        std::mt19937_64 rng(7);
        const auto check = [&](int64_t seconds, double fraction) {
            CNyrTime t(seconds);
            t.SetFracSecond(fraction);
            ASSERT_EQ(reader.Mjd(t), t.Mjd()) << zone << " " << seconds << "+" << fraction;
        };
        // -62135596800 is 0001-01-01, 253402300799 the end of 9999.
        std::uniform_int_distribution<int64_t> anywhere(-62135596800 - 400000, 253402300799 + 400000);
        for (int i = 0; i < 20000; ++i)
            check(anywhere(rng), (rng() % 4 == 0) ? 0.0 : static_cast<double>(rng() % 1000000) / 1e6);
        // Every 7th second of the UTC days in 1995 and 2024 whose clock
        // reading moves by other than 86,399 seconds from first to last.
        for (int64_t year : {1995, 2024}) {
            for (int64_t day = 0; day < 366; ++day) {
                const int64_t start = (year - 1970) * 31556952 / 86400 * 86400 + day * 86400;
                const double moved = (CNyrTime(start + 86399).Mjd() - CNyrTime(start).Mjd()) * 86400.0;
                if (std::abs(moved - 86399.0) < 0.5)
                    continue;
                ++changeDays;
                for (int64_t s = start - 3600; s < start + 90000; s += 7)
                    check(s, 0.999999);
            }
        }
    }
    EXPECT_GE(changeDays, 12);  // two a year in Berlin, St. John's and Lord Howe
}

}  // namespace
