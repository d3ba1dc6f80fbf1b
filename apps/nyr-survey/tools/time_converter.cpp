#include "apps/nyr-survey/tools/time_converter.h"

#include <QDialogButtonBox>
#include <QFormLayout>
#include <QVBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRegularExpression>
#include <charconv>
#include <cmath>

#include "apps/nyr-survey/app/texts.h"
#include "apps/nyr-survey/io/time_text.h"
#include "apps/nyr-survey/project/gps_time.h"
#include "nyr/time/time_helper.h"

namespace survey {

namespace {

constexpr double kMjdOfUnixEpoch = 40587.0;

bool Number(const QString& text, double& value)
{
    const std::string s = text.trimmed().toStdString();
    const auto r = std::from_chars(s.data(), s.data() + s.size(), value);
    return !s.empty() && r.ec == std::errc() && r.ptr == s.data() + s.size() && std::isfinite(value);
}

// "1930 518400.250" or "1930:518400.25"
bool GpsText(const QString& text, CNyrTime& time)
{
    const QStringList parts = text.trimmed().split(QRegularExpression("[\\s:/]+"), Qt::SkipEmptyParts);
    double week = 0.0, seconds = 0.0;
    return parts.size() == 2 && Number(parts[0], week) && week == std::floor(week) && week >= 0 && week < 1e5 &&
           Number(parts[1], seconds) && TimeFromGps(static_cast<int>(week), seconds, time);
}

}  // namespace

CTimeConverter::CTimeConverter(QWidget* parent)
    : CNyrDialog(parent, "NyrSurvey/TimeConverter", eOK), m_time(CTime::GetCurrentTime()), m_leap(new QLabel(this)),
      m_message(new QLabel(this))
{
    setObjectName("TimeConverter");
    setWindowTitle(QText(TxtTimeTitle));
    auto* form = new QFormLayout;
    const unsigned int labels[] = {TxtLocalTime, TxtUtc, TxtMjd, TxtGpsWeekSeconds};
    for (int f = 0; f < FieldCount; ++f) {
        m_fields[f] = new QLineEdit(this);
        m_fields[f]->setMinimumWidth(DialogUnitsX(130));
        form->addRow(QText(labels[f]), m_fields[f]);
        connect(m_fields[f], &QLineEdit::returnPressed, this, [this, f] { ConvertFrom(static_cast<eField>(f)); });
    }
    form->addRow(QString(), m_leap);
    QPushButton* now = ButtonBox()->addButton(QText(TxtNow), QDialogButtonBox::ActionRole);
    QPushButton* import = ButtonBox()->addButton(QText(TxtImportLeap), QDialogButtonBox::ActionRole);
    // Enter confirms a field, it does not close the dialog.
    for (QAbstractButton* b : ButtonBox()->buttons())
        if (auto* push = qobject_cast<QPushButton*>(b)) {
            push->setAutoDefault(false);
            push->setDefault(false);
        }
    connect(now, &QPushButton::clicked, this, [this] { SetTime(CNyrTime(CTime::GetCurrentTime())); });
    connect(import, &QPushButton::clicked, this, &CTimeConverter::ImportLeapSeconds);
    m_message->setWordWrap(true);
    ContentLayout()->addLayout(form);
    ContentLayout()->addWidget(m_message);
    SetTime(CNyrTime(CTime::GetCurrentTime()));
}

CTimeConverter::~CTimeConverter() = default;

bool CTimeConverter::ConvertFrom(eField field)
{
    const QString text = m_fields[field]->text().trimmed();
    const std::string s = text.toStdString();
    CNyrTime time = m_time;
    double mjd = 0.0;
    bool ok = false;
    switch (field) {
    case FieldLocal: ok = ParseObservedTime(s, time); break;
    case FieldUtc: ok = ParseIsoTime(s, true, time); break;
    case FieldMjd:
        if (Number(text, mjd) && mjd > 0.0 && mjd < 3e6) {
            const double unix = (mjd - kMjdOfUnixEpoch) * 86400.0;
            const double whole = std::floor(unix);
            time = CNyrTime(static_cast<int64_t>(whole));
            time.SetFracSecond(unix - whole);
            ok = true;
        }
        break;
    case FieldGps: ok = GpsText(text, time); break;
    default: break;
    }
    m_message->setText(ok ? QString() : QText(TxtTimeInvalid));
    if (ok)
        SetTime(time);
    return ok;
}

void CTimeConverter::SetTime(const CNyrTime& time)
{
    m_time = time;
    Show();
}

void CTimeConverter::Show()
{
    // Not rounded: half a second before midnight is still the old day.
    m_fields[FieldLocal]->setText(QString::fromStdString(m_time.Format(CNyrTimeHelper::eRoundNone) +
                                                         m_time.FormatFracSec(CNyrTimeHelper::eRoundThousandth)));
    m_fields[FieldUtc]->setText(QString::fromStdString(FormatIsoUtc(m_time)));
    const double unix = static_cast<double>(m_time.GetTime().GetTime()) + m_time.GetFracSecond();
    m_fields[FieldMjd]->setText(QString::number(unix / 86400.0 + kMjdOfUnixEpoch, 'f', 8));
    int week = 0;
    double seconds = 0.0;
    m_fields[FieldGps]->setText(GpsFromTime(m_time, week, seconds)
                                    ? QString("%1 %2").arg(week).arg(seconds, 0, 'f', 3)
                                    : QString());
    m_leap->setText(QText(TxtGpsMinusUtc).arg(LeapSecondsAt(m_time.GetTime().GetTime())));
}

void CTimeConverter::ImportLeapSeconds()
{
    bool expired = false;
    const int added = CNyrTimeHelper::ImportLeapSecondsList(CNyrTimeHelper::SystemLeapSecondsList(), &expired);
    QString text = added < 0 ? QText(TxtLeapFailed).arg(CNyrTimeHelper::SystemLeapSecondsList())
                             : QText(TxtLeapImported).arg(added);
    if (added >= 0 && expired)
        text += '\n' + QText(TxtLeapExpired);
    m_message->setText(text);
    Show();
}

QString CTimeConverter::Message() const
{
    return m_message->text();
}

}  // namespace survey
