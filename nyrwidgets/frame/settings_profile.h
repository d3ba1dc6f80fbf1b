#pragma once

#include <memory>
#include <string>

#include "nyr/platform/export.h"
#include "nyr/util/profile_entries.h"

class QSettings;

// The host application's profile store over QSettings, for the
// host-application variants of CNyrProfileEntries' vector operations:
//
//   CNyrSettingsProfile host;  // the application's own QSettings
//   CNyrProfileEntries::WriteProfileIntVector(host, "Report", "ColWidth", widths);
//
// An entry is the key "section/entry" holding the text as a string; a "/" in
// the section nests groups, as QSettings does. Each write is synced at once,
// so a failure to store shows in its result.
class NYR_EXPORT CNyrSettingsProfile : public CNyrHostProfile
{
public:
    // Uses a QSettings made with the default constructor: the organisation
    // and application names of QCoreApplication, in the native format. Set
    // the organisation name first: without one QSettings reports an access
    // error and every write gives 0.
    CNyrSettingsProfile();
    // Uses `settings`, which must outlive this object.
    explicit CNyrSettingsProfile(QSettings& settings);
    ~CNyrSettingsProfile() override;
    CNyrSettingsProfile(const CNyrSettingsProfile&) = delete;
    CNyrSettingsProfile& operator=(const CNyrSettingsProfile&) = delete;

    std::string GetProfileString(const std::string& section, const std::string& entry,
                                 const std::string& defaultValue) override;
    // 1 when stored and synced, 0 when QSettings reports an error (a
    // read-only or unwritable file, say).
    int WriteProfileString(const std::string& section, const std::string& entry, const std::string& value) override;

private:
    std::unique_ptr<QSettings> m_owned;  // set by the default constructor
    QSettings* m_settings;
};
