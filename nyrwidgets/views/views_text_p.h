#pragma once

// The library's texts as the views' menus, buttons and titles show them.

#include <QString>
#include <string>

namespace nyr::views_detail {

// A text of the library's text table.
QString Text(unsigned int textId);

// A menu text as a button's: without its shortcut and trailing dots, the
// mnemonic kept ("&Select All\tCtrl+A" gives "&Select All").
QString MenuTextAsButton(unsigned int textId);

// A menu text as a window title: without mnemonic, shortcut and trailing
// dots ("&Print\tCtrl+P" gives "Print", "&Columns..." gives "Columns").
std::string MenuTextAsTitle(unsigned int textId);

}  // namespace nyr::views_detail
