#pragma once

#include "nyr/platform/export.h"

// Display units for angles and distances. Values are held in the standard
// unit of their kind (radians, metres); these codes say how they are shown and
// entered. The numbers are stored in the settings file: never renumber them.
// Codes 2, 10, 19 and 20 are not units (2, 10 and 20 are placeholders that
// hosts pass to mean "no preference").
enum eNyrUnit
{
    NYR_UNIT_DEGREE = 11,              // decimal degrees, pi/180 rad
    NYR_UNIT_DMS = 12,                 // packed DDD.MMSSsss, shown as fields 12° 30' 15.5"
    NYR_UNIT_DECIMAL_DMS = 13,         // packed DDD.MMSSsss, shown as the packed number 12.301550
    NYR_UNIT_GRAD = 14,                // decimal grad, pi/200 rad
    NYR_UNIT_GON = 15,                 // packed GGG.CCcc, shown as fields 12g 34c 56.0cc
    NYR_UNIT_DECIMAL_GON = 16,         // packed GGG.CCcc, shown as the packed number
    NYR_UNIT_REVOLUTION = 17,          // whole turns, 2 pi rad
    NYR_UNIT_RADIANS = 18,             // the standard angle unit
    NYR_UNIT_METRES = 21,              // the standard distance unit
    NYR_UNIT_US_SURVEY_FEET = 22,      // 1200/3937 m
    NYR_UNIT_INTERNATIONAL_FEET = 23,  // 0.3048 m
};

// One row of a unit table: the unit code and the number of its selection-list
// text in the library's text table ("Metres [ m ]" is NYR_IDS_UNIT_METRES).
struct NYR_UNIT_TEXT
{
    long unit;
    long textId;
};

// The unit tables in the order the selection lists show them, each ended by
// the row {-1, -1}: distances 21, 22, 23; angles 11 to 18.
NYR_EXPORT const NYR_UNIT_TEXT* NyrUnitTableDistance();
NYR_EXPORT const NYR_UNIT_TEXT* NyrUnitTableAngle();

NYR_EXPORT bool NyrIsAngleUnit(long unit);     // 11 to 18
NYR_EXPORT bool NyrIsDistanceUnit(long unit);  // 21 to 23
