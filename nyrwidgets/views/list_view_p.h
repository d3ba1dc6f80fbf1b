#pragma once

#include <Qt>

namespace nyr::views_detail {

// The Qt alignment (with vertical centring) of a column-format value.
Qt::Alignment QtAlignment(int lvcfmt);

}  // namespace nyr::views_detail
