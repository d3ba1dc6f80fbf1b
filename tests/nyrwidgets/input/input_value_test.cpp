#include <gtest/gtest.h>

#include <QTest>
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <memory>
#include <random>

#include "nyr/frame/notifications.h"
#include "nyr/values/unit_settings.h"
#include "nyrwidgets/input/input_value.h"
#include "tests/nyrwidgets/input/input_test_p.h"

using nyr::test::German;
using nyr::test::Retype;
using nyr::test::Window;

namespace {

constexpr double kPi = 3.141592653589793;
constexpr double kDegree = kPi / 180.0;
constexpr double kArcSecond = kDegree / 3600.0;
constexpr double kCc = kPi / 200.0 / 10000.0;

const std::vector<long> kAngleUnits = {11, 12, 13, 14, 15, 16, 17, 18};
const std::vector<long> kDistanceUnits = {21, 22, 23};

// Half the last digit a unit shows at `p` decimals, in radians or metres.
double HalfLastDigit(long unit, int p)
{
    const double digit = std::pow(10.0, -p);
    switch (unit) {
    case 11: return 0.5 * digit * kDegree;
    case 12: return 0.5 * digit * kArcSecond;
    case 13: return 0.5 * digit * 1e4 * kArcSecond;  // DDD.MMSSsss: the fifth decimal is a tenth of a second
    case 14: return 0.5 * digit * kPi / 200.0;
    case 15: return 0.5 * digit * kCc;
    case 16: return 0.5 * digit * 1e4 * kCc;
    case 17: return 0.5 * digit * 2 * kPi;
    case 18: return 0.5 * digit;
    case 22: return 0.5 * digit * 1200.0 / 3937.0;
    case 23: return 0.5 * digit * 0.3048;
    default: return 0.5 * digit;
    }
}

// One kind of value field with the settings it follows and its notification.
struct Kind
{
    const char* name;
    std::function<CNyrInputValue*(QWidget*)> make;
    CNyrUnitSettings* settings;
    unsigned int message;
    std::vector<long> units;
    double lowest, highest;  // the random values, standard unit
};

std::vector<Kind> Kinds()
{
    CNyrUnitSettings* angles = &CNyrUnitSettingsAngle::Default();
    CNyrUnitSettings* geo = &CNyrUnitSettingsAngleLatLon::Default();
    return {
        {"angle", [](QWidget* p) { return new CNyrInputAngle(p); }, angles, WM_NYR_UNIT_CHANGED_ANGLE,
         kAngleUnits, -3 * kPi, 3 * kPi},
        {"latitude", [](QWidget* p) { return new CNyrInputLatitude(p); }, geo, WM_NYR_UNIT_CHANGED_ANGLE,
         kAngleUnits, -kPi / 2, kPi / 2},
        {"longitude", [](QWidget* p) { return new CNyrInputLongitude(p); }, geo, WM_NYR_UNIT_CHANGED_ANGLE,
         kAngleUnits, -kPi + 1e-6, kPi},
        {"distance", [](QWidget* p) { return new CNyrInputDistance(p); }, &CNyrUnitSettingsDistance::Default(),
         WM_NYR_UNIT_CHANGED_DISTANCE, kDistanceUnits, -1e5, 1e5},
    };
}

// The user picks another unit: the settings change, the window is told.
void ChangeUnit(QWidget& window, const Kind& kind, long unit)
{
    const long old = kind.settings->Unit();
    kind.settings->Unit(unit);
    NyrSendMessageToDescendants(&window, kind.message, static_cast<quintptr>(old), unit);
}

class ValueFields : public ::testing::Test
{
protected:
    void SetUp() override { Reset(); }
    void TearDown() override { Reset(); }
    static void Reset()
    {
        for (const Kind& kind : Kinds()) {
            kind.settings->Unit(kind.units.front() == 21 ? 21 : 12);
            kind.settings->Precision(6);
            kind.settings->Format().UseDmsSymbols(1);
            kind.settings->Format().UseSecOnly(0);
        }
    }
};

TEST_F(ValueFields, TypingTheShownTextGivesTheValueBackInEveryUnit)
{
    std::mt19937_64 random(20240611);
    for (const Kind& kind : Kinds()) {
        for (int flags = 0; flags < 3; ++flags) {
            kind.settings->Format().UseDmsSymbols(flags == 0);
            kind.settings->Format().UseSecOnly(flags == 2 && kind.message == WM_NYR_UNIT_CHANGED_ANGLE);
            for (long unit : kind.units) {
                kind.settings->Unit(unit);
                std::uniform_real_distribution<double> values(kind.lowest, kind.highest);
                for (int i = 0; i < 25; ++i) {
                    const double value = values(random);
                    Window window;
                    CNyrInputValue* shown = kind.make(&window);
                    ASSERT_EQ(shown->SetValue(value), 1);
                    const QString text = shown->text();
                    CNyrInputValue* typed = kind.make(&window);
                    QTest::keyClicks(typed, text);
                    const std::string where = std::string(kind.name) + " unit " + std::to_string(unit) + " flags " +
                                              std::to_string(flags) + " text " + text.toStdString();
                    ASSERT_EQ(typed->text(), text) << where;  // no keystroke of a shown text is refused
                    ASSERT_EQ(typed->Validate(), 1) << where;
                    double error = std::fabs(typed->GetValue() - value);
                    if (kind.settings == &CNyrUnitSettingsAngleLatLon::Default())
                        error = std::min(error, std::fabs(error - 2 * kPi));  // 180° E is 180° W
                    EXPECT_LE(error, HalfLastDigit(unit, 6) * (1 + 1e-9) + 1e-12 * std::fabs(value)) << where;
                }
            }
        }
    }
}

TEST_F(ValueFields, ChangingTheUnitBackAndForthNeverMovesTheValue)
{
    std::mt19937_64 random(77);
    for (const Kind& kind : Kinds()) {
        std::uniform_real_distribution<double> values(kind.lowest, kind.highest);
        for (int i = 0; i < 10; ++i) {
            const long start = kind.units[random() % kind.units.size()];
            kind.settings->Unit(start);
            Window window;
            CNyrInputValue* held = kind.make(&window);
            ASSERT_EQ(held->SetValue(values(random)), 1);
            const double value = held->GetValue();
            const QString shown = held->text();
            // Text typed in one unit is read once, in that unit.
            CNyrInputValue* typed = kind.make(&window);
            QTest::keyClicks(typed, shown);
            CNyrInputValue* reference = kind.make(&window);
            reference->setText(shown);
            ASSERT_EQ(reference->Validate(), 1);
            // A field of the other angle settings is told too and must not move.
            CNyrInputLatitude* bystander = new CNyrInputLatitude(&window);
            bystander->SetValue(0.5);
            const QString bystanderText = bystander->text();

            std::vector<long> order = kind.units;
            for (int round = 0; round < 3; ++round) {
                std::shuffle(order.begin(), order.end(), random);
                for (long unit : order)
                    ChangeUnit(window, kind, unit);
            }
            ChangeUnit(window, kind, start);
            EXPECT_EQ(held->GetValue(), value) << kind.name;
            EXPECT_EQ(held->text(), shown) << kind.name;
            ASSERT_EQ(typed->Validate(), 1) << kind.name;
            EXPECT_EQ(typed->GetValue(), reference->GetValue()) << kind.name;
            if (kind.settings != &CNyrUnitSettingsAngleLatLon::Default()) {
                EXPECT_EQ(bystander->text(), bystanderText) << kind.name;
                EXPECT_EQ(bystander->GetValue(), 0.5) << kind.name;
            }
        }
    }
}

TEST_F(ValueFields, UndoAndRedoWorkAcrossAUnitChange)
{
    const Kind kind = Kinds().front();
    Window window;
    auto* field = new CNyrInputAngle(&window);
    field->SetValue(12.5 * kDegree);
    EXPECT_EQ(field->text(), "12° 30' 00.000000\"");
    Retype(*field, "30 15");
    ChangeUnit(window, kind, NYR_UNIT_DEGREE);
    EXPECT_EQ(field->text(), "30.250000");
    // Every step typed in DMS, shown in degrees.
    std::vector<QString> steps;
    while (field->CanUndo()) {
        QTest::keyClick(field, Qt::Key_Z, Qt::ControlModifier);
        steps.push_back(field->text());
    }
    EXPECT_EQ(steps, (std::vector<QString>{"30.016667", "30.000000", "30.000000", "3.000000", "12.500000"}));
    for (int i = 0; i < 5; ++i)
        QTest::keyClick(field, Qt::Key_Y, Qt::ControlModifier);
    EXPECT_EQ(field->text(), "30.250000");
    ChangeUnit(window, kind, NYR_UNIT_DMS);
    EXPECT_EQ(field->text(), "30° 15' 00.000000\"");
    while (field->CanUndo())
        field->Undo();
    EXPECT_EQ(field->text(), "12° 30' 00.000000\"");
    ASSERT_EQ(field->Validate(), 1);
    EXPECT_EQ(field->GetValue(), 12.5 * kDegree);  // shown, not read: every bit kept
}

struct ReadCase
{
    const char* name;
    long unit;
    int kind;
    const char* text;
    double degrees;
};

TEST_F(ValueFields, ReadsPackedFormsSymbolsAndHemispheres)
{
    const std::vector<ReadCase> cases = {
        {"packed DMS", 12, NYR_INPUT_ANGLE, "12.3015", 12 + 30 / 60.0 + 15 / 3600.0},
        {"negative packed DMS", 12, NYR_INPUT_ANGLE, "-12.3", -12.5},
        {"packed gon", 15, NYR_INPUT_ANGLE, "100.5025", 100.5025 * 0.9},
        {"colons", 12, NYR_INPUT_ANGLE, "12:30:15", 12 + 30 / 60.0 + 15 / 3600.0},
        {"symbols", 12, NYR_INPUT_ANGLE, "12°30'15\"", 12 + 30 / 60.0 + 15 / 3600.0},
        {"gon symbols", 15, NYR_INPUT_ANGLE, "50g 00c 00cc", 45},
        {"south", 12, NYR_INPUT_LATITUDE, "48 30 00 S", -48.5},
        {"packed south", 12, NYR_INPUT_LATITUDE, "48.3 S", -48.5},
        {"west in degrees", 11, NYR_INPUT_LONGITUDE, "12.5 W", -12.5},
        {"east", 12, NYR_INPUT_LONGITUDE, "8 30 E", 8.5},
        {"radians with unit", 18, NYR_INPUT_ANGLE, "0.5 rad", 0.5 / kDegree},
    };
    for (const ReadCase& c : cases) {
        CNyrUnitSettingsAngle::Default().Unit(c.unit);
        CNyrUnitSettingsAngleLatLon::Default().Unit(c.unit);
        std::unique_ptr<CNyrInputControl> field(NyrCreateInputControl(c.kind));
        QTest::keyClicks(field.get(), QString::fromUtf8(c.text));
        EXPECT_EQ(field->text().toStdString(), c.text) << c.name;
        ASSERT_EQ(field->Validate(), 1) << c.name;
        EXPECT_NEAR(static_cast<CNyrInputValue*>(field.get())->GetValue() / kDegree, c.degrees, 1e-9) << c.name;
    }
}

TEST_F(ValueFields, NothingMovesWhenTheUnitChanges)
{
    const Kind kind = Kinds().front();
    Window window;
    auto* field = new CNyrInputAngle(&window);
    field->SetValue(1.0);
    const QSize hint = field->sizeHint();
    const int margin = field->textMargins().right();
    EXPECT_GE(hint.width(), field->fontMetrics().horizontalAdvance("-000° 00' 00.00000\""));
    for (long unit : kind.units) {
        ChangeUnit(window, kind, unit);
        EXPECT_EQ(field->sizeHint(), hint) << unit;
        EXPECT_EQ(field->textMargins().right(), margin) << unit;
    }
    ChangeUnit(window, kind, NYR_UNIT_GRAD);
    EXPECT_EQ(field->accessibleDescription(), "Angle in Grad [ grad ]");
}

// The value types load their hemisphere letters and symbols once per
// process, in the language of the moment. A program that started in German
// and switched to English made fields whose own text ("28.647890 O" while
// the module says "E") failed their keystroke check; QLineEdit then lets
// every keystroke through, letters included. Run in a process of its own,
// where nothing was loaded yet.
TEST(ValueFieldsLanguage, AFieldMadeAfterALanguageSwitchStillRefusesImpossibleKeys)
{
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(
        {
            {
                German german;
                if (!german.Loaded())
                    std::_Exit(2);
                CNyrInputLongitude first;
                first.SetValue(0.1);  // the letters of the process: German ones
            }
            int failures = 0;
            for (const Kind& kind : Kinds()) {
                for (long unit : kind.units) {
                    kind.settings->Unit(unit);
                    std::unique_ptr<CNyrInputValue> field(kind.make(nullptr));
                    field->SetValue(0.5);
                    const QString shown = field->text();
                    field->setCursorPosition(0);
                    QTest::keyClick(field.get(), Qt::Key_X);
                    QTest::keyClick(field.get(), Qt::Key_0);
                    if (field->text() != "0" + shown || !field->Validate() ||
                        std::fabs(field->GetValue() - 0.5) > 1e-5) {
                        std::fprintf(stderr, "%s unit %ld: %s\n", kind.name, unit, shown.toUtf8().constData());
                        ++failures;
                    }
                }
            }
            std::_Exit(failures ? 1 : 0);  // the child ends here, its widgets with it
        },
        ::testing::ExitedWithCode(0), "");
}

}  // namespace
