#pragma once

// Names of the texts in the library's text table, for NyrLoadString:
// NyrLoadString(NYR_IDS_MENU_SORT_ASCENDING) is "&Ascending" or its
// translation. The numbers are part of the interface, since language
// modules translate by number; the list with the numbers is
// nyr/frame/text_ids.def.
enum NyrTextId : unsigned
{
#define NYR_TEXT_ID(name, number) NYR_IDS_##name = (number),
#include "nyr/frame/text_ids.def"
#undef NYR_TEXT_ID
};
