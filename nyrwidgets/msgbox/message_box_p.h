#pragma once

// Helpers shared by the message box classes; not part of the interface.

#include <string>

namespace nyr::msgbox {

// Trimmed of blanks, "\" turned into "/", leading and trailing "/" removed.
std::string NormalisedKey(const std::string& key);

// A key or section name as the listing operations use it: normalised, with
// a leading "@NyrMessageBox/" (any case) removed; "@NyrMessageBox" alone is "".
std::string RelativeKey(const std::string& key);

// Whether a message box can answer `result` (one of eNyrMessageBoxResult).
bool IsResultCode(int result);

// The text-table number of the caption of the button answering `result`;
// 0 for an unknown result.
unsigned CaptionId(int result);

}  // namespace nyr::msgbox
