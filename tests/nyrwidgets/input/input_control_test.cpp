#include <gtest/gtest.h>

#include <QApplication>
#include <QClipboard>
#include <QDialogButtonBox>
#include <QLabel>
#include <QPushButton>
#include <QTest>
#include <QVBoxLayout>
#include <functional>
#include <memory>
#include <optional>

#include "nyr/frame/notifications.h"
#include "nyr/util/profile_entries.h"
#include "nyr/values/unit_settings.h"
#include "nyrwidgets/input/input_number.h"
#include "nyrwidgets/input/input_string.h"
#include "nyrwidgets/input/input_time.h"
#include "nyrwidgets/input/input_value.h"
#include "tests/nyrwidgets/input/input_test_p.h"
#include "tests/support/temp_dir.h"

using nyr::test::German;
using nyr::test::Retype;
using nyr::test::ShowActive;
using nyr::test::Window;

namespace {

constexpr double kDegree = 3.141592653589793 / 180.0;

// Fields that read angles in DMS with symbols at precision 5, distances in
// US survey feet at precision 3, and times in format row 0.
class Fields : public ::testing::Test
{
protected:
    void SetUp() override
    {
        NyrSetProfilePath(m_dir.File("Nyr240.INI"));
        CNyrTime::SaveTimeFormat(0);
        CNyrUnitSettingsAngle* geo = &CNyrUnitSettingsAngleLatLon::Default();
        for (CNyrUnitSettingsAngle* angles : {&CNyrUnitSettingsAngle::Default(), geo}) {
            angles->Unit(NYR_UNIT_DMS);
            angles->Precision(5);
            angles->UseDmsSymbols(1);
        }
        CNyrUnitSettingsDistance::Default().Unit(NYR_UNIT_US_SURVEY_FEET);
        CNyrUnitSettingsDistance::Default().Precision(3);
    }
    void TearDown() override
    {
        CNyrUnitSettingsDistance::Default().Unit(NYR_UNIT_METRES);
        CNyrUnitSettingsDistance::Default().Precision(6);
        NyrSetProfilePath("");
    }
    nyr::test::TempDir m_dir;
};

struct MessageCase
{
    const char* name;
    std::function<std::unique_ptr<CNyrInputControl>()> make;
    const char* text;
    const char* english;
    const char* german;
};

template <class T>
std::function<std::unique_ptr<CNyrInputControl>()> Make(std::function<void(T&)> setUp = {})
{
    return [setUp] {
        auto field = std::make_unique<T>();
        if (setUp)
            setUp(*field);
        return std::unique_ptr<CNyrInputControl>(std::move(field));
    };
}

TEST_F(Fields, EveryValidationMessageInEnglishAndGerman)
{
    const std::vector<MessageCase> cases = {
        {"empty", Make<CNyrInputInteger>(), "", "Field must not be empty", "Das Feld darf nicht leer sein"},
        {"minimum", Make<CNyrInputInteger>([](auto& f) { f.SetMinimum(1); }), "0", "Minimum value is 1",
         "Der kleinste Wert ist 1"},
        {"maximum", Make<CNyrInputInteger>([](auto& f) { f.SetMaximum(10); }), "11", "Maximum value is 10",
         "Der größte Wert ist 10"},
        {"between", Make<CNyrInputFloat>([](auto& f) { f.SetPrecision(2), f.SetRange(0.5, 2); }), "3",
         "Value must be between 0.50 and 2.00", "Der Wert muss zwischen 0.50 und 2.00 liegen"},
        {"angle range in DMS", Make<CNyrInputAngle>([](auto& f) { f.SetRange(10 * kDegree, 20 * kDegree); }),
         "9 59 59", "Value must be between 10° 00' 00.00000\" and 20° 00' 00.00000\"",
         "Der Wert muss zwischen 10° 00' 00.00000\" und 20° 00' 00.00000\" liegen"},
        {"distance range in feet", Make<CNyrInputDistance>([](auto& f) { f.SetMinimum(1.0); }), "3.28",
         "Minimum value is 3.281", "Der kleinste Wert ist 3.281"},
        {"number", Make<CNyrInputFloat>(), "1,5", "Invalid number", "Ungültige Zahl"},
        {"integer", Make<CNyrInputInteger>(), "1.5", "Invalid integer number", "Ungültige ganze Zahl"},
        {"angle", Make<CNyrInputAngle>(), "-", "Invalid angle", "Ungültiger Winkel"},
        {"distance", Make<CNyrInputDistance>(), "m", "Invalid distance", "Ungültige Strecke"},
        {"latitude", Make<CNyrInputLatitude>(), "91 00 00 N", "Invalid latitude", "Ungültige Breite"},
        {"longitude", Make<CNyrInputLongitude>(), "W", "Invalid longitude", "Ungültige Länge"},
        {"date", Make<CNyrInputDateTime>(), "02/30/2024 00:00:00", "Invalid date", "Ungültiges Datum"},
        {"time", Make<CNyrInputDateTime>([](auto& f) { f.SetPart(CNyrInputDateTime::eTime); }), "24:00:00",
         "Invalid time", "Ungültige Uhrzeit"},
        {"time span", Make<CNyrInputTimeSpan>(), "1:60", "Invalid time span", "Ungültige Zeitspanne"},
        {"file name", Make<CNyrInputFileName>(), "a\tb", "Invalid file name", "Ungültiger Dateiname"},
        {"file", Make<CNyrInputFileName>(), "/nonexistent-folder/file", "File does not exist",
         "Die Datei existiert nicht"},
        {"folder",
         Make<CNyrInputFileName>([](auto& f) { f.SetMode(CNyrInputFileName::eFolderMustExist); }),
         "/nonexistent-folder", "Folder does not exist", "Der Ordner existiert nicht"},
        {"new file in a missing folder",
         Make<CNyrInputFileName>([](auto& f) { f.SetMode(CNyrInputFileName::eMayBeNew); }),
         "/nonexistent-folder/new", "Folder does not exist", "Der Ordner existiert nicht"},
        {"length", Make<CNyrInputString>([](auto& f) { f.SetMaxChars(5); }), "toolong",
         "Text must not be longer than 5 characters", "Der Text darf höchstens 5 Zeichen lang sein"},
    };
    for (bool inGerman : {false, true}) {
        std::optional<German> german;
        if (inGerman) {
            ASSERT_TRUE(german.emplace().Loaded());
        }
        for (const MessageCase& c : cases) {
            std::unique_ptr<CNyrInputControl> field = c.make();
            field->setText(QString::fromUtf8(c.text));
            EXPECT_EQ(field->Validate(), 0) << c.name;
            EXPECT_FALSE(field->IsInputValid()) << c.name;
            EXPECT_EQ(field->GetMessage(), inGerman ? c.german : c.english) << c.name;
            EXPECT_EQ(field->accessibleDescription().toStdString(), field->GetMessage()) << c.name;
        }
    }
}

TEST_F(Fields, OwnerMayRefuseAValueWithItsOwnMessage)
{
    Window window;
    auto* field = new CNyrInputInteger(&window);
    field->SetValue(1);
    window.answers[WM_NYR_INPUT_CONTROL_VALIDATE] = 1;
    std::vector<long long> seen;
    window.onMessage = [field, &seen](const Window::Message& m) {
        if (m.message == WM_NYR_INPUT_CONTROL_VALIDATE) {
            EXPECT_EQ(m.wParam, reinterpret_cast<quintptr>(field));
            seen.push_back(field->GetValue());  // the owner sees the new value
            if (field->GetValue() == 7)
                field->ShowMessage("Seven is taken");
        }
    };
    field->setText("7");
    EXPECT_EQ(field->Validate(), 0);
    EXPECT_EQ(field->GetValue(), 1);
    EXPECT_EQ(field->GetMessage(), "Seven is taken");
    field->setText("8");  // the message goes with the change
    EXPECT_FALSE(field->IsMessageShown());
    EXPECT_EQ(field->Validate(), 0);
    EXPECT_EQ(field->GetMessage(), "Invalid integer number");  // refused without a message of its own

    window.answers[WM_NYR_INPUT_CONTROL_VALIDATE] = 0;
    EXPECT_EQ(field->Validate(), 1);
    EXPECT_EQ(field->GetValue(), 8);
    EXPECT_FALSE(field->IsMessageShown());
    EXPECT_EQ(seen, (std::vector<long long>{7, 8, 8}));
}

TEST_F(Fields, OwnerDecidesOverAnEmptyField)
{
    struct Case
    {
        bool allowEmpty;
        qintptr answer;
        int passes;
    };
    for (const Case& c : {Case{false, 0, 0}, Case{true, 0, 1}, Case{false, 1, 1}, Case{true, -1, 0}}) {
        Window window;
        auto* field = new CNyrInputString(&window);
        field->SetAllowEmpty(c.allowEmpty);
        window.answers[WM_NYR_INPUT_CONTROL_VALIDATE_EMPTY] = c.answer;
        field->setText("   ");
        EXPECT_EQ(field->Validate(), c.passes) << c.allowEmpty << " " << c.answer;
        EXPECT_EQ(window.LParams(WM_NYR_INPUT_CONTROL_VALIDATE_EMPTY), std::vector<qintptr>{c.allowEmpty ? 1 : 0});
        EXPECT_TRUE(window.LParams(WM_NYR_INPUT_CONTROL_VALIDATE).empty());
    }
}

TEST_F(Fields, EmptyChangesAndNewParentsAreTold)
{
    Window window;
    auto* field = new CNyrInputInteger(&window);
    QApplication::processEvents();  // a field made with a parent tells its window once it is whole
    QTest::keyClicks(field, "1");
    QTest::keyClick(field, Qt::Key_Backspace);
    field->SetValue(5);
    field->Clear();
    field->Undo();  // Clear empties the history: nothing to undo
    QTest::keyClicks(field, "2");
    field->Undo();
    EXPECT_EQ(window.LParams(WM_NYR_INPUT_CONTROL_EMPTY_CHANGED), (std::vector<qintptr>{0, 1, 0, 1, 0, 1}));

    Window other;
    field->setParent(&other);
    QApplication::processEvents();
    EXPECT_EQ(window.LParams(WM_NYR_INPUT_CONTROL_CHILD_ADDED).size(), 1u);
    EXPECT_EQ(other.LParams(WM_NYR_INPUT_CONTROL_CHILD_ADDED).size(), 1u);
}

TEST_F(Fields, LeavingAfterAChangeValidatesExceptForCancel)
{
    Window window;
    auto* layout = new QVBoxLayout(&window);
    auto* field = new CNyrInputInteger(&window);
    field->SetRange(1, 10);
    field->SetValue(5);
    auto* next = new CNyrInputString(&window);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, &window);
    for (QWidget* w : std::initializer_list<QWidget*>{field, next, buttons})
        layout->addWidget(w);
    ASSERT_TRUE(ShowActive(window));

    field->setFocus();
    next->setFocus(Qt::TabFocusReason);  // untouched: no validation
    EXPECT_TRUE(window.LParams(WM_NYR_INPUT_CONTROL_VALIDATE).empty());

    Retype(*field, "50");
    buttons->button(QDialogButtonBox::Cancel)->setFocus(Qt::MouseFocusReason);
    EXPECT_FALSE(field->IsMessageShown());
    Retype(*field, "51");
    next->setProperty("nyrNoValidate", true);
    next->setFocus(Qt::TabFocusReason);
    EXPECT_FALSE(field->IsMessageShown());

    Retype(*field, "52");
    buttons->button(QDialogButtonBox::Ok)->setFocus(Qt::TabFocusReason);
    EXPECT_EQ(field->GetMessage(), "Value must be between 1 and 10");
    const QLabel* balloon = field->findChild<QLabel*>("nyrInputMessage");
    ASSERT_NE(balloon, nullptr);
    EXPECT_TRUE(balloon->isVisible());
    EXPECT_EQ(field->GetValue(), 5);

    Retype(*field, "7");
    EXPECT_FALSE(balloon->isVisible());
    buttons->button(QDialogButtonBox::Ok)->setFocus(Qt::TabFocusReason);
    EXPECT_EQ(field->GetValue(), 7);
    EXPECT_TRUE(field->IsInputValid());
}

// A field edited in place talks to its host, not to its dialog: every way of
// leaving it says how in the save message, and a value that fails the
// field's own rules never reaches the host.
TEST_F(Fields, AHookedFieldTellsItsHostHowTheEditEndsUntilUnhooked)
{
    Window window;
    auto* layout = new QVBoxLayout(&window);
    auto* field = new CNyrInputInteger(&window);
    field->SetRange(1, 10);
    auto* next = new QLineEdit(&window);
    layout->addWidget(field);
    layout->addWidget(next);
    ASSERT_TRUE(ShowActive(window));
    Window host;
    host.answers[WM_NYR_INPUT_CONTROL_SAVE_VALUE_INLINE] = 1;
    EXPECT_EQ(NyrSendMessage(field, WM_NYR_INPUT_CONTROL_HOOK_DLG_CTRL, reinterpret_cast<quintptr>(&host)), 1);
    EXPECT_EQ(field->Host(), &host);

    const struct
    {
        const char* text;
        std::function<void()> leave;
        std::vector<qintptr> saves;  // every SAVE_VALUE_INLINE lParam so far
    } steps[] = {
        {"5", [&] { QTest::keyClick(field, Qt::Key_Return); }, {0}},
        {"6", [&] { QTest::keyClick(field, Qt::Key_Tab); }, {0, 1}},
        {"7", [&] { QTest::keyClick(field, Qt::Key_Backtab, Qt::ShiftModifier); }, {0, 1, -1}},
        {"50", [&] { QTest::keyClick(field, Qt::Key_Enter); }, {0, 1, -1}},  // out of range: not told
        {"8", [&] { next->setFocus(Qt::MouseFocusReason); }, {0, 1, -1, 2}},
    };
    for (const auto& step : steps) {
        Retype(*field, step.text);
        step.leave();
        EXPECT_EQ(host.LParams(WM_NYR_INPUT_CONTROL_SAVE_VALUE_INLINE), step.saves) << step.text;
    }
    EXPECT_EQ(field->GetValue(), 8);
    field->setFocus(Qt::OtherFocusReason);
    QTest::keyClick(field, Qt::Key_Escape);
    EXPECT_EQ(host.LParams(WM_NYR_INPUT_CONTROL_CANCEL_INLINE), std::vector<qintptr>{0});
    for (const Window::Message& m : host.received)
        EXPECT_EQ(m.wParam, reinterpret_cast<quintptr>(field));
    EXPECT_TRUE(window.LParams(WM_NYR_KEYDOWN_EE).empty());  // Enter and Escape went to the host alone

    EXPECT_EQ(NyrSendMessage(field, WM_NYR_INPUT_CONTROL_UNHOOK_DLG_CTRL, 0), 1);
    EXPECT_EQ(field->Host(), nullptr);
    const std::size_t told = host.received.size();
    Retype(*field, "9");
    QTest::keyClick(field, Qt::Key_Return);
    QTest::keyClick(field, Qt::Key_Tab);
    EXPECT_EQ(host.received.size(), told);
    EXPECT_EQ(window.LParams(WM_NYR_KEYDOWN_EE), std::vector<qintptr>{Qt::Key_Return});
    EXPECT_TRUE(next->hasFocus());
}

struct KeysCase
{
    const char* name;
    std::function<std::unique_ptr<CNyrInputControl>()> make;
    const char* keys;
    const char* text;  // what the field holds after the keys
    QValidator::State state;
};

TEST_F(Fields, RefusesKeystrokesThatCanNeverBeValidButNotHalfTypedText)
{
    const std::vector<KeysCase> cases = {
        {"integer", Make<CNyrInputInteger>(), "-1x2 3", "-12 ", QValidator::Acceptable},
        {"integer without negatives", Make<CNyrInputInteger>([](auto& f) { f.SetMinimum(0); }), "-+12",
         "+12", QValidator::Acceptable},
        {"integer sign alone", Make<CNyrInputInteger>(), "-", "-", QValidator::Intermediate},
        {"integer out of range", Make<CNyrInputInteger>([](auto& f) { f.SetMaximum(9); }), "12", "12",
         QValidator::Intermediate},
        {"float", Make<CNyrInputFloat>(), "1.2.3e5xe", "1.23e5", QValidator::Acceptable},
        {"float half typed", Make<CNyrInputFloat>(), "-.", "-.", QValidator::Intermediate},
        {"float comma", Make<CNyrInputFloat>(), "12,5", "125", QValidator::Acceptable},
        {"angle", Make<CNyrInputAngle>(), "12°30'x15.5\"", "12°30'15.5\"", QValidator::Acceptable},
        {"angle half typed", Make<CNyrInputAngle>(), "-12 ", "-12 ", QValidator::Acceptable},
        {"angle has no hemisphere", Make<CNyrInputAngle>(), "12 30 S", "12 30 ", QValidator::Acceptable},
        {"latitude", Make<CNyrInputLatitude>(), "48 30 SW", "48 30 S", QValidator::Acceptable},
        {"longitude", Make<CNyrInputLongitude>(), "8 30 NW", "8 30 W", QValidator::Acceptable},
        {"distance with unit", Make<CNyrInputDistance>(), "12.5 fts!", "12.5 fts", QValidator::Acceptable},
        {"date", Make<CNyrInputDateTime>(), "03/05/2024 1:02:03@", "03/05/2024 1:02:03",
         QValidator::Acceptable},
        {"date half typed", Make<CNyrInputDateTime>(), "03/05/20", "03/05/20", QValidator::Acceptable},
        {"date in words", Make<CNyrInputDateTime>(), "mjd 60000.5#", "mjd 60000.5", QValidator::Acceptable},
        {"time span", Make<CNyrInputTimeSpan>(), "49:05:07x", "49:05:07", QValidator::Acceptable},
        {"time span half typed", Make<CNyrInputTimeSpan>(), "49:", "49:", QValidator::Intermediate},
        {"text", Make<CNyrInputString>([](auto& f) { f.SetMaxChars(3); }), "abcd", "abc", QValidator::Acceptable},
        {"file name", Make<CNyrInputFileName>(), "/tmp/a b", "/tmp/a b", QValidator::Acceptable},
    };
    for (const KeysCase& c : cases) {
        std::unique_ptr<CNyrInputControl> field = c.make();
        QTest::keyClicks(field.get(), QString::fromUtf8(c.keys));
        EXPECT_EQ(field->text().toStdString(), c.text) << c.name;
        EXPECT_EQ(field->CheckKeystroke(field->text()), c.state) << c.name;
    }
    // A paste is one keystroke: refused whole.
    CNyrInputFileName name;
    QApplication::clipboard()->setText("a\x01b");
    name.paste();
    EXPECT_EQ(name.text(), "");
}

TEST_F(Fields, AProgramTextTooLongCanBeShortened)
{
    CNyrInputString field;
    field.SetMaxChars(3);
    field.SetValue("abcdef");  // kept whole
    EXPECT_EQ(field.text(), "abcdef");
    field.setCursorPosition(6);
    QTest::keyClick(&field, Qt::Key_Backspace);
    QTest::keyClick(&field, Qt::Key_Backspace);
    EXPECT_EQ(field.text(), "abcd");
    EXPECT_EQ(field.Validate(), 0);
    QTest::keyClick(&field, Qt::Key_Backspace);
    EXPECT_EQ(field.Validate(), 1);
    EXPECT_EQ(field.GetValue(), "abc");
}

TEST_F(Fields, NumbersReadTheSameWhateverTheLocale)
{
    const QLocale saved;
    QLocale::setDefault(QLocale(QLocale::German, QLocale::Germany));
    CNyrInputFloat field;
    field.SetTrimTrailingZeros(true);
    field.setText(" +12.5e1 ");
    EXPECT_EQ(field.Validate(), 1);
    EXPECT_DOUBLE_EQ(field.GetValue(), 125.0);
    EXPECT_EQ(field.text(), "125.0");
    field.SetValue(-1e-9);
    EXPECT_EQ(field.text(), "0.0");  // no sign on a number that shows as zero
    EXPECT_EQ(field.GetValue(), -1e-9);
    QLocale::setDefault(saved);
}

}  // namespace
