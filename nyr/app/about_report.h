#pragma once

#include <string>
#include <utility>
#include <vector>

#include "nyr/platform/export.h"

// The library's version, "major.minor.patch" ("2.4.0").
NYR_EXPORT const char* NyrLibraryVersion();

// One line of an About report: a label and its value.
using CNyrAboutLine = std::pair<std::string, std::string>;

// What an About box shows and a bug report needs, as labelled lines (labels
// from the text table):
//   Application          NAME VERSION
//   Library              Nyr240 VERSION
//   ...                  `more`, in order (the widgets add the Qt line)
//   Operating system     uname's system, release and machine
//   System requirements  "All requirements are met." or "Not met (CODE): TEXT"
//                        (NyrCheckAllRequirements)
// Loads texts and runs the requirements check: for the user-interface thread.
NYR_EXPORT std::vector<CNyrAboutLine> NyrAboutLines(const std::string& appName, const std::string& appVersion,
                                                    const std::vector<CNyrAboutLine>& more = {});

// The lines as plain text, "Label: value" each, ending in "\n": what goes to
// the clipboard.
NYR_EXPORT std::string NyrAboutText(const std::vector<CNyrAboutLine>& lines);
