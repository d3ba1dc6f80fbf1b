// Language-module files, checked against the built-in texts. Besides
// crashes: a module either loads whole or is refused with its reason; every
// text it accepts formats with the library's own arguments to a text that
// shows each argument, in order (never an empty one); the module's dump reads
// back to itself.
#include <cstdarg>
#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "nyr/frame/resource_module.h"
#include "nyr/platform/string_format.h"

namespace {

std::string Formatted(const char* format, ...)
{
    va_list args;
    va_start(args, format);
    std::string out = NyrFormatV(format, args);
    va_end(args);
    return out;
}

// The text with "%%" read as "%": what a text without conversions formats to.
std::string Unescaped(const std::string& text)
{
    std::string out;
    for (std::size_t i = 0; i < text.size(); ++i) {
        out += text[i];
        if (text[i] == '%' && i + 1 < text.size() && text[i + 1] == '%')
            ++i;
    }
    return out;
}

bool ShowsInOrder(const std::string& text, const std::vector<std::string>& parts)
{
    std::size_t at = 0;
    for (const std::string& part : parts) {
        at = text.find(part, at);
        if (at == std::string::npos)
            return false;
        at += part.size();
    }
    return true;
}

// Formats `text` as the library formats the built-in text with these
// conversions; false when this target does not know how the library calls it.
bool Check(const std::string& text, const std::string& conversions)
{
    const char* t = text.c_str();
    std::string out;
    std::vector<std::string> shown;
    if (conversions.empty()) {
        if (Formatted(t) != Unescaped(text))
            __builtin_trap();
        return true;
    } else if (conversions == "%d") {
        out = Formatted(t, 90001), shown = {"90001"};
    } else if (conversions == "%d%d") {
        out = Formatted(t, 90001, 90002), shown = {"90001", "90002"};
    } else if (conversions == "%d%d%d%d") {
        out = Formatted(t, 90001, 90002, 90003, 90004), shown = {"90001", "90002", "90003", "90004"};
    } else if (conversions == "%s") {
        out = Formatted(t, "<arg>"), shown = {"<arg>"};
    } else if (conversions == "%s%s") {
        out = Formatted(t, "<one>", "<two>"), shown = {"<one>", "<two>"};
    } else if (conversions == "%s%d") {
        out = Formatted(t, "<arg>", 90001), shown = {"<arg>", "90001"};
    } else if (conversions == "%.*f") {
        out = Formatted(t, 3, 0.125), shown = {"0.125"};
    } else {
        return false;  // placeholders such as %MIN are not printf's
    }
    if (out.empty() || !ShowsInOrder(out, shown))
        __builtin_trap();
    return true;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const std::string text(reinterpret_cast<const char*>(data), size);
    std::string error;
    const auto module = CNyrResourceModule::LoadFromText(text, "fuzz.lang", &error);
    if (!module) {
        if (error.rfind("fuzz.lang:", 0) != 0)
            __builtin_trap();  // a refusal names the module and line
        return 0;
    }
    const std::string dump = module->ToText();
    for (unsigned id : {26000u, 26064u, 26065u, 26066u, 26197u, 26198u, 26204u, 26272u, 26306u, 26308u, 26310u,
                        26312u, 26005u, 26099u}) {
        std::string translated;
        if (!module->LoadString(id, translated))
            continue;
        std::vector<std::string> list;
        if (!NyrFormatConversions(NyrLoadString(CNyrResourceModule::Library(), id), list))
            __builtin_trap();  // the built-in texts are well formed
        std::string conversions;
        for (const std::string& c : list)
            conversions += c;
        Check(translated, conversions);
    }
    const auto again = CNyrResourceModule::LoadFromText(dump, "dump", &error);
    if (!again || again->ToText() != dump)
        __builtin_trap();
    return 0;
}
