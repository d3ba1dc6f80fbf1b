#pragma once

// Values of the report-mode list control that the views' interface keeps.

// Column alignments (column-format values).
inline constexpr int LVCFMT_LEFT = 0;
inline constexpr int LVCFMT_RIGHT = 1;
inline constexpr int LVCFMT_CENTER = 2;

// Screen item state bits.
inline constexpr unsigned int LVIS_FOCUSED = 1;
inline constexpr unsigned int LVIS_SELECTED = 2;

// The unsigned index that names no row or column (all bits set): it ends a
// sort state early wherever it stands, makes ShowFindDialog search all
// columns, and is what the report view's Add... operations answer when they
// add nothing.
inline constexpr unsigned int NYR_NO_INDEX = 0xFFFFFFFFu;
