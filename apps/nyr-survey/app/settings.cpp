#include "apps/nyr-survey/app/settings.h"

#include <QDir>
#include <QFileInfo>

#include "apps/nyr-survey/app/language.h"
#include "apps/nyr-survey/app/texts.h"
#include "apps/nyr-survey/project/gps_time.h"
#include "apps/nyr-survey/window/point_view.h"
#include "apps/nyr-survey/window/unit_bar.h"
#include "nyr/app/log_file.h"
#include "nyr/time/time_helper.h"
#include "nyr/util/profile_entries.h"
#include "nyr/values/unit_settings.h"
#include "nyrwidgets/app/browse.h"
#include "nyrwidgets/msgbox/message_box.h"

namespace survey {

namespace {

// 2017-01-01 00:00 UTC, the day the latest leap second took effect.
constexpr int64_t kLeap2017 = 1483228800;

}  // namespace

int ReadSetting(const char* entry, int defaultValue)
{
    return static_cast<int>(CNyrProfileEntries::ReadNyrProfileInt(kSettingsSection, entry, defaultValue));
}

std::string ReadSetting(const char* entry, const std::string& defaultValue)
{
    return CNyrProfileEntries::ReadNyrProfileString(kSettingsSection, entry, defaultValue);
}

int WriteSetting(const char* entry, int value)
{
    return CNyrProfileEntries::WriteNyrProfileInt(kSettingsSection, entry, value);
}

int WriteSetting(const char* entry, const std::string& value)
{
    return CNyrProfileEntries::WriteNyrProfileString(kSettingsSection, entry, value);
}

void RegisterMessages()
{
    const NyrResourceHandle host = CNyrResourceModule::Host();
    CNyrMessageBox::AddMessage(CPointView::kDeleteKey, host, TxtAskDelete, NYR_MB_YESNO | NYR_MB_ICONQUESTION);
    CNyrMessageBox::AddMessage(kOverwriteKey, host, TxtAskOverwrite, NYR_MB_YESNO | NYR_MB_ICONWARNING);
    CNyrMessageBox::SetSub1Text(TxtAnswersQuestion);
    CNyrMessageBox::SetSub2Text(TxtAnswersAnswer);
    CNyrMessageBox::SetSub3Text(TxtAnswersText);
    CNyrMessageBox::SetSub4Text(TxtAppName);
}

void InitializeApplication(const std::string& settingsPath)
{
    if (settingsPath.empty()) {
        NyrSetProfilePrefix("Survey");
    } else {
        NyrSetProfilePath(settingsPath);
        CNyrLogFile::Default().SetPath(
            QFileInfo(QString::fromStdString(settingsPath)).absoluteDir().filePath("nyr-survey.log").toStdString());
    }
    InstallEnglishTexts();
    if (ReadSetting("Language", 0) == LanguageGerman)
        SetLanguage(LanguageGerman);
    CNyrUnitSettingsDistance::DefaultSettings(NYR_UNIT_METRES);
    CNyrUnitSettingsAngle::DefaultSettings(NYR_UNIT_DMS, nullptr);
    CNyrUnitSettingsAngleLatLon::DefaultSettings(NYR_UNIT_DMS, nullptr);
    CNyrUnitSettingsAngle::Default().LimitToCircle(1);
    CNyrTime::DefaultSettings(CNyrTime::eTimeFormatDMY4Dot24);
    ApplyDisplayPrecision();
    if (LeapSecondsAt(kLeap2017) < 18)
        CNyrTimeHelper::ImportLeapSecondsList();
    RegisterMessages();
    CNyrBrowse::ReplaceMessageKeyDefault(kOverwriteKey);
}

}  // namespace survey
