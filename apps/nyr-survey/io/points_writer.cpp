// Writing points files in the lossless form of File > Save (points_file.h).
#include <QString>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <fcntl.h>
#include <numbers>
#include <unistd.h>

#include "apps/nyr-survey/app/texts.h"
#include "apps/nyr-survey/io/points_file.h"
#include "apps/nyr-survey/io/time_text.h"
#include "apps/nyr-survey/project/gps_time.h"
#include "apps/nyr-survey/project/survey_point.h"
#include "nyr/platform/system_error.h"

namespace survey {

namespace {

constexpr const char* kHeader =
    "Point,Code,Easting [m],Northing [m],Height [m],Latitude [deg],Longitude [deg],Observed [UTC],GPS week,"
    "GPS seconds\r\n";

// A text field, quoted when it holds the delimiter, a quote or blanks at
// an end (which readers trim).
void AppendText(std::string& out, const std::string& text)
{
    const bool quote = text.find_first_of(",\"\r\n") != std::string::npos ||
                       (!text.empty() && (text.front() == ' ' || text.back() == ' '));
    if (!quote) {
        out += text;
        return;
    }
    out += '"';
    for (char c : text) {
        if (c == '\r' || c == '\n')
            c = ' ';  // a points file has one line per point
        if (c == '"')
            out += '"';
        out += c;
    }
    out += '"';
}

void AppendFixed(std::string& out, double value, int decimals)
{
    if (!std::isfinite(value))
        return;
    char buffer[64];
    const auto r = std::to_chars(buffer, buffer + sizeof buffer, value, std::chars_format::fixed, decimals);
    out.append(buffer, r.ptr);
}

void AppendPoint(std::string& out, const CSurveyPoint& point)
{
    const CSurveyPoint::Data& p = point.GetData();
    AppendText(out, p.name);
    out += ',';
    AppendText(out, point.Code());
    out += ',';
    AppendFixed(out, p.easting, 4);
    out += ',';
    AppendFixed(out, p.northing, 4);
    out += ',';
    AppendFixed(out, p.height, 4);
    out += ',';
    AppendFixed(out, p.lat * 180.0 / std::numbers::pi, 10);
    out += ',';
    AppendFixed(out, p.lon * 180.0 / std::numbers::pi, 10);
    out += ',';
    out += FormatIsoUtc(p.observed);
    out += ',';
    int week = 0;
    double seconds = 0.0;
    if (GpsFromTime(p.observed, week, seconds)) {
        out += std::to_string(week);
        out += ',';
        AppendFixed(out, std::floor(seconds * 1000.0) / 1000.0, 3);
    } else {
        out += ',';
    }
    out += "\r\n";
}

bool WriteAll(int fd, const std::string& text)
{
    std::size_t done = 0;
    while (done < text.size()) {
        const ssize_t n = ::write(fd, text.data() + done, text.size() - done);
        if (n < 0 && errno == EINTR)
            continue;
        if (n <= 0)
            return false;
        done += static_cast<std::size_t>(n);
    }
    return true;
}

std::string Failure(const std::string& path)
{
    return QText(TxtSaveFailed).arg(QString::fromStdString(path), QString::fromStdString(NyrSystemErrorText(errno)))
        .toStdString();
}

}  // namespace

std::string PointsText(const std::vector<const CSurveyPoint*>& points)
{
    std::string out = kHeader;
    out.reserve(points.size() * 128 + out.size());
    for (const CSurveyPoint* p : points)
        AppendPoint(out, *p);
    return out;
}

bool WritePointsFile(const std::string& path, const std::vector<const CSurveyPoint*>& points, std::string& error)
{
    const std::string text = PointsText(points);
    const std::string temp = path + ".saving";
    const int fd = ::open(temp.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
    if (fd < 0) {
        error = Failure(path);
        return false;
    }
    const bool written = WriteAll(fd, text);
    const int saved = errno;
    if (::close(fd) != 0 || !written || ::rename(temp.c_str(), path.c_str()) != 0) {
        errno = written ? errno : saved;
        error = Failure(path);
        ::unlink(temp.c_str());
        return false;
    }
    return true;
}

}  // namespace survey
