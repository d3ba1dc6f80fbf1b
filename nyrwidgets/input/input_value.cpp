#include "nyrwidgets/input/input_value.h"

#include <QEvent>
#include <QPainter>
#include <QStyle>
#include <QStyleOptionFrame>
#include <bitset>

#include "nyr/frame/notifications.h"
#include "nyr/frame/resource_module.h"
#include "nyr/frame/text_ids.h"
#include "nyr/platform/string_format.h"
#include "nyr/values/unit_settings.h"
#include "nyr/values/value_angle.h"
#include "nyr/values/value_distance.h"
#include "nyrwidgets/input/input_range_p.h"

namespace {

// Every character the abbreviations of the units in `table` use, in both
// their forms (seconds-only on and off).
QString AbbreviationCharacters(const NYR_UNIT_TEXT* table)
{
    QString characters;
    for (const NYR_UNIT_TEXT* row = table; row->unit != -1; ++row) {
        for (int secondsOnly : {0, 1}) {
            std::string abbreviation;
            CNyrUnitSettings::UnitAbbreviation(row->unit, abbreviation, secondsOnly);
            characters += QString::fromStdString(abbreviation);
        }
    }
    return characters;
}

// The text as the value types want it: no blanks at either end.
QString Trimmed(const std::string& text)
{
    return QString::fromStdString(text).trimmed();
}

// One decimal number with a point, and nothing else that is a number: the
// packed form of DMS or Gon ("12.3015", "-12.3015", "48.3015 N").
bool IsPackedNumber(const std::string& text)
{
    int runs = 0;
    bool point = false;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const bool numeric = (text[i] >= '0' && text[i] <= '9') || text[i] == '.';
        if (numeric && (i == 0 || !((text[i - 1] >= '0' && text[i - 1] <= '9') || text[i - 1] == '.')))
            ++runs;
        point |= text[i] == '.';
    }
    return runs == 1 && point;
}

}  // namespace

struct CNyrInputValue::Private
{
    std::unique_ptr<CNyrValue> value;  // reads and writes the texts; follows the field's settings
    unsigned int unitMessage;
    std::bitset<256> allowed;  // Latin-1 characters a text may hold
    nyr::input::Range<double> range;
    int suffixWidth = 0;  // pixels kept free at the right for the widest abbreviation

    void Allow(const QString& characters)
    {
        for (QChar c : characters)
            if (c.unicode() < 256)
                allowed.set(c.unicode());
    }
    // Every character the value type writes for a value of either sign in
    // the units of `table`. The value types load their symbols and hemisphere
    // letters once per process, so after a switch of language these need not
    // be the texts of the module current now. A field whose own text failed
    // its keystroke check would let every keystroke through: QLineEdit
    // refuses a keystroke only in a text that passed.
    void AllowWritten(const NYR_UNIT_TEXT* table)
    {
        for (const NYR_UNIT_TEXT* row = table; row->unit != -1; ++row) {
            for (double sample : {0.5, -0.5}) {
                std::string text;
                value->Status();
                if (value->SetDouble(sample) == NYR_VALUE_OK && value->ConvertStdTo(text, row->unit) == NYR_VALUE_OK)
                    Allow(QString::fromStdString(text));
            }
        }
        value->Status();
    }
};

CNyrInputValue::CNyrInputValue(QWidget* parent, std::unique_ptr<CNyrValue> value, unsigned int unitMessage)
    : CNyrInputControl(parent), d(new Private{std::move(value), unitMessage, {}, {}, 0})
{
    const bool angle = unitMessage == WM_NYR_UNIT_CHANGED_ANGLE;
    const NYR_UNIT_TEXT* units = angle ? NyrUnitTableAngle() : NyrUnitTableDistance();
    d->Allow(QStringLiteral("0123456789 .+-:eE"));
    d->Allow(AbbreviationCharacters(units));
    d->AllowWritten(units);
    if (angle) {
        d->Allow(QStringLiteral("\u00b0'\"gc"));
        for (unsigned int id : {NYR_IDS_SYMBOL_SECONDS, NYR_IDS_SYMBOL_MGON, NYR_IDS_SYMBOL_DEGREE})
            d->Allow(QString::fromStdString(NyrLoadString(id)));
    }
    UpdateSuffixSpace();
}

CNyrInputValue::~CNyrInputValue() = default;

double CNyrInputValue::GetValue() const
{
    return HeldValueOr(0.0);
}

int CNyrInputValue::SetValue(double standardValue)
{
    d->value->Status();
    if (d->value->SetDouble(standardValue) != NYR_VALUE_OK)
        return 0;
    SetHeldValue(d->value->GetDouble());
    return 1;
}

void CNyrInputValue::SetRange(double minimum, double maximum)
{
    d->range.Set(minimum, maximum);
}

void CNyrInputValue::SetMinimum(double minimum)
{
    d->range.minimum = minimum;
}

void CNyrInputValue::SetMaximum(double maximum)
{
    d->range.maximum = maximum;
}

void CNyrInputValue::ClearRange()
{
    d->range.Clear();
}

CNyrUnitSettings& CNyrInputValue::UnitSettings() const
{
    return d->value->UnitSettings();
}

void CNyrInputValue::AllowCharacters(const QString& characters)
{
    d->Allow(characters);
}

QString CNyrInputValue::Render(const std::any& value) const
{
    CNyrValue& v = *d->value;
    v.Status();
    v.SetDouble(std::any_cast<double>(value));
    std::string text;
    v.ConvertStdTo(text, v.UnitSettings().Unit());
    return Trimmed(text);
}

bool CNyrInputValue::Read(const QString& text, std::any& value, long unit) const
{
    CNyrValue& v = *d->value;
    const std::string utf8 = text.toStdString();
    // In DMS and Gon a single decimal number is the packed form, as surveyors
    // type it: "12.3015" is 12° 30' 15", not 12° (the field reader would stop
    // at the point).
    const long packed = unit == NYR_UNIT_DMS   ? NYR_UNIT_DECIMAL_DMS
                        : unit == NYR_UNIT_GON ? NYR_UNIT_DECIMAL_GON
                                               : 0;
    const long form = (packed && !v.UnitSettings().Format().UseSecOnly() && IsPackedNumber(utf8)) ? packed : unit;
    v.Status();
    if (v.ConvertToStd(utf8.c_str(), form) != NYR_VALUE_OK) {
        v.Status();
        return false;
    }
    value = v.GetDouble();
    return true;
}

long CNyrInputValue::CurrentForm() const
{
    return UnitSettings().Unit();
}

bool CNyrInputValue::FollowsMessage(unsigned int message) const
{
    return message == d->unitMessage;
}

bool CNyrInputValue::MayBecomeValid(const QString& text) const
{
    for (QChar c : text)
        if (c.unicode() >= 256 || !d->allowed.test(c.unicode()))
            return false;
    return true;
}

int CNyrInputValue::RangeSide(const std::any& value) const
{
    return d->range.Side(value);
}

std::any CNyrInputValue::Bound(bool maximum) const
{
    return d->range.Bound(maximum);
}

std::string CNyrInputValue::Description() const
{
    const long unit = UnitSettings().Unit();
    const NYR_UNIT_TEXT* row = NyrIsAngleUnit(unit) ? NyrUnitTableAngle() : NyrUnitTableDistance();
    while (row->unit != -1 && row->unit != unit)
        ++row;
    std::string kind = CNyrInputControl::Description();
    if (row->unit == -1)
        return kind;
    return NyrFormat(NyrLoadString(NYR_IDS_FIELD_IN_UNIT).c_str(), kind.c_str(),
                     NyrLoadString(static_cast<unsigned int>(row->textId)).c_str());
}

QString CNyrInputValue::Mask() const
{
    const QString dms = QString::fromStdString(NyrLoadString(NYR_IDS_MASK_ANGLE_DMS));
    const QString gon = QString::fromStdString(NyrLoadString(NYR_IDS_MASK_ANGLE_GON));
    return fontMetrics().horizontalAdvance(dms) > fontMetrics().horizontalAdvance(gon) ? dms : gon;
}

QSize CNyrInputValue::sizeHint() const
{
    QSize hint = CNyrInputControl::sizeHint();
    QStyleOptionFrame option;
    initStyleOption(&option);
    const QMargins margins = textMargins();
    const int text = fontMetrics().horizontalAdvance(Mask()) + margins.left() + margins.right() + 8;
    const QSize wanted = style()->sizeFromContents(QStyle::CT_LineEdit, &option, QSize(text, hint.height()), this);
    hint.setWidth(std::max(hint.width(), wanted.width()));
    return hint;
}

void CNyrInputValue::UpdateSuffixSpace()
{
    const bool angle = d->unitMessage == WM_NYR_UNIT_CHANGED_ANGLE;
    const NYR_UNIT_TEXT* table = angle ? NyrUnitTableAngle() : NyrUnitTableDistance();
    int widest = 0;
    for (const NYR_UNIT_TEXT* row = table; row->unit != -1; ++row) {
        for (int secondsOnly : {0, 1}) {
            std::string abbreviation;
            CNyrUnitSettings::UnitAbbreviation(row->unit, abbreviation, secondsOnly);
            widest = std::max(widest, fontMetrics().horizontalAdvance(QString::fromStdString(abbreviation)));
        }
    }
    d->suffixWidth = widest;
    setTextMargins(0, 0, widest + 4, 0);
}

void CNyrInputValue::paintEvent(QPaintEvent* e)
{
    CNyrInputControl::paintEvent(e);
    std::string abbreviation;
    UnitSettings().GetUnitAbbreviation(abbreviation);
    if (abbreviation.empty())
        return;
    QStyleOptionFrame option;
    initStyleOption(&option);
    const QRect contents = style()->subElementRect(QStyle::SE_LineEditContents, &option, this);
    QRect suffix = contents;
    suffix.setLeft(contents.right() - d->suffixWidth);
    QPainter painter(this);
    painter.setPen(palette().color(QPalette::PlaceholderText));
    painter.drawText(suffix, Qt::AlignRight | Qt::AlignVCenter, QString::fromStdString(abbreviation));
}

void CNyrInputValue::changeEvent(QEvent* e)
{
    CNyrInputControl::changeEvent(e);
    if (e->type() == QEvent::FontChange || e->type() == QEvent::StyleChange)
        UpdateSuffixSpace();
}

// ---------------------------------------------------------------------------
// The four kinds

CNyrInputAngle::CNyrInputAngle(QWidget* parent) : CNyrInputAngle(parent, CNyrUnitSettingsAngle::Default())
{
}

CNyrInputAngle::CNyrInputAngle(QWidget* parent, CNyrUnitSettings& settings)
    : CNyrInputValue(parent, std::make_unique<CNyrValueAngle>(0.0, settings), WM_NYR_UNIT_CHANGED_ANGLE)
{
}

int CNyrInputAngle::Kind() const
{
    return NYR_INPUT_ANGLE;
}

unsigned int CNyrInputAngle::InvalidTextId() const
{
    return NYR_IDS_INPUT_BAD_ANGLE;
}

CNyrInputDistance::CNyrInputDistance(QWidget* parent)
    : CNyrInputDistance(parent, CNyrUnitSettingsDistance::Default())
{
}

CNyrInputDistance::CNyrInputDistance(QWidget* parent, CNyrUnitSettings& settings)
    : CNyrInputValue(parent, std::make_unique<CNyrValueDistance>(0.0, settings), WM_NYR_UNIT_CHANGED_DISTANCE)
{
}

int CNyrInputDistance::Kind() const
{
    return NYR_INPUT_DISTANCE;
}

unsigned int CNyrInputDistance::InvalidTextId() const
{
    return NYR_IDS_INPUT_BAD_DISTANCE;
}

QString CNyrInputDistance::Mask() const
{
    return QStringLiteral("-000000.000000");
}

CNyrInputLatitude::CNyrInputLatitude(QWidget* parent)
    : CNyrInputLatitude(parent, CNyrUnitSettingsAngleLatLon::Default())
{
}

CNyrInputLatitude::CNyrInputLatitude(QWidget* parent, CNyrUnitSettings& settings)
    : CNyrInputValue(parent, std::make_unique<CNyrValueAngleLat>(0.0, settings), WM_NYR_UNIT_CHANGED_ANGLE)
{
    AllowCharacters(
        QString::fromStdString(NyrLoadString(NYR_IDS_HEMISPHERE_NORTH) + NyrLoadString(NYR_IDS_HEMISPHERE_SOUTH)));
}

int CNyrInputLatitude::Kind() const
{
    return NYR_INPUT_LATITUDE;
}

unsigned int CNyrInputLatitude::InvalidTextId() const
{
    return NYR_IDS_INPUT_BAD_LATITUDE;
}

QString CNyrInputLatitude::Mask() const
{
    return QString::fromStdString(NyrLoadString(NYR_IDS_MASK_LATLONG_DMS));
}

CNyrInputLongitude::CNyrInputLongitude(QWidget* parent)
    : CNyrInputLongitude(parent, CNyrUnitSettingsAngleLatLon::Default())
{
}

CNyrInputLongitude::CNyrInputLongitude(QWidget* parent, CNyrUnitSettings& settings)
    : CNyrInputValue(parent, std::make_unique<CNyrValueAngleLon>(0.0, settings), WM_NYR_UNIT_CHANGED_ANGLE)
{
    AllowCharacters(
        QString::fromStdString(NyrLoadString(NYR_IDS_HEMISPHERE_EAST) + NyrLoadString(NYR_IDS_HEMISPHERE_WEST)));
}

int CNyrInputLongitude::Kind() const
{
    return NYR_INPUT_LONGITUDE;
}

unsigned int CNyrInputLongitude::InvalidTextId() const
{
    return NYR_IDS_INPUT_BAD_LONGITUDE;
}

QString CNyrInputLongitude::Mask() const
{
    return QString::fromStdString(NyrLoadString(NYR_IDS_MASK_LATLONG_GON));
}
