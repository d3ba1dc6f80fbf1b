#pragma once

// Values of the report-mode list control that the views' interface keeps.

// Column alignments (column-format values).
inline constexpr int LVCFMT_LEFT = 0;
inline constexpr int LVCFMT_RIGHT = 1;
inline constexpr int LVCFMT_CENTER = 2;

// Screen item state bits.
inline constexpr unsigned int LVIS_FOCUSED = 1;
inline constexpr unsigned int LVIS_SELECTED = 2;
