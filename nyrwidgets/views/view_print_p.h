#pragma once

// Shared by the files of the printing commands, and what list_view.cpp
// needs of them.

#include <string>

#include "nyrwidgets/views/views_text_p.h"

class CNyrListView;

namespace nyr::views_detail {

// Runs the view's print command that `message` names (Print, PrintPreview,
// ExportPdf); false for any other message.
bool OnPrintCommand(CNyrListView& view, unsigned int message);

}  // namespace nyr::views_detail
