#include "apps/nyr-survey/project/sample_project.h"

#include <cmath>
#include <numbers>
#include <string>

#include "apps/nyr-survey/project/geodesy.h"
#include "apps/nyr-survey/project/survey_point.h"
#include "nyr/app/progress.h"

namespace survey {

namespace {

constexpr double kDeg = std::numbers::pi / 180.0;
constexpr double kCentreLat = 49.41 * kDeg;
constexpr double kCentreLon = 8.69 * kDeg;

// splitmix64: a small generator whose sequence is the same everywhere.
class Random
{
public:
    explicit Random(uint64_t seed) : m_state(seed) {}
    uint64_t Next()
    {
        uint64_t z = (m_state += 0x9E3779B97F4A7C15ull);
        z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9ull;
        z = (z ^ (z >> 27)) * 0x94D049BB133111EBull;
        return z ^ (z >> 31);
    }
    // Uniform in [lo, hi).
    double Uniform(double lo, double hi) { return lo + (hi - lo) * static_cast<double>(Next() >> 11) * 0x1.0p-53; }

private:
    uint64_t m_state;
};

// Seconds since 1970 of a UTC date and time.
int64_t Utc(int year, int month, int day, int hour, int minute)
{
    const int64_t y = month <= 2 ? year - 1 : year;
    const int64_t era = y / 400;
    const int64_t yoe = y - era * 400;
    const int64_t doy = (153 * (month > 2 ? month - 3 : month + 9) + 2) / 5 + day - 1;
    const int64_t days = era * 146097 + yoe * 365 + yoe / 4 - yoe / 100 + doy - 719468;
    return days * 86400 + hour * 3600 + minute * 60;
}

CNyrTime Instant(double unixSeconds)
{
    const double whole = std::floor(unixSeconds);
    CNyrTime t(static_cast<int64_t>(whole));
    t.SetFracSecond(unixSeconds - whole);
    return t;
}

void AddPoint(ProjectData& data, Random& random, std::string name, const char* code, double latSpread,
              double lonSpread, double unixSeconds)
{
    CSurveyPoint::Data p;
    p.name = std::move(name);
    p.code = data.project->CodeIndex(code);
    p.lat = kCentreLat + random.Uniform(-latSpread, latSpread) * kDeg;
    p.lon = kCentreLon + random.Uniform(-lonSpread, lonSpread) * kDeg;
    // Terrain rising from the river (about 110 m) to the hills of the east.
    p.height = 110.0 + std::max(0.0, (p.lon - kCentreLon) / kDeg) * 4000.0 + random.Uniform(0.0, 60.0);
    UtmPosition utm;
    if (LatLonToUtm(p.lat, p.lon, utm, 32)) {
        p.easting = utm.easting;
        p.northing = utm.northing;
    }
    p.observed = Instant(unixSeconds);
    data.points.push_back(std::make_unique<CSurveyPoint>(*data.project, std::move(p)));
}

// A working day of the campaign, 07:00 to 15:00 UTC, for the day sessions.
double DaySession(Random& random)
{
    const int64_t first = Utc(2016, 10, 17, 7, 0);
    for (;;) {
        const auto day = static_cast<int64_t>(random.Uniform(0.0, 90.0));
        const int64_t start = first + day * 86400;
        const int64_t weekday = (start / 86400 + 4) % 7;  // 1970-01-01 was a Thursday (4); 0 is Sunday
        if (weekday != 0 && weekday != 6)
            return static_cast<double>(start) + std::floor(random.Uniform(0.0, 8.0 * 3600.0));
    }
}

}  // namespace

ProjectData MakeSampleProject()
{
    ProjectData data;
    data.project->SetUtmZone(32, true);
    Random random(2016);
    const double dstNight = static_cast<double>(Utc(2016, 10, 29, 23, 30));   // 01:30 CEST
    const double leapNight = static_cast<double>(Utc(2016, 12, 31, 23, 50));  // ten minutes before the leap second
    for (int i = 0; i < 12; ++i)
        AddPoint(data, random, "TP " + std::to_string(101 + i), "TP", 0.06, 0.09, DaySession(random));
    // The permanent GNSS stations of the night sessions: every 8 minutes
    // through the repeated hour, every minute across the leap second (one
    // half a second before it, one half a second after).
    for (int i = 0; i < 24; ++i)
        AddPoint(data, random, "GNSS " + std::to_string(501 + i), "GNSS", 0.05, 0.08, dstNight + i * 480.0);
    for (int i = 0; i < 20; ++i) {
        const double t = i == 9 ? leapNight + 599.5 : i == 10 ? leapNight + 600.5 : leapNight + i * 60.0;
        AddPoint(data, random, "GNSS " + std::to_string(601 + i), "GNSS", 0.05, 0.08, t);
    }
    for (int i = 0; i < 40; ++i)
        AddPoint(data, random, "BM " + std::to_string(2001 + i), "BM", 0.04, 0.06, DaySession(random));
    for (int i = 0; i < 160; ++i)
        AddPoint(data, random, "PP " + std::to_string(3001 + i), "PP", 0.03, 0.05, DaySession(random));
    for (int i = 0; i < 44; ++i)
        AddPoint(data, random, "GCP " + std::to_string(401 + i), "GCP", 0.05, 0.08, DaySession(random));
    const CSurveyPoint::Data& base = data.points.front()->GetData();
    data.project->SetBase(base.name, base.lat, base.lon);
    return data;
}

ProjectData MakeTestData(std::size_t count, uint64_t seed, CNyrProgress* progress)
{
    constexpr std::size_t kStep = 4096;  // points between two reports
    static const char* const codes[] = {"TP", "BM", "PP", "GCP", "GNSS", "WALL", "KERB", "TREE"};
    ProjectData data;
    data.project->SetUtmZone(32, true);
    data.points.reserve(count);
    Random random(seed);
    const double start = static_cast<double>(Utc(2016, 1, 1, 0, 0));
    if (progress)
        progress->SetTotal(count);
    for (std::size_t i = 0; i < count; ++i) {
        if (progress && i % kStep == 0 && !progress->SetPosition(i))
            break;
        const double t = std::floor((start + random.Uniform(0.0, 2.0 * 365 * 86400)) * 1000.0) / 1000.0;
        AddPoint(data, random, "P " + std::to_string(i + 1), codes[random.Next() % 8], 0.22, 0.34, t);
    }
    if (!data.points.empty()) {
        const CSurveyPoint::Data& base = data.points.front()->GetData();
        data.project->SetBase(base.name, base.lat, base.lon);
    }
    return data;
}

}  // namespace survey
