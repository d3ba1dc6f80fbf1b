#pragma once

#include <cstddef>
#include <cstdint>

#include "apps/nyr-survey/project/survey_project.h"

class CNyrProgress;

namespace survey {

// The built-in sample: a control network of 300 points around a town on
// the Neckar (UTM zone 32N): trig points, benchmarks, traverse and ground
// control points, observed in an autumn-to-winter campaign whose night
// sessions run through the end of daylight saving time in central Europe
// (2016-10-30, 03:00 CEST -> 02:00 CET) and through the leap second at the
// end of 2016. The first trig point is the base. The same points every time.
ProjectData MakeSampleProject();

// `count` points of the same kind spread over 50 km x 50 km, for trying the
// list at scale; `seed` picks the points. For any thread: `progress` (may be
// null) is told the points made, and once it is cancelled the points made
// so far come back.
ProjectData MakeTestData(std::size_t count, uint64_t seed = 1, CNyrProgress* progress = nullptr);

}  // namespace survey
