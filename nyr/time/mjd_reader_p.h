#pragma once

// The MJDs of many time points in turn, for the keys of a sort by a CNyrTime
// column. Exported for the views of libNyr240Widgets; not part of the
// installed interface.

#include <cstdint>
#include <vector>

#include "nyr/platform/export.h"
#include "nyr/time/time.h"

namespace nyr::time_detail {

// Mjd() gives each point's MJD after a full local breakdown, which costs more
// than the rest of a sort key. The reader looks the zone's offset up once per
// UTC day instead (among the last 65,536 days it met) and derives the reading
// from it; only on a day when the offset changes does it break each point
// down. The result is the very number Mjd() gives (0.0 where the breakdown
// fails). One reader serves one thread, and assumes the zone stays as it is
// while it lives.
class NYR_EXPORT MjdReader
{
public:
    MjdReader();
    ~MjdReader();
    MjdReader(const MjdReader&) = delete;
    MjdReader& operator=(const MjdReader&) = delete;

    double Mjd(const CNyrTime& time);

private:
    // One UTC day: bits 63..32 the day + 2^31, bit 31 set once filled,
    // bit 30 set when one offset holds for the whole day, bits 29..0 that
    // offset in seconds + 2^29.
    std::vector<uint64_t> m_days;
};

}  // namespace nyr::time_detail
