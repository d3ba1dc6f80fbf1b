#pragma once

#include <string>

#include "nyr/platform/export.h"

// The message data as CNyrSmtp puts it on the wire. Exported for the tests
// and fuzz targets only; not an installed header.

// Makes every line end of `text` CR LF: a CR LF stays, a bare CR and a bare
// LF each become CR LF. With `stuff`, a "." is then put in front of every
// line that begins with "." (RFC 5321 4.5.2). `text` is taken to begin a
// line. Afterwards no CR or LF stands alone, and no line of the text is a
// single "." that a server could take for the end of the data.
NYR_EXPORT void NyrSmtpWireLines(std::string& text, bool stuff);
