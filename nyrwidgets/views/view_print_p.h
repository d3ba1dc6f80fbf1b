#pragma once

// Shared by the files of the printing commands, and what list_view.cpp
// needs of them.

#include <string>

class CNyrListView;

namespace nyr::views_detail {

// Runs the view's print command that `message` names (Print, PrintPreview,
// ExportPdf); false for any other message.
bool OnPrintCommand(CNyrListView& view, unsigned int message);

// A menu text as a window title: without mnemonic, shortcut and ellipsis
// ("&Print\tCtrl+P" gives "Print").
std::string MenuTextAsTitle(unsigned int textId);

}  // namespace nyr::views_detail
