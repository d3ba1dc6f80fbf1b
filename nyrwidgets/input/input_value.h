#pragma once

#include <memory>

#include "nyrwidgets/input/input_control.h"

class CNyrUnitSettings;
class CNyrValue;

// The base of the fields for the value types: an angle, a distance, a
// latitude or a longitude, held in the standard unit (radians, metres) and
// shown in the current unit of the unit settings the field follows (the
// process-wide settings of its kind unless given), with that unit's
// precision and display flags. The unit's abbreviation ("m", "gon", "rad";
// none for DMS and Gon, whose fields carry their symbols) stands at the right
// end inside the field, in a space wide enough for every unit of the kind, so
// nothing moves when the unit changes.
//
// What the field reads is what the value types read in the current unit
// (CNyrValue::ConvertToStd): "12 30 15.5", "12°30'15.5\"", "12g 34c 56.5cc",
// decimal numbers with or without the abbreviation after them ("12.5 m"),
// hemisphere letters, seconds with seconds-only on. In DMS and Gon a
// single decimal number is also taken as the packed form: "12.3015" is
// 12° 30' 15" and "100.5025" is 100g 50c 25cc. Keystrokes other than
// digits, blanks, ".", "+", "-", ":", the symbols (° ' " g c), the letters of
// the kind's unit abbreviations and an exponent's "e" are refused, and so are
// the hemisphere letters outside latitude and longitude fields.
//
// A unit change (WM_NYR_UNIT_CHANGED_ANGLE or _DISTANCE) writes the text and
// every text of the history anew in the new unit; values the field read or
// was given keep every bit, so changing the unit back and forth never moves
// the value.
class NYR_EXPORT CNyrInputValue : public CNyrInputControl
{
    Q_OBJECT
public:
    ~CNyrInputValue() override;

    // The value held in the standard unit; 0 for an empty field.
    double GetValue() const;
    // Holds the value as the kind stores it (an angle reduced to the circle
    // with LimitToCircle, a longitude into (-180°, 180°]); 0 and nothing
    // changes for a value the kind refuses (not finite, beyond its
    // magnitude limit, a latitude beyond 90°).
    int SetValue(double standardValue);
    // Inclusive bounds in the standard unit; the range message writes them
    // in the current unit.
    void SetRange(double minimum, double maximum);
    void SetMinimum(double minimum);
    void SetMaximum(double maximum);
    void ClearRange();
    CNyrUnitSettings& UnitSettings() const;

    // Wide enough for the kind's mask (texts NYR_IDS_MASK_ANGLE_DMS to NYR_IDS_MASK_LATLONG_GON) and the unit.
    QSize sizeHint() const override;

protected:
    // `value` is the kind's value type, following the settings of the field.
    CNyrInputValue(QWidget* parent, std::unique_ptr<CNyrValue> value, unsigned int unitMessage);

    QString Render(const std::any& value) const override;
    bool Read(const QString& text, std::any& value, long form) const override;
    long CurrentForm() const override;
    bool FollowsMessage(unsigned int message) const override;
    bool MayBecomeValid(const QString& text) const override;
    int RangeSide(const std::any& value) const override;
    std::any Bound(bool maximum) const override;
    std::string Description() const override;
    // Letters the kind's texts carry besides the common ones (hemispheres).
    void AllowCharacters(const QString& characters);
    // The widest text of the kind, for the size hint.
    virtual QString Mask() const;

    void paintEvent(QPaintEvent* e) override;
    void changeEvent(QEvent* e) override;

private:
    struct Private;
    std::unique_ptr<Private> d;

    void UpdateSuffixSpace();
};

// An angle (CNyrValueAngle), "Invalid angle" (NYR_IDS_INPUT_BAD_ANGLE).
class NYR_EXPORT CNyrInputAngle : public CNyrInputValue
{
    Q_OBJECT
public:
    explicit CNyrInputAngle(QWidget* parent = nullptr);
    // `settings` must outlive the field.
    CNyrInputAngle(QWidget* parent, CNyrUnitSettings& settings);
    int Kind() const override;

protected:
    unsigned int InvalidTextId() const override;
};

// A distance (CNyrValueDistance), "Invalid distance" (NYR_IDS_INPUT_BAD_DISTANCE).
class NYR_EXPORT CNyrInputDistance : public CNyrInputValue
{
    Q_OBJECT
public:
    explicit CNyrInputDistance(QWidget* parent = nullptr);
    CNyrInputDistance(QWidget* parent, CNyrUnitSettings& settings);
    int Kind() const override;

protected:
    unsigned int InvalidTextId() const override;
    QString Mask() const override;
};

// A latitude (CNyrValueAngleLat), "N" and "S" (texts NYR_IDS_HEMISPHERE_NORTH, NYR_IDS_HEMISPHERE_SOUTH) after it;
// "Invalid latitude" (NYR_IDS_INPUT_BAD_LATITUDE), also beyond 90°.
class NYR_EXPORT CNyrInputLatitude : public CNyrInputValue
{
    Q_OBJECT
public:
    explicit CNyrInputLatitude(QWidget* parent = nullptr);
    CNyrInputLatitude(QWidget* parent, CNyrUnitSettings& settings);
    int Kind() const override;

protected:
    unsigned int InvalidTextId() const override;
    QString Mask() const override;
};

// A longitude (CNyrValueAngleLon), "E" and "W" (texts NYR_IDS_HEMISPHERE_EAST, NYR_IDS_HEMISPHERE_WEST) after
// it; "Invalid longitude" (NYR_IDS_INPUT_BAD_LONGITUDE).
class NYR_EXPORT CNyrInputLongitude : public CNyrInputValue
{
    Q_OBJECT
public:
    explicit CNyrInputLongitude(QWidget* parent = nullptr);
    CNyrInputLongitude(QWidget* parent, CNyrUnitSettings& settings);
    int Kind() const override;

protected:
    unsigned int InvalidTextId() const override;
    QString Mask() const override;
};
