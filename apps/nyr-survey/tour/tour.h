#pragma once

#include <QString>

namespace survey {

// The scripted tour: the real application drives its own menus and dialogs
// (open, change units, sort, the plan, find, delete with a remembered
// answer, edit points, export, print to PDF, the recent files, the
// converters, German, long work) as a user would, writes a PNG screenshot of every step and the
// files it saved into `outDir`, prints what it did, and returns the exit
// status (0 when every step did what it should). The settings file must be
// set beforehand (a fresh one in `outDir` by default).
int RunTour(const QString& outDir);

}  // namespace survey
