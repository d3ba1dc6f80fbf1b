#pragma once

#include <QString>
#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "apps/nyr-survey/project/survey_project.h"

class CNyrProgress;

// Points files: delimited text with a header line.
//
// Reading. The first line names the columns; labels are matched without
// regard to ASCII case, in English or German, with "_" read as a blank (the
// space-delimited export writes blanks so), optionally followed by a unit in
// brackets: "Easting [fts]", "Latitude [dms]", "Observed [UTC]". Columns the
// reader does not know are skipped. The delimiter is the header's: a tab
// when it has one, else a comma when it has one, else a blank. Fields may be
// quoted ("a, b" with "" for a quote). Lines end in "\n" or "\r\n"; blank lines
// are skipped; a UTF-8 byte order mark is skipped.
//
// Required: Point, and either Latitude and Longitude or Easting and Northing
// (grid coordinates of the project's UTM zone). Values: distances in the
// column's unit (m, fts, fti; metres without one); angles in the column's unit
// (deg, dms, d.ms, grad, gon, g.cc, rev, rad; without one a text with
// symbols, a hemisphere letter or fields is DMS, a plain number degrees);
// the observation as ISO 8601 (UTC with [UTC]) or in a row of the time
// format table, or exactly by the GPS week and GPS seconds columns, which
// win over a local time text (a local time in the repeated hour of a DST
// change is ambiguous).
//
// So both the library's export of the point list ("Save As..." of the
// view: CSV, tab- or space-delimited text) and the files File > Save
// writes read back.
//
// A file is read whole or not at all: the first bad line stops the reading
// with an error that names it ("Line 57, column "Easting": ...").
namespace survey {

// Largest file read; more is refused before anything is read.
inline constexpr std::size_t kMaxPointsFileBytes = std::size_t{1} << 30;

// Why a read failed: a text of the application's table and its arguments;
// id 0 when it was cancelled.
struct ReadError
{
    unsigned int id = 0;
    std::vector<QString> args;
    // The message in the current language: for the user-interface thread,
    // which is the only one that loads texts.
    std::string Text() const;
};

// Reads `path` into `out` (replaced only on success); false with a message.
bool ReadPointsFile(const std::string& path, ProjectData& out, std::string& error);
// The same for text already in memory.
bool ReadPointsText(std::string_view text, ProjectData& out, std::string& error);

// The reader for any thread: it loads no text, and reports its position in
// bytes to `progress` (may be null), stopping with error id 0 as soon as
// that is cancelled. Call PrepareReading on the user-interface thread
// first: it loads what the value types keep for the process (hemisphere
// letters, unit symbols).
bool ReadPointsFile(const std::string& path, ProjectData& out, ReadError& error, CNyrProgress* progress);
void PrepareReading();

// The lossless form File > Save writes: comma-delimited, "\r\n" line ends,
// English labels, metres, decimal degrees to 1e-10, the observation in UTC
// to the millisecond and its GPS week and seconds. Points in the order given.
std::string PointsText(const std::vector<const CSurveyPoint*>& points);
// Writes it to `path` through a temporary file and a rename, so a failed
// save leaves the old file; false with a message.
bool WritePointsFile(const std::string& path, const std::vector<const CSurveyPoint*>& points, std::string& error);

}  // namespace survey
