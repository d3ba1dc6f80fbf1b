#pragma once

// Helpers shared by the message box classes; not part of the interface.

#include <cstddef>
#include <string>
#include <vector>

#include "nyr/platform/export.h"

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

// The row of buttons a message box shows: pure, so that a table drives it.
struct ButtonRow
{
    struct Button
    {
        int result;          // eNyrMessageBoxResult
        unsigned captionId;  // its caption in the text table
        bool operator==(const Button&) const = default;
    };
    std::vector<Button> buttons;  // left to right, never empty
    int cancelValue;              // the answer of Escape and the close box
    std::size_t defaultIndex;     // the default button (Return), which has the focus
};

// The row for a style word (set, extended buttons, default button) and the
// remembered answer `defaultValue`, as CNyrMessageBoxDialog documents it.
// Exported for its tests.
NYR_EXPORT ButtonRow ChooseButtons(unsigned style, int defaultValue);

}  // namespace nyr::msgbox
