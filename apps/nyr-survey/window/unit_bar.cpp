#include "apps/nyr-survey/window/unit_bar.h"

#include <QLabel>
#include <QSignalBlocker>

#include "apps/nyr-survey/app/texts.h"
#include "nyrwidgets/time/time_format_combo_box.h"
#include "nyrwidgets/values/unit_combo_box.h"

namespace survey {

namespace {

// Decimals per angle unit 11..18: azimuths to about 0.1 mgon, positions
// on the ellipsoid to about 0.1 mm. DMS and gon count the seconds' (cc)
// decimals.
constexpr int kAzimuthDecimals[] = {6, 5, 6, 6, 1, 6, 8, 7};
constexpr int kLatLonDecimals[] = {9, 5, 11, 9, 3, 9, 11, 11};

int Decimals(const int* table, long unit)
{
    return unit >= 11 && unit <= 18 ? table[unit - 11] : 6;
}

}  // namespace

void ApplyDisplayPrecision()
{
    CNyrUnitSettingsDistance::Default().Precision(3);
    CNyrUnitSettingsAngle& angle = CNyrUnitSettingsAngle::Default();
    angle.Precision(Decimals(kAzimuthDecimals, angle.Unit()));
    CNyrUnitSettingsAngleLatLon& latLon = CNyrUnitSettingsAngleLatLon::Default();
    latLon.Precision(Decimals(kLatLonDecimals, latLon.Unit()));
}

CUnitBar::CUnitBar(QWidget* notifyRoot, QWidget* parent)
    : QToolBar(parent), m_root(notifyRoot), m_distance(new CNyrUnitSettingsDistance::CUnitDistanceComboBox(this)),
      m_angle(new CNyrUnitSettingsAngle::CUnitAngleComboBox(this)),
      m_latLon(new CNyrUnitSettingsAngle::CUnitAngleComboBox(this)), m_time(new CNyrTime::CTimeFormatComboBox(this))
{
    setObjectName("UnitBar");
    QWidget* boxes[] = {m_distance, m_angle, m_latLon, m_time};
    for (int i = 0; i < 4; ++i) {
        m_labels[i] = new QLabel(this);
        m_labels[i]->setBuddy(boxes[i]);
        m_labels[i]->setContentsMargins(8, 0, 4, 0);
        addWidget(m_labels[i]);
        addWidget(boxes[i]);
    }
    Fill();
    Retranslate();
    // Each change: the new unit's decimals first, then the library stores
    // the choice and tells every view.
    connect(m_distance, &QComboBox::currentIndexChanged, this, [this] {
        CNyrUnitSettingsDistance::Default().SaveCurrentSelection(*m_distance, m_root);
    });
    connect(m_angle, &QComboBox::currentIndexChanged, this, [this] {
        CNyrUnitSettingsAngle& s = CNyrUnitSettingsAngle::Default();
        s.Precision(Decimals(kAzimuthDecimals, s.GetCurrentSelection(*m_angle)));
        s.SaveCurrentSelection(*m_angle, m_root);
    });
    connect(m_latLon, &QComboBox::currentIndexChanged, this, [this] {
        CNyrUnitSettingsAngleLatLon& s = CNyrUnitSettingsAngleLatLon::Default();
        s.Precision(Decimals(kLatLonDecimals, s.GetCurrentSelection(*m_latLon)));
        s.SaveCurrentSelection(*m_latLon, m_root);
    });
    connect(m_time, &QComboBox::currentIndexChanged, this,
            [this] { CNyrTime::SaveCurrentSelection(*m_time, m_root); });
}

CUnitBar::~CUnitBar() = default;

void CUnitBar::Fill()
{
    const QSignalBlocker b1(m_distance), b2(m_angle), b3(m_latLon), b4(m_time);
    CNyrUnitSettingsDistance::Default().InitializeUnitDistanceComboBox(*m_distance);
    CNyrUnitSettingsAngle::Default().InitializeUnitAngleComboBox(*m_angle);
    CNyrUnitSettingsAngleLatLon::Default().InitializeUnitAngleComboBox(*m_latLon);
    CNyrTime::InitializeTimeFormatComboBox(*m_time);
}

void CUnitBar::Retranslate()
{
    setWindowTitle(QText(TxtUnitBar));
    const unsigned int ids[] = {TxtDistanceUnit, TxtAngleUnit, TxtLatLonUnit, TxtTimeFormat};
    for (int i = 0; i < 4; ++i)
        m_labels[i]->setText(QText(ids[i]));
    Fill();  // the unit names come from the library's texts
}

}  // namespace survey
