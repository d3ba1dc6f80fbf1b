#include <gtest/gtest.h>

#include <QTest>
#include <cmath>
#include <random>

#include "nyr/frame/notifications.h"
#include "nyr/util/profile_entries.h"
#include "nyrwidgets/input/input_time.h"
#include "tests/nyrwidgets/input/input_test_p.h"
#include "tests/support/temp_dir.h"

using nyr::test::Retype;
using nyr::test::Window;

namespace {

// Time fields with the settings file in a temporary folder, format row 0.
class TimeFields : public ::testing::Test
{
protected:
    void SetUp() override
    {
        NyrSetProfilePath(m_dir.File("Nyr240.INI"));
        CNyrTime::SaveTimeFormat(0);
    }
    void TearDown() override { NyrSetProfilePath(""); }

    // The user picks another format row.
    static void PickFormat(QWidget& window, int row)
    {
        const int old = CNyrTime::SaveTimeFormat(row);
        NyrSendMessageToDescendants(&window, WM_NYR_FORMAT_CHANGED_TIME, static_cast<quintptr>(old), row);
    }

    nyr::test::TempDir m_dir;
};

std::string Fields(const CNyrTime& time)
{
    return time.Format("%Y-%m-%d %H:%M:%S", CNyrTimeHelper::eRoundNone);
}

TEST_F(TimeFields, EveryFormatRowReadsBackWhatItShows)
{
    std::mt19937_64 random(4711);
    // Two-digit years read as 1971..2070.
    std::uniform_int_distribution<int64_t> seconds(31536000, 3155759999);
    std::uniform_real_distribution<double> fractions(0.0, 1.0);
    for (int row = 0; row < CNyrTime::eTimeFormatCount; ++row) {
        CNyrTime::SaveTimeFormat(row);
        for (int digits : {0, 3}) {
            for (int i = 0; i < 8; ++i) {
                CNyrTime time(seconds(random));
                time.SetFracSecond(fractions(random));
                CNyrInputDateTime shown;
                shown.SetFractionDigits(digits);
                shown.SetValue(time);
                CNyrInputDateTime typed;
                typed.SetFractionDigits(digits);
                QTest::keyClicks(&typed, shown.text());
                const std::string where = "row " + std::to_string(row) + ": " + shown.text().toStdString();
                ASSERT_EQ(typed.text(), shown.text()) << where;
                ASSERT_EQ(typed.Validate(), 1) << where;
                // Within the last digit shown (rounded, or cut where a carry
                // would leave the CTime range), and no more digits than shown.
                const CNyrTime read = typed.GetValue();
                const double error = static_cast<double>(read.GetTime().GetTime() - time.GetTime().GetTime()) +
                                     (read.GetFracSecond() - time.GetFracSecond());
                EXPECT_LT(std::fabs(error), digits == 0 ? 1.0 : 1e-3) << where;
                const double scaled = read.GetFracSecond() * std::pow(10.0, digits);
                EXPECT_NEAR(scaled, std::round(scaled), 1e-6) << where;
            }
        }
    }
}

TEST_F(TimeFields, AFormatChangeShowsTheSamePointAndUndoFollowsIt)
{
    Window window;
    auto* field = new CNyrInputDateTime(&window);
    CNyrTime time(2024, 3, 5, 13, 2, 3);
    time.SetFracSecond(0.4);
    field->SetValue(time);
    EXPECT_EQ(field->text(), "03/05/2024 13:02:03");
    Retype(*field, "03/06/2024 14:00:00");
    PickFormat(window, CNyrTime::eTimeFormatDMonY4Dot12);
    EXPECT_EQ(field->text(), "6. Mar 2024 2:00:00 PM");
    while (field->CanUndo())
        field->Undo();
    EXPECT_EQ(field->text(), "5. Mar 2024 1:02:03 PM");
    PickFormat(window, CNyrTime::eTimeFormatDMY4Dot24);
    EXPECT_EQ(field->text(), "05.03.2024 13:02:03");
    field->Redo();
    EXPECT_EQ(field->text(), "0");  // a step that never read stays as it was typed
    PickFormat(window, CNyrTime::eTimeFormatMDY4Slash24);
    field->Undo();
    ASSERT_EQ(field->Validate(), 1);
    EXPECT_EQ(field->GetValue(), time);  // to the fraction of its second
}

struct TimeCase
{
    int row;
    CNyrInputDateTime::ePart part;
    const char* text;
    const char* expected;  // "%Y-%m-%d %H:%M:%S", or "" when refused
};

TEST_F(TimeFields, ReadsTheFormsOfEveryRowAndRefusesWhatNamesNoPoint)
{
    using P = CNyrInputDateTime;
    const std::vector<TimeCase> cases = {
        {0, P::eDateTime, "03/05/2024 13:02:03", "2024-03-05 13:02:03"},
        {0, P::eDateTime, " 3/5/2024  1:2:3 ", "2024-03-05 01:02:03"},
        {0, P::eDateTime, "03/05/2024", "2024-03-05 00:00:00"},
        {0, P::eDateTime, "03/05/2024 14", "2024-03-05 14:00:00"},
        {0, P::eDateTime, "03/05", ""},
        {0, P::eDateTime, "02/29/2023 00:00:00", ""},
        {0, P::eDateTime, "02/29/2024 00:00:00", "2024-02-29 00:00:00"},
        {0, P::eDateTime, "13/01/2024 00:00:00", ""},
        {0, P::eDateTime, "03-05-2024 00:00:00", ""},
        {0, P::eDateTime, "03/05/2024 12:60:00", ""},
        {0, P::eDateTime, "03/05/2024 00:00:00 x", ""},
        {2, P::eDateTime, "03/05/2024 12:00:00 AM", "2024-03-05 00:00:00"},
        {2, P::eDateTime, "03/05/2024 12:30:00 PM", "2024-03-05 12:30:00"},
        {2, P::eDateTime, "03/05/2024 1:00:00 pm", "2024-03-05 13:00:00"},
        {2, P::eDateTime, "03/05/2024 13:00:00 PM", ""},
        {4, P::eDateTime, "03/05/70 00:00:00", "2070-03-05 00:00:00"},
        {4, P::eDateTime, "03/05/71 00:00:00", "1971-03-05 00:00:00"},
        {4, P::eDateTime, "03/05/1999 00:00:00", "1999-03-05 00:00:00"},
        {17, P::eDateTime, "05.03.2024 13:02:03", "2024-03-05 13:02:03"},
        {24, P::eDateTime, "5. mar 2024 13:02:03", "2024-03-05 13:02:03"},
        {24, P::eDateTime, "5. March 2024 13:02:03", "2024-03-05 13:02:03"},
        {24, P::eDateTime, "5. Mrz 2024 13:02:03", ""},
        {31, P::eDateTime, "5-Mar-24 1:02:03 PM", "2024-03-05 13:02:03"},
        {0, P::eDateTime, "MJD 60310.25", "2024-01-01 06:00:00"},
        {5, P::eDateTime, "gps 2295, 345600", "2024-01-04 00:00:00"},
        {0, P::eDateTime, "GPS 2295 604800", ""},
        {0, P::eDateTime, "GPS -1 0", ""},
        {0, P::eDateTime, "MJD 1e9", ""},
        // The held point is 2024-03-05 13:02:03.
        {0, P::eDate, "04/01/2024", "2024-04-01 13:02:03"},
        {0, P::eDate, "04/01/2024 08:00:00", ""},
        {0, P::eTime, "08:15", "2024-03-05 08:15:00"},
        {2, P::eTime, "8:15:00 PM", "2024-03-05 20:15:00"},
        {0, P::eTime, "24:00:00", ""},
    };
    for (const TimeCase& c : cases) {
        CNyrTime::SaveTimeFormat(c.row);
        CNyrInputDateTime field(nullptr, c.part);
        field.SetValue(CNyrTime(2024, 3, 5, 13, 2, 3));
        field.setText(QString::fromUtf8(c.text));
        const int read = field.Validate();
        EXPECT_EQ(read, *c.expected ? 1 : 0) << c.row << " " << c.text;
        if (read) {
            EXPECT_EQ(Fields(field.GetValue()), c.expected) << c.row << " " << c.text;
        }
    }
}

TEST_F(TimeFields, FractionsShowToTheDigitsAskedAndAreKept)
{
    CNyrInputDateTime field;
    CNyrTime time(2024, 3, 5, 13, 2, 3);
    time.SetFracSecond(0.2496);
    field.SetValue(time);
    EXPECT_EQ(field.text(), "03/05/2024 13:02:03");
    field.SetFractionDigits(2);
    EXPECT_EQ(field.text(), "03/05/2024 13:02:03.25");
    field.SetFractionDigits(3);
    EXPECT_EQ(field.text(), "03/05/2024 13:02:03.250");
    EXPECT_EQ(field.GetValue().GetFracSecond(), 0.2496);
    field.setText("03/05/2024 13:02:59.9999");
    ASSERT_EQ(field.Validate(), 1);
    EXPECT_EQ(field.text(), "03/05/2024 13:03:00.000");  // shown rounded, held as read
    EXPECT_NEAR(field.GetValue().GetFracSecond(), 0.9999, 1e-9);
}

struct SpanCase
{
    const char* text;
    long seconds;  // -1: refused
    double fraction;
};

TEST_F(TimeFields, TimeSpansReadDaysHoursMinutesAndSeconds)
{
    const std::vector<SpanCase> cases = {
        {"49:05:07", 176707, 0},    {"2 1:05:07", 176707, 0},      {"2d", 172800, 0},
        {"2d 1:00", 176400, 0},     {"1:30", 5400, 0},             {"1:5:5", 3905, 0},
        {"0:00:00.25", 0, 0.25},    {"596523:14:07", 2147483647, 0}, {"596523:14:08", -1, 0},
        {"1:60", -1, 0},            {"d", -1, 0},                  {"1:00:00.", -1, 0},
        {"99999999999", -1, 0},     {"1 2 3", -1, 0},
    };
    for (const SpanCase& c : cases) {
        CNyrInputTimeSpan field;
        field.setText(c.text);
        const int read = field.Validate();
        EXPECT_EQ(read, c.seconds >= 0 ? 1 : 0) << c.text;
        if (read) {
            EXPECT_EQ(field.GetValue().GetTimeSpan().GetTotalSeconds(), c.seconds) << c.text;
            EXPECT_EQ(field.GetValue().GetFracSecond(), c.fraction) << c.text;
        }
    }
    CNyrInputTimeSpan field;
    CNyrTimeSpan span(176707L);
    span.SetFracSecond(0.25);
    field.SetValue(span);
    EXPECT_EQ(field.text(), "49:05:07");
    field.SetFractionDigits(2);
    EXPECT_EQ(field.text(), "49:05:07.25");
    field.SetMinimum(CNyrTimeSpan(3600L));
    field.setText("0:59:59.99");
    EXPECT_EQ(field.Validate(), 0);
    EXPECT_EQ(field.GetMessage(), "Minimum value is 1:00:00.00");
}

}  // namespace
