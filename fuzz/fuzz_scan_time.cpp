// Reading time text back with a pattern, and formatting with that pattern.
// Input: the pattern up to the first line break, then the text.
#include <cstddef>
#include <cstdint>
#include <string>

#include "nyr/time/time.h"
#include "nyr/util/profile_entries.h"

extern "C" int LLVMFuzzerInitialize(int*, char***)
{
    NyrSetProfilePath("/nonexistent/nyr-fuzz/Nyr240.INI");  // never touch a real settings file
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const std::string input(reinterpret_cast<const char*>(data), size);
    const std::size_t split = input.find('\n');
    const std::string pattern = input.substr(0, split);
    const std::string text = split == std::string::npos ? std::string() : input.substr(split + 1);

    CNyrTime t;
    const double mjd = t.ScanTime(text, pattern);
    if (mjd != 0.0 && mjd != t.Mjd())
        __builtin_trap();  // the result is the MJD of the point it set
    if (t.GetFracSecond() < 0.0 || t.GetFracSecond() >= 1.0)
        __builtin_trap();
    const std::string formatted = t.Format(pattern, static_cast<int>(size % 8));
    if (formatted.size() >= 128)
        __builtin_trap();
    CNyrTime::FormatUTC(mjd, pattern);
    return 0;
}
