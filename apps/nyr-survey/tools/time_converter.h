#pragma once

#include "nyr/time/time.h"
#include "nyrwidgets/app/dialog.h"

class QLabel;
class QLineEdit;

namespace survey {

// Tools > Time converter: one instant as local date and time (in the current
// time format), UTC (ISO 8601), MJD (of UTC) and GPS week and seconds. Any
// field typed in and confirmed with Enter sets the instant; GPS - UTC comes
// from the library's leap-second table, and the system's leap-second list
// can be imported into it. OK closes it; Enter in a field converts.
class CTimeConverter : public CNyrDialog
{
    Q_OBJECT
public:
    enum eField { FieldLocal, FieldUtc, FieldMjd, FieldGps, FieldCount };

    explicit CTimeConverter(QWidget* parent = nullptr);
    ~CTimeConverter() override;

    // Reads the field's text; false (and nothing changes but the message)
    // when it is not a time.
    bool ConvertFrom(eField field);
    void SetTime(const CNyrTime& time);
    const CNyrTime& Time() const { return m_time; }
    QLineEdit* Field(eField field) const { return m_fields[field]; }
    // Imports the system's leap-second list; the message says what happened.
    void ImportLeapSeconds();
    QString Message() const;

private:
    void Show();

    CNyrTime m_time;
    QLineEdit* m_fields[FieldCount];
    QLabel* m_leap;
    QLabel* m_message;
};

}  // namespace survey
