#pragma once

#include <cstddef>
#include <span>

// The library's built-in English text table, sorted by number.
struct CNyrBuiltinText
{
    unsigned id;
    const char* text;
};

std::span<const CNyrBuiltinText> NyrBuiltinTexts();
