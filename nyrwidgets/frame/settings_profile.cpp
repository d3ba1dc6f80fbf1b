#include "nyrwidgets/frame/settings_profile.h"

#include <QSettings>

namespace {

QString Key(const std::string& section, const std::string& entry)
{
    return QString::fromStdString(section) + QLatin1Char('/') + QString::fromStdString(entry);
}

}  // namespace

CNyrSettingsProfile::CNyrSettingsProfile() : m_owned(std::make_unique<QSettings>()), m_settings(m_owned.get()) {}

CNyrSettingsProfile::CNyrSettingsProfile(QSettings& settings) : m_settings(&settings) {}

CNyrSettingsProfile::~CNyrSettingsProfile() = default;

std::string CNyrSettingsProfile::GetProfileString(const std::string& section, const std::string& entry,
                                                  const std::string& defaultValue)
{
    const QVariant value = m_settings->value(Key(section, entry));
    return value.isValid() ? value.toString().toStdString() : defaultValue;
}

int CNyrSettingsProfile::WriteProfileString(const std::string& section, const std::string& entry,
                                            const std::string& value)
{
    m_settings->setValue(Key(section, entry), QString::fromStdString(value));
    m_settings->sync();
    return m_settings->status() == QSettings::NoError ? 1 : 0;
}
