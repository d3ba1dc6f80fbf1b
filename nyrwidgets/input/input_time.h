#pragma once

#include <memory>

#include "nyr/time/time.h"
#include "nyr/time/time_span.h"
#include "nyrwidgets/input/input_control.h"

// A time point (CNyrTime, local civil time) in the current time format of
// the format table (CNyrTime::CurrentTimeFormat), or in its date part or its
// time part alone (ePart). What the format writes reads back, for every row
// of the table: month names in English ("5. Mar 2024"), 12-hour clocks with
// AM and PM (12 AM is midnight), two-digit years (below 71 is 20yy). The
// text may stop after the date or the hour ("03/05/2024", "03/05/2024 14");
// what is missing is 0. Seconds may carry a fraction ("14:05:07.25"), which
// the field shows with GetFractionDigits() decimals (0 unless set, up to 3).
// Typed directly, in any format and any case:
//   "MJD 60310.25"      a Modified Julian Date of local time;
//   "GPS 2295 345600"   GPS week and seconds of week (blanks, ',', ':' or '/'
//                       between them).
// "Invalid date" (NYR_IDS_INPUT_BAD_DATE), or "Invalid time" (NYR_IDS_INPUT_BAD_TIME) for the time part. A date
// part keeps the time of day the field holds (midnight for an empty field),
// a time part the date (today for an empty field).
//
// When the user picks another format (WM_NYR_FORMAT_CHANGED_TIME), the text
// and every text of the history are written anew in it; the point is kept
// to the fraction of its second.
class NYR_EXPORT CNyrInputDateTime : public CNyrInputControl
{
    Q_OBJECT
public:
    enum ePart : int { eDateTime = 0, eDate = 1, eTime = 2 };

    explicit CNyrInputDateTime(QWidget* parent = nullptr, ePart part = eDateTime);
    ~CNyrInputDateTime() override;

    int Kind() const override;
    // The point held; for an empty field the point of seconds count 0.
    CNyrTime GetValue() const;
    void SetValue(const CNyrTime& time);
    void SetPart(ePart part);
    ePart GetPart() const;
    // Decimals of the seconds shown, 0 to 3; the point keeps its fraction
    // whatever is shown.
    void SetFractionDigits(int digits);
    int GetFractionDigits() const;
    // Inclusive bounds.
    void SetRange(const CNyrTime& earliest, const CNyrTime& latest);
    void SetMinimum(const CNyrTime& earliest);
    void SetMaximum(const CNyrTime& latest);
    void ClearRange();

protected:
    QString Render(const std::any& value) const override;
    bool Read(const QString& text, std::any& value, long form) const override;
    long CurrentForm() const override;
    bool FollowsMessage(unsigned int message) const override;
    bool MayBecomeValid(const QString& text) const override;
    int RangeSide(const std::any& value) const override;
    std::any Bound(bool maximum) const override;
    unsigned int InvalidTextId() const override;
    std::string Description() const override;

private:
    struct Private;
    std::unique_ptr<Private> d;
};

// A time span (CNyrTimeSpan) as total hours, minutes and seconds
// ("49:05:07", the pattern "%h:%M:%S" of CNyrTimeSpanHelper::Format), the
// seconds with GetFractionDigits() decimals (0 unless set, up to 3). It
// reads "[days d | days blank] hours[:minutes[:seconds[.fraction]]]":
// "49:05:07", "2 1:05:07", "2d", "1:30"; minutes and seconds below 60, the
// whole at most 2147483647 s. "Invalid time span" (NYR_IDS_INPUT_BAD_TIME_SPAN).
class NYR_EXPORT CNyrInputTimeSpan : public CNyrInputControl
{
    Q_OBJECT
public:
    explicit CNyrInputTimeSpan(QWidget* parent = nullptr);
    ~CNyrInputTimeSpan() override;

    int Kind() const override;
    // The span held; 0 s for an empty field.
    CNyrTimeSpan GetValue() const;
    void SetValue(const CNyrTimeSpan& span);
    void SetFractionDigits(int digits);
    int GetFractionDigits() const;
    void SetRange(const CNyrTimeSpan& shortest, const CNyrTimeSpan& longest);
    void SetMinimum(const CNyrTimeSpan& shortest);
    void SetMaximum(const CNyrTimeSpan& longest);
    void ClearRange();

protected:
    QString Render(const std::any& value) const override;
    bool Read(const QString& text, std::any& value, long form) const override;
    bool MayBecomeValid(const QString& text) const override;
    int RangeSide(const std::any& value) const override;
    std::any Bound(bool maximum) const override;
    unsigned int InvalidTextId() const override;

private:
    struct Private;
    std::unique_ptr<Private> d;
};
