// Reading points files (see points_file.h): the text is checked as UTF-8
// once, then read line by line into a new project that replaces the caller's
// only when every line was good.
#include <QFileInfo>
#include <QString>
#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstring>
#include <numbers>
#include <optional>

#include "apps/nyr-survey/app/texts.h"
#include "apps/nyr-survey/io/points_columns.h"
#include "apps/nyr-survey/io/points_file.h"
#include "apps/nyr-survey/io/time_text.h"
#include "apps/nyr-survey/io/utf8.h"
#include "apps/nyr-survey/project/gps_time.h"
#include "apps/nyr-survey/project/survey_point.h"
#include "nyr/app/progress.h"
#include "nyr/platform/file_read.h"
#include "nyr/values/value_angle.h"
#include "nyr/values/value_distance.h"

namespace survey {

namespace {

constexpr std::size_t kMaxLineBytes = 64 * 1024;

constexpr int kProgressLines = 4096;  // lines between two reports of the position

QString Q(std::string_view s)
{
    return QString::fromUtf8(s.data(), static_cast<qsizetype>(s.size()));
}

std::string_view TrimBlanks(std::string_view s)
{
    while (!s.empty() && (s.front() == ' ' || s.front() == '\t'))
        s.remove_prefix(1);
    while (!s.empty() && (s.back() == ' ' || s.back() == '\t' || s.back() == '\r'))
        s.remove_suffix(1);
    return s;
}

bool ParseNumber(std::string_view s, double& value)
{
    s = TrimBlanks(s);
    if (!s.empty() && s.front() == '+')
        s.remove_prefix(1);
    const auto r = std::from_chars(s.data(), s.data() + s.size(), value);
    return !s.empty() && r.ec == std::errc() && r.ptr == s.data() + s.size();
}

// Without a unit in the header a plain number is decimal degrees and any
// other text (symbols, hemisphere letters, fields) DMS.
long GuessAngleUnit(std::string_view s)
{
    double value = 0.0;
    return ParseNumber(s, value) ? 11 : 12;
}

// What one header field stands for.
struct Column
{
    int column = -1;  // eColumn, -1: skipped
    long unit = 0;
    bool utc = false;
    std::string label;
};

class Reader
{
public:
    Reader(std::string_view text, ProjectData& data, ReadError& error, CNyrProgress* progress)
        : m_text(text), m_data(data), m_error(error), m_progress(progress)
    {
    }
    bool Run();

private:
    bool NextLine(std::string_view& line);
    bool Split(std::string_view line);
    bool ReadHeader();
    bool ReadPoint();
    bool Fail(unsigned int id, std::initializer_list<QString> args);
    bool FieldFail(unsigned int id, int index);
    std::string_view Value(int column) const;
    bool Distance(int column, double& metres, bool required);
    bool Angle(int column, eNyrGeoKind kind, double& radians);
    bool Observed(CNyrTime& time);
    bool Position(CSurveyPoint::Data& p);

    std::string_view m_text;
    ProjectData& m_data;
    ReadError& m_error;
    CNyrProgress* m_progress;
    std::size_t m_pos = 0;
    int m_line = 0;
    char m_delimiter = ',';
    std::vector<Column> m_columns;
    int m_index[ColCount];  // field of each eColumn, -1 when absent
    std::vector<std::string_view> m_fields;
    std::vector<std::string> m_unquoted;  // storage of quoted fields, reserved so views stay valid
    std::string m_cell;                   // a value cell with "_" read as blanks (space-delimited files)
    bool m_zoneSet = false;
};

bool Reader::Fail(unsigned int id, std::initializer_list<QString> args)
{
    m_error = ReadError{id, args};
    return false;
}

bool Reader::FieldFail(unsigned int id, int column)
{
    const int f = m_index[column];
    return Fail(id, {QString::number(m_line), Q(m_columns[static_cast<std::size_t>(f)].label),
                     Q(TrimBlanks(m_fields[static_cast<std::size_t>(f)]))});
}

bool Reader::NextLine(std::string_view& line)
{
    while (m_pos < m_text.size()) {
        const char* start = m_text.data() + m_pos;
        const void* nl = std::memchr(start, '\n', m_text.size() - m_pos);
        const std::size_t end = nl ? static_cast<std::size_t>(static_cast<const char*>(nl) - m_text.data())
                                   : m_text.size();
        line = m_text.substr(m_pos, end - m_pos);
        m_pos = end + 1;
        ++m_line;
        if (line.size() > kMaxLineBytes)
            return Fail(TxtErrLine, {QString::number(m_line), QString::number(kMaxLineBytes)});
        if (!line.empty() && line.back() == '\r')
            line.remove_suffix(1);
        if (!TrimBlanks(line).empty())
            return true;
    }
    line = {};
    return true;
}

bool Reader::Split(std::string_view line)
{
    m_fields.clear();
    m_unquoted.clear();
    m_unquoted.reserve(m_columns.empty() ? 64 : m_columns.size() + 1);
    std::size_t i = 0;
    for (;;) {
        if (i < line.size() && line[i] == '"') {
            std::string field;
            ++i;
            for (;; ++i) {
                if (i >= line.size())
                    return Fail(TxtErrQuote, {QString::number(m_line)});
                if (line[i] == '"') {
                    if (i + 1 < line.size() && line[i + 1] == '"')
                        ++i;
                    else
                        break;
                }
                field += line[i];
            }
            ++i;
            if (m_unquoted.size() == m_unquoted.capacity())
                return Fail(TxtErrFieldCount, {QString::number(m_line), QString::number(m_fields.size() + 1),
                                               QString::number(m_columns.size())});
            m_fields.push_back(m_unquoted.emplace_back(std::move(field)));
            if (i < line.size() && line[i] != m_delimiter)
                return Fail(TxtErrQuote, {QString::number(m_line)});
        } else {
            const std::size_t end = std::min(line.find(m_delimiter, i), line.size());
            m_fields.push_back(line.substr(i, end - i));
            i = end;
        }
        if (i >= line.size())
            return true;
        ++i;  // the delimiter
    }
}

std::string_view Reader::Value(int column) const
{
    const int f = m_index[column];
    return f < 0 ? std::string_view{} : TrimBlanks(m_fields[static_cast<std::size_t>(f)]);
}

bool Reader::ReadHeader()
{
    std::string_view line;
    if (!NextLine(line))
        return false;
    if (line.empty())
        return Fail(TxtErrEmpty, {});
    m_delimiter = line.find('\t') != std::string_view::npos ? '\t'
                  : line.find(',') != std::string_view::npos ? ','
                                                             : ' ';
    if (!Split(line))
        return false;
    std::fill(std::begin(m_index), std::end(m_index), -1);
    for (std::string_view field : m_fields) {
        Column c;
        c.label = std::string(TrimBlanks(field));
        c.column = ColumnFromLabel(field, c.unit, c.utc);
        if (c.column >= 0) {
            if (m_index[c.column] >= 0)
                return Fail(TxtErrDuplicateColumn, {QString::number(m_line), Q(c.label)});
            if (c.unit < 0)
                c.column = -1;  // a unit this reader does not know: the column cannot be trusted
            else
                m_index[c.column] = static_cast<int>(m_columns.size());
        }
        m_columns.push_back(std::move(c));
    }
    if (m_index[ColPoint] < 0)
        return Fail(TxtErrMissingColumn, {QString::number(m_line), QText(TxtColPoint)});
    const bool latLon = m_index[ColLatitude] >= 0 && m_index[ColLongitude] >= 0;
    const bool grid = m_index[ColEasting] >= 0 && m_index[ColNorthing] >= 0;
    if (!latLon && !grid)
        return Fail(TxtErrNoPosition, {QString::number(m_line)});
    return true;
}

bool Reader::Distance(int column, double& metres, bool required)
{
    metres = std::nan("");
    const std::string_view s = Value(column);
    if (s.empty() && !required)
        return true;
    double value = 0.0;
    if (!ParseNumber(s, value))
        return FieldFail(TxtErrNotNumber, column);
    const long unit = m_columns[static_cast<std::size_t>(m_index[column])].unit;
    CNyrValueDistance v;
    if (v.ConvertToStd(value, unit ? unit : 21) != 0)
        return FieldFail(TxtErrRange, column);
    metres = v.GetDouble();
    return true;
}

bool Reader::Angle(int column, eNyrGeoKind kind, double& radians)
{
    std::string_view s = Value(column);
    if (m_delimiter == ' ' && s.find('_') != std::string_view::npos) {
        m_cell.assign(s);
        std::replace(m_cell.begin(), m_cell.end(), '_', ' ');
        s = m_cell;
    }
    long unit = m_columns[static_cast<std::size_t>(m_index[column])].unit;
    if (unit == 0)
        unit = GuessAngleUnit(s);
    CNyrValueAngle plain;
    CNyrValueAngleLat lat;
    CNyrValueAngleLon lon;
    CNyrValue& v = kind == NYR_GEO_LATITUDE ? static_cast<CNyrValue&>(lat)
                   : kind == NYR_GEO_LONGITUDE ? static_cast<CNyrValue&>(lon)
                                               : plain;
    double number = 0.0;
    int status = 0;
    if (unit != 12 && unit != 15 && ParseNumber(s, number))
        status = v.ConvertToStd(number, unit);  // plain numbers need not go through the text reader
    else if (s.empty() || s.size() > CNyrValue::kMaxTextLength)
        status = NYR_VALUE_UNREADABLE;
    else
        status = v.ConvertToStd(std::string(s).c_str(), unit);
    if (status == NYR_VALUE_OUT_OF_RANGE)
        return FieldFail(TxtErrRange, column);
    if (status != 0)
        return FieldFail(TxtErrNotAngle, column);
    radians = v.GetDouble();
    return true;
}

bool Reader::Observed(CNyrTime& time)
{
    time = CNyrTime(kNoTime);
    const int obs = m_index[ColObserved];
    const bool utc = obs >= 0 && m_columns[static_cast<std::size_t>(obs)].utc;
    if (!utc && m_index[ColGpsWeek] >= 0 && m_index[ColGpsSeconds] >= 0 && !Value(ColGpsWeek).empty()) {
        double week = 0.0, seconds = 0.0;
        if (!ParseNumber(Value(ColGpsWeek), week) || week != std::floor(week))
            return FieldFail(TxtErrNotNumber, ColGpsWeek);
        if (!ParseNumber(Value(ColGpsSeconds), seconds))
            return FieldFail(TxtErrNotNumber, ColGpsSeconds);
        if (week > 1e5 || !TimeFromGps(static_cast<int>(week), seconds, time))
            return FieldFail(TxtErrRange, ColGpsSeconds);
        return true;
    }
    std::string_view s = Value(ColObserved);
    if (s.empty())
        return true;
    if (m_delimiter == ' ' && s.find('_') != std::string_view::npos) {
        m_cell.assign(s);
        std::replace(m_cell.begin(), m_cell.end(), '_', ' ');
        s = m_cell;
    }
    if (utc ? ParseIsoTime(s, true, time) : ParseObservedTime(s, time))
        return true;
    return FieldFail(TxtErrNotTime, ColObserved);
}

bool Reader::Position(CSurveyPoint::Data& p)
{
    const bool latLon = m_index[ColLatitude] >= 0 && m_index[ColLongitude] >= 0;
    const bool grid = m_index[ColEasting] >= 0 && m_index[ColNorthing] >= 0;
    if (latLon && (!Angle(ColLatitude, NYR_GEO_LATITUDE, p.lat) || !Angle(ColLongitude, NYR_GEO_LONGITUDE, p.lon)))
        return false;
    if (grid && (!Distance(ColEasting, p.easting, true) || !Distance(ColNorthing, p.northing, true)))
        return false;
    CSurveyProject& project = *m_data.project;
    UtmPosition utm{project.UtmZone(), project.UtmNorth(), p.easting, p.northing};
    if (latLon && !m_zoneSet && LatLonToUtm(p.lat, p.lon, utm)) {
        project.SetUtmZone(utm.zone, utm.north);  // the zone of the first point serves the project
        m_zoneSet = true;
    }
    if (latLon && !grid) {
        p.easting = p.northing = std::nan("");
        if (LatLonToUtm(p.lat, p.lon, utm, project.UtmZone())) {
            p.easting = utm.easting;
            p.northing = utm.northing;
        }
    } else if (grid && !latLon && !UtmToLatLon(utm, p.lat, p.lon)) {
        return FieldFail(TxtErrRange, ColEasting);
    }
    return true;
}

bool Reader::ReadPoint()
{
    if (m_fields.size() != m_columns.size())
        return Fail(TxtErrFieldCount, {QString::number(m_line), QString::number(m_fields.size()),
                                       QString::number(m_columns.size())});
    CSurveyPoint::Data p;
    p.name = std::string(Value(ColPoint));
    if (p.name.empty())
        return Fail(TxtErrNoName, {QString::number(m_line)});
    p.code = m_data.project->CodeIndex(Value(ColCode));
    if (!Position(p) || !Distance(ColHeight, p.height, false) || !Observed(p.observed))
        return false;
    m_data.points.push_back(std::make_unique<CSurveyPoint>(*m_data.project, std::move(p)));
    return true;
}

bool Reader::Run()
{
    if (const std::size_t bad = FirstInvalidUtf8(m_text); bad != std::string_view::npos)
        return Fail(TxtErrUtf8, {QString::number(1 + std::count(m_text.begin(), m_text.begin() + bad, '\n'))});
    if (m_text.substr(0, 3) == "\xEF\xBB\xBF")
        m_pos = 3;
    if (!ReadHeader())
        return false;
    m_data.points.reserve(static_cast<std::size_t>(std::count(m_text.begin() + static_cast<std::ptrdiff_t>(m_pos),
                                                              m_text.end(), '\n')) + 1);
    if (m_progress)
        m_progress->SetTotal(m_text.size(), CNyrProgress::eBytes);
    std::string_view line;
    while (NextLine(line) && !line.empty()) {
        if (!Split(line) || !ReadPoint())
            return false;
        if (m_progress && m_line % kProgressLines == 0 && !m_progress->SetPosition(m_pos))
            return Fail(0, {});
    }
    return m_error.id == 0;
}

bool ReadText(std::string_view text, ProjectData& out, ReadError& error, CNyrProgress* progress)
{
    error = {};
    ProjectData data;
    Reader reader(text, data, error, progress);
    if (!reader.Run())
        return false;
    out = std::move(data);
    return true;
}

}  // namespace

std::string ReadError::Text() const
{
    QString text = QText(id);
    for (const QString& a : args)
        text = text.arg(a);
    return text.toStdString();
}

bool ReadPointsText(std::string_view text, ProjectData& out, std::string& error)
{
    ReadError why;
    const bool read = ReadText(text, out, why, nullptr);
    error = read ? std::string() : why.Text();
    return read;
}

bool ReadPointsFile(const std::string& path, ProjectData& out, ReadError& error, CNyrProgress* progress)
{
    std::string text, reason;
    if (const QFileInfo info(QString::fromStdString(path)); info.isFile() && info.size() > qint64{kMaxPointsFileBytes}) {
        error = ReadError{TxtErrTooLarge, {QString::number(kMaxPointsFileBytes >> 20)}};
        return false;
    }
    if (!NyrReadRegularFile(path, kMaxPointsFileBytes, text, &reason)) {
        error = ReadError{TxtErrRead, {QString::fromStdString(reason)}};
        return false;
    }
    return ReadText(text, out, error, progress);
}

bool ReadPointsFile(const std::string& path, ProjectData& out, std::string& error)
{
    ReadError why;
    const bool read = ReadPointsFile(path, out, why, nullptr);
    error = read ? std::string() : why.Text();
    return read;
}

void PrepareReading()
{
    ProjectData ignored;
    ReadError why;
    ReadText("Point,Latitude,Longitude,Height [fts]\nA,1 30 S,2 15 W,1\n", ignored, why, nullptr);
}

}  // namespace survey
