#include "apps/nyr-survey/tools/unit_converter.h"

#include <QFormLayout>
#include <QVBoxLayout>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>

#include "apps/nyr-survey/app/texts.h"
#include "nyr/frame/resource_module.h"
#include "nyr/values/units.h"
#include "nyr/values/value_angle.h"
#include "nyr/values/value_distance.h"
#include "nyrwidgets/values/unit_combo_box.h"

namespace survey {

namespace {

// Decimals per unit code 11..18 and 21..23 for the converter's results.
int Decimals(long unit)
{
    static const int angle[] = {10, 5, 10, 10, 4, 10, 12, 12};
    return unit >= 11 && unit <= 18 ? angle[unit - 11] : 6;
}

// Converts `text`, read in `from`, into every unit of `table` with `value`
// (which follows `settings`); a text that does not read clears the results.
void Convert(CNyrValue& value, CNyrUnitSettings& settings, const QString& text, long from, const NYR_UNIT_TEXT* table,
             std::vector<std::pair<long, QLabel*>>& results)
{
    value.Status();
    const bool ok = !text.trimmed().isEmpty() && value.ConvertToStd(text.toStdString().c_str(), from) == 0;
    for (auto& [unit, label] : results) {
        bool ofTable = false;
        for (const NYR_UNIT_TEXT* row = table; row->unit >= 0; ++row)
            ofTable = ofTable || row->unit == unit;
        if (!ofTable)
            continue;
        std::string out;
        settings.Precision(Decimals(unit));
        if (ok)
            value.ConvertStdTo(out, unit);
        label->setText(ok ? QString::fromStdString(out) : QText(TxtInvalidValue));
    }
}

}  // namespace

CUnitConverter::CUnitConverter(QWidget* parent)
    : CNyrDialog(parent, "NyrSurvey/UnitConverter", eOK), m_angleEdit(new QLineEdit("12 30 15.5", this)), m_distanceEdit(new QLineEdit("1000", this)),
      m_angleUnit(new CNyrUnitSettingsAngle::CUnitAngleComboBox(this)),
      m_distanceUnit(new CNyrUnitSettingsDistance::CUnitDistanceComboBox(this))
{
    setObjectName("UnitConverter");
    setWindowTitle(QText(TxtUnitTitle));
    struct Group
    {
        unsigned int title;
        QLineEdit* edit;
        QWidget* unitBox;
        const NYR_UNIT_TEXT* table;
    };
    const Group groups[] = {{TxtAngleGroup, m_angleEdit, m_angleUnit, NyrUnitTableAngle()},
                            {TxtDistanceGroup, m_distanceEdit, m_distanceUnit, NyrUnitTableDistance()}};
    for (const Group& g : groups) {
        auto* box = new QGroupBox(QText(g.title), this);
        auto* form = new QFormLayout(box);
        form->addRow(QText(TxtValue), g.edit);
        form->addRow(QText(TxtFromUnit), g.unitBox);
        for (const NYR_UNIT_TEXT* row = g.table; row->unit >= 0; ++row) {
            auto* label = new QLabel(this);
            label->setTextInteractionFlags(Qt::TextSelectableByMouse);
            form->addRow(QString::fromStdString(NyrLoadString(static_cast<unsigned int>(row->textId))), label);
            m_results.emplace_back(row->unit, label);
        }
        ContentLayout()->addWidget(box);
    }
    CNyrUnitSettingsAngle::Default().InitializeUnitAngleComboBox(*m_angleUnit);
    CNyrUnitSettingsDistance::Default().InitializeUnitDistanceComboBox(*m_distanceUnit);
    connect(m_angleEdit, &QLineEdit::textChanged, this, &CUnitConverter::ConvertAngle);
    connect(m_angleUnit, &QComboBox::currentIndexChanged, this, &CUnitConverter::ConvertAngle);
    connect(m_distanceEdit, &QLineEdit::textChanged, this, &CUnitConverter::ConvertDistance);
    connect(m_distanceUnit, &QComboBox::currentIndexChanged, this, &CUnitConverter::ConvertDistance);
    ConvertAngle();
    ConvertDistance();
}

CUnitConverter::~CUnitConverter() = default;

void CUnitConverter::ConvertAngle()
{
    CNyrUnitSettingsAngle settings;
    CNyrValueAngle value(0.0, settings);
    Convert(value, settings, m_angleEdit->text(), m_angleUnit->GetCurrentSelection(), NyrUnitTableAngle(), m_results);
}

void CUnitConverter::ConvertDistance()
{
    CNyrUnitSettingsDistance settings;
    CNyrValueDistance value(0.0, settings);
    Convert(value, settings, m_distanceEdit->text(), m_distanceUnit->GetCurrentSelection(), NyrUnitTableDistance(),
            m_results);
}

QString CUnitConverter::Result(long unit) const
{
    for (const auto& [u, label] : m_results)
        if (u == unit)
            return label->text();
    return {};
}

}  // namespace survey
