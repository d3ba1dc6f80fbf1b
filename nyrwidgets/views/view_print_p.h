#pragma once

// What list_view.cpp needs of the printing commands.

class CNyrListView;

namespace nyr::views_detail {

// Runs the view's print command that `message` names (Print, PrintPreview,
// ExportPdf); false for any other message.
bool OnPrintCommand(CNyrListView& view, unsigned int message);

}  // namespace nyr::views_detail
