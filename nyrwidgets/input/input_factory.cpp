// The typed field of each kind, for hosts that pick the kind at run time
// (the in-place editing of report views).
#include "nyrwidgets/input/input_control.h"
#include "nyrwidgets/input/input_number.h"
#include "nyrwidgets/input/input_string.h"
#include "nyrwidgets/input/input_time.h"
#include "nyrwidgets/input/input_value.h"

CNyrInputControl* NyrCreateInputControl(int kind, QWidget* parent)
{
    switch (kind) {
    case NYR_INPUT_INTEGER: return new CNyrInputInteger(parent);
    case NYR_INPUT_FLOAT: return new CNyrInputFloat(parent);
    case NYR_INPUT_STRING: return new CNyrInputString(parent);
    case NYR_INPUT_FILENAME: return new CNyrInputFileName(parent);
    case NYR_INPUT_ANGLE: return new CNyrInputAngle(parent);
    case NYR_INPUT_DISTANCE: return new CNyrInputDistance(parent);
    case NYR_INPUT_LATITUDE: return new CNyrInputLatitude(parent);
    case NYR_INPUT_LONGITUDE: return new CNyrInputLongitude(parent);
    case NYR_INPUT_DATETIME: return new CNyrInputDateTime(parent);
    case NYR_INPUT_TIMESPAN: return new CNyrInputTimeSpan(parent);
    default: return nullptr;
    }
}
