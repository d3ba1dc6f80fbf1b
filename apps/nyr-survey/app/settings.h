#pragma once

#include <string>

// The application's own settings, kept in the library's settings file
// (NyrGetProfilePath()) in the section "NyrSurvey", beside the units, the
// time format, the list layout and the remembered answers the library keeps
// there.
namespace survey {

inline constexpr const char* kSettingsSection = "NyrSurvey";
// The key of the one question asked before any file is replaced: a points
// file, an export, a PDF, a plan image (CNyrBrowse::ReplaceMessageKeyDefault).
inline constexpr const char* kOverwriteKey = "Files/Overwrite";
// The section of the recent files list.
inline constexpr const char* kRecentSection = "NyrSurvey/RecentFiles";

int ReadSetting(const char* entry, int defaultValue);
std::string ReadSetting(const char* entry, const std::string& defaultValue);
// 1 when stored.
int WriteSetting(const char* entry, int value);
int WriteSetting(const char* entry, const std::string& value);

// Start-up of the application's side of the library, before any window:
// the settings file (`settingsPath`, or Survey.Nyr240.INI in the user's
// configuration folder when empty), the log file (nyr-survey.log beside a
// settings file given, else the library's default place), the English
// texts, the stored language,
// the units with their display decimals (metres, DMS, DMS for
// latitudes/longitudes unless stored otherwise), the leap-second table (the
// system's list imported once when the table lacks the leap second of
// 2017) and the managed message boxes.
void InitializeApplication(const std::string& settingsPath);

// Registers the application's questions with the managed message box in
// the current language (again after a change of language: answers the user
// asked to be remembered stay).
void RegisterMessages();

}  // namespace survey
