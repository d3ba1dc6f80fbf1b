#pragma once

#include <memory>

#include "nyrwidgets/input/input_control.h"

// A whole number from -9223372036854775808 to 9223372036854775807 in decimal
// digits, with an optional sign and blanks around it. "Invalid integer
// number" (NYR_IDS_INPUT_BAD_INTEGER) for anything else; the range message shows the bounds in
// decimal. A '-' cannot be typed while the minimum is 0 or more.
class NYR_EXPORT CNyrInputInteger : public CNyrInputControl
{
    Q_OBJECT
public:
    explicit CNyrInputInteger(QWidget* parent = nullptr);
    ~CNyrInputInteger() override;

    int Kind() const override;
    // The value held; 0 for an empty field.
    long long GetValue() const;
    void SetValue(long long value);
    // Inclusive bounds. Without a bound the range goes to the end of the type.
    void SetRange(long long minimum, long long maximum);
    void SetMinimum(long long minimum);
    void SetMaximum(long long maximum);
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

// A floating number in decimal notation with '.' as the point whatever the
// locale, an optional sign and exponent ("12.5", "-.5", "1e-3"). It shows
// with GetPrecision() decimals (6 unless set; 0 to 15) and holds the number
// it read or was given, not the rounded text. "Invalid number" (NYR_IDS_INPUT_BAD_NUMBER) for
// anything else, and for numbers that are not finite.
class NYR_EXPORT CNyrInputFloat : public CNyrInputControl
{
    Q_OBJECT
public:
    explicit CNyrInputFloat(QWidget* parent = nullptr);
    ~CNyrInputFloat() override;

    int Kind() const override;
    // The value held; 0.0 for an empty field.
    double GetValue() const;
    // A value that is not finite empties the field.
    void SetValue(double value);
    void SetPrecision(int decimals);
    int GetPrecision() const;
    // Drops zeros at the end of the decimals down to one (12.5, 3.0); off
    // unless set.
    void SetTrimTrailingZeros(bool trim);
    bool GetTrimTrailingZeros() const;
    // Inclusive bounds.
    void SetRange(double minimum, double maximum);
    void SetMinimum(double minimum);
    void SetMaximum(double maximum);
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
