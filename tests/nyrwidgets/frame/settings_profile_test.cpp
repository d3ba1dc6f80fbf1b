#include "nyrwidgets/frame/settings_profile.h"

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QSettings>
#include <vector>

#include "tests/support/temp_dir.h"

namespace {

using P = CNyrProfileEntries;

TEST(SettingsProfile, VectorsGoThroughTheHostsQSettingsInTheStoresForm)
{
    nyr::test::TempDir dir;
    const QString file = QString::fromStdString(dir.File("host.ini"));
    {
        QSettings settings(file, QSettings::IniFormat);
        CNyrSettingsProfile host(settings);
        EXPECT_EQ(P::WriteProfileIntVector(host, "Report View", "ColWidth", {120, 80, -1}), 1);
        EXPECT_EQ(P::WriteProfileIntVector(host, "Report View", "Empty", {}), 1);
        settings.setValue("Report View/Gap", "1;;2;");
        settings.setValue("Report View/Open", "100;200");
    }
    QSettings settings(file, QSettings::IniFormat);
    EXPECT_EQ(settings.value("Report View/ColWidth").toString(), "120;80;-1;");
    CNyrSettingsProfile host(settings);
    const std::vector<std::pair<const char*, std::vector<int>>> cases = {
        {"ColWidth", {120, 80, -1}}, {"Empty", {}}, {"Gap", {1}}, {"Open", {100}}, {"Absent", {}}};
    for (const auto& [entry, expected] : cases) {
        std::vector<int> values = {7};
        P::ReadProfileIntVector(host, "Report View", entry, values);
        EXPECT_EQ(values, expected) << entry;
    }
}

TEST(SettingsProfile, DefaultIsTheApplicationsSettingsAndFailuresShow)
{
    nyr::test::TempDir dir;
    QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, QString::fromStdString(dir.Path()));
    QCoreApplication::setOrganizationName("Nyr240 Tests");
    {
        CNyrSettingsProfile host;
        EXPECT_EQ(P::WriteProfileIntVector(host, "Splitter", "ColSize", {3, 4}), 1);
    }
    EXPECT_TRUE(QSettings().fileName().startsWith(QString::fromStdString(dir.Path())));
    CNyrSettingsProfile again;
    std::vector<int> values;
    P::ReadProfileIntVector(again, "Splitter", "ColSize", values);
    EXPECT_EQ(values, (std::vector<int>{3, 4}));

    QSettings unwritable("/proc/nyr-no-such-folder/host.ini", QSettings::IniFormat);
    CNyrSettingsProfile broken(unwritable);
    EXPECT_EQ(P::WriteProfileIntVector(broken, "Splitter", "ColSize", {1}), 0);
    QCoreApplication::setOrganizationName("");
}

}  // namespace
