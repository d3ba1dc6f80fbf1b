#pragma once

#include <string>
#include <vector>

#include "tests/support/temp_dir.h"

// Runs the built nyr tool with the given arguments.
inline nyr::test::ProcessResult Nyr(std::vector<std::string> args, const std::string& input = {})
{
    args.insert(args.begin(), NYR_TOOL);
    return nyr::test::RunProcess(args, input);
}
