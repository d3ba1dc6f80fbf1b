#include <gtest/gtest.h>

#include <QWidget>
#include <memory>
#include <string>
#include <vector>

#include "nyr/frame/notifications.h"
#include "nyr/util/profile_entries.h"
#include "nyrwidgets/frame/message_event.h"
#include "nyrwidgets/values/unit_combo_box.h"
#include "tests/support/temp_dir.h"

namespace {

// A window that logs the unit notifications it receives.
class Listener : public QWidget
{
public:
    struct Received
    {
        std::string window;
        unsigned int message;
        long oldUnit, newUnit;
    };
    Listener(const char* name, std::vector<Received>* log, QWidget* parent = nullptr) : QWidget(parent), m_log(log)
    {
        setObjectName(name);
    }

protected:
    bool event(QEvent* e) override
    {
        auto* m = CNyrMessageEvent::From(e);
        if (!m)
            return QWidget::event(e);
        m_log->push_back({objectName().toStdString(), m->Message(), long(m->WParam()), long(m->LParam())});
        return true;
    }

private:
    std::vector<Received>* m_log;
};

std::vector<std::string> Entries(const QComboBox& list)
{
    std::vector<std::string> texts;
    for (int i = 0; i < list.count(); ++i)
        texts.push_back(list.itemText(i).toStdString() + "=" + std::to_string(list.itemData(i).toInt()));
    return texts;
}

class UnitLists : public ::testing::Test
{
protected:
    void SetUp() override
    {
        NyrSetProfilePath(m_dir.File("Nyr240.INI"));
        CNyrUnitSettingsDistance::Default().Unit(NYR_UNIT_METRES);
        CNyrUnitSettingsAngle::Default().Unit(NYR_UNIT_DMS);
        CNyrUnitSettingsAngleLatLon::Default().Unit(NYR_UNIT_DMS);
    }

    static std::string Stored(const char* section, const char* entry)
    {
        return CNyrProfileEntries::ReadNyrProfileString(section, entry, "<none>");
    }

    nyr::test::TempDir m_dir;
};

TEST_F(UnitLists, DistanceListShowsTheTableAndSelectsMetresWhenNothingIsStored)
{
    CNyrUnitSettingsDistance& settings = CNyrUnitSettingsDistance::Default();
    settings.Unit(NYR_UNIT_INTERNATIONAL_FEET);
    CNyrUnitSettingsDistance::CUnitDistanceComboBox list;
    settings.InitializeUnitDistanceComboBox(list);
    EXPECT_EQ(Entries(list), (std::vector<std::string>{"Metres [ m ]=21", "US Survey feet [ fts ]=22",
                                                       "International feet [ fti ]=23"}));
    EXPECT_EQ(settings.GetCurrentSelection(list), NYR_UNIT_METRES);

    CNyrProfileEntries::WriteNyrProfileInt("CNyrUnitSettingsDistance", "UnitDistance Format (###)", 22);
    settings.InitializeUnitDistanceComboBox(list);  // filled again, not appended to
    EXPECT_EQ(list.count(), 3);
    EXPECT_EQ(list.GetCurrentSelection(), NYR_UNIT_US_SURVEY_FEET);

    std::vector<Listener::Received> log;
    Listener root("root", &log);
    new Listener("child", &log, &root);
    list.setCurrentIndex(0);
    ASSERT_EQ(settings.SaveCurrentSelection(list, &root), 1);
    ASSERT_EQ(log.size(), 1u);
    EXPECT_EQ(log[0].message, WM_NYR_UNIT_CHANGED_DISTANCE);
    EXPECT_EQ(log[0].oldUnit, NYR_UNIT_INTERNATIONAL_FEET);
    EXPECT_EQ(log[0].newUnit, NYR_UNIT_METRES);
    EXPECT_EQ(Stored("CNyrUnitSettingsDistance", "UnitDistance Format (str)"), "m");

    list.setCurrentIndex(-1);
    EXPECT_EQ(list.GetCurrentSelection(), -1);
    EXPECT_EQ(settings.SaveCurrentSelection(list, &root), 0);
    EXPECT_EQ(settings.Status(), NYR_UNIT_SETTINGS_NOT_A_UNIT);
}

TEST_F(UnitLists, AngleListSkipsExcludedUnitsAndFallsBackToTheCurrentUnit)
{
    CNyrUnitSettingsAngle& settings = CNyrUnitSettingsAngle::Default();
    const int excluded[] = {12, 15, 17, -1, 11};
    CNyrUnitSettingsAngle::CUnitAngleComboBox list;

    settings.Unit(NYR_UNIT_GRAD);
    settings.InitializeUnitAngleComboBox(list, excluded);
    EXPECT_EQ(Entries(list), (std::vector<std::string>{"Degree [ dec ]=11", "Decimal DMS [ dms ]=13",
                                                       "Grad [ grad ]=14", "Decimal Gon [ gon ]=16",
                                                       "Radians [ rad ]=18"}));
    EXPECT_EQ(list.GetCurrentSelection(), NYR_UNIT_GRAD);  // nothing stored: the current unit

    settings.Unit(NYR_UNIT_DMS);  // current, but not offered: the first entry
    settings.InitializeUnitAngleComboBox(list, excluded);
    EXPECT_EQ(list.GetCurrentSelection(), NYR_UNIT_DEGREE);

    CNyrProfileEntries::WriteNyrProfileInt("CNyrUnitSettingsAngle", "UnitAngle Format (###)", 16);
    settings.InitializeUnitAngleComboBox(list, excluded);
    EXPECT_EQ(list.GetCurrentSelection(), NYR_UNIT_DECIMAL_GON);

    // The latitude/longitude list reads its own section.
    CNyrUnitSettingsAngleLatLon& latLon = CNyrUnitSettingsAngleLatLon::Default();
    latLon.InitializeUnitAngleComboBox(list, nullptr);
    EXPECT_EQ(latLon.GetCurrentSelection(list), NYR_UNIT_DMS);
}

TEST_F(UnitLists, SavingPersistsAndNotifiesEveryDescendantOnce)
{
    std::vector<Listener::Received> log;
    Listener root("root", &log);
    auto* child = new Listener("child", &log, &root);
    new Listener("grandchild", &log, child);
    new Listener("sibling", &log, &root);
    auto* list = new CNyrUnitSettingsAngle::CUnitAngleComboBox(&root);

    CNyrUnitSettingsAngle& settings = CNyrUnitSettingsAngle::Default();
    settings.InitializeUnitAngleComboBox(*list);
    list->setCurrentIndex(list->findData(NYR_UNIT_GON));
    ASSERT_EQ(settings.SaveCurrentSelection(*list, &root), 1);

    EXPECT_EQ(settings.Unit(), NYR_UNIT_GON);
    EXPECT_EQ(Stored("CNyrUnitSettingsAngle", "UnitAngle Format (###)"), "15");
    EXPECT_EQ(Stored("CNyrUnitSettingsAngle", "UnitAngle Format (str)"), "");
    ASSERT_EQ(log.size(), 3u);  // depth first, not the root
    EXPECT_EQ(log[0].window, "child");
    EXPECT_EQ(log[1].window, "grandchild");
    EXPECT_EQ(log[2].window, "sibling");
    for (const auto& r : log) {
        EXPECT_EQ(r.message, WM_NYR_UNIT_CHANGED_ANGLE);
        EXPECT_EQ(r.oldUnit, NYR_UNIT_DMS);
        EXPECT_EQ(r.newUnit, NYR_UNIT_GON);
    }

    // The same unit again: written, but nobody is told.
    log.clear();
    CNyrProfileEntries::WriteNyrProfileString("CNyrUnitSettingsAngle", "UnitAngle Format (str)", "stale");
    ASSERT_EQ(settings.SaveCurrentSelection(*list, &root), 1);
    EXPECT_TRUE(log.empty());
    EXPECT_EQ(Stored("CNyrUnitSettingsAngle", "UnitAngle Format (str)"), "");

    // Latitudes and longitudes: their own section, the angle notification.
    CNyrUnitSettingsAngleLatLon& latLon = CNyrUnitSettingsAngleLatLon::Default();
    latLon.InitializeUnitAngleComboBox(*list);
    list->setCurrentIndex(list->findData(NYR_UNIT_DEGREE));
    ASSERT_EQ(latLon.SaveCurrentSelection(*list, child), 1);
    ASSERT_EQ(log.size(), 1u);
    EXPECT_EQ(log[0].window, "grandchild");
    EXPECT_EQ(log[0].message, WM_NYR_UNIT_CHANGED_ANGLE);
    EXPECT_EQ(Stored("CNyrUnitSettingsAngleLatLon", "UnitAngle Format (str)"), "dec");
    EXPECT_EQ(settings.Unit(), NYR_UNIT_GON);
}

}  // namespace
