#include "nyr/frame/resource_module.h"

#include <algorithm>
#include <new>
#include <string_view>
#include <vector>

#include "nyr/frame/text_table_p.h"
#include "nyr/platform/file_read.h"
#include "nyr/platform/string_format.h"

namespace {

const char* FindBuiltin(unsigned id)
{
    const auto table = NyrBuiltinTexts();
    const auto it = std::lower_bound(table.begin(), table.end(), id,
                                     [](const CNyrBuiltinText& e, unsigned key) { return e.id < key; });
    return it != table.end() && it->id == id ? it->text : nullptr;
}

struct ResourceState
{
    NyrResourceHandle nyrResource = CNyrResourceModule::Library();
    NyrResourceHandle current = CNyrResourceModule::Host();
    NyrResourceHandle saved = nullptr;  // the single save slot; null when empty
};

ResourceState& State()
{
    static ResourceState state;
    return state;
}

bool Fail(std::string* error, const std::string& name, int line, const std::string& reason)
{
    if (error)
        *error = name + ":" + std::to_string(line) + ": " + reason;
    return false;
}

// Reads one quoted text with its escapes from `in` starting at the opening quote.
bool ParseQuoted(std::string_view in, std::size_t pos, std::string& out, std::string& reason)
{
    out.clear();
    for (++pos; pos < in.size(); ++pos) {
        char c = in[pos];
        if (c == '"') {
            const auto rest = in.find_first_not_of(" \t\r", pos + 1);
            if (rest != std::string_view::npos) {
                reason = "text after the closing quote";
                return false;
            }
            return true;
        }
        if (c == '\\') {
            if (++pos == in.size())
                break;
            switch (in[pos]) {
            case 'n': c = '\n'; break;
            case 'r': c = '\r'; break;
            case 't': c = '\t'; break;
            case '"': c = '"'; break;
            case '\\': c = '\\'; break;
            default: reason = std::string("unknown escape \\") + in[pos]; return false;
            }
        }
        out += c;
    }
    reason = "missing closing quote";
    return false;
}

// "NUMBER "text"" from `first`, the line's first non-blank character.
bool ParseLine(std::string_view line, std::size_t first, unsigned& id, std::string& value, std::string& reason)
{
    std::size_t pos = first;
    unsigned long number = 0;
    while (pos < line.size() && line[pos] >= '0' && line[pos] <= '9') {
        number = number * 10 + static_cast<unsigned long>(line[pos] - '0');
        if (number > 0xFFFFFFFFul) {
            reason = "number out of range";
            return false;
        }
        ++pos;
    }
    if (pos == first) {
        reason = "a line must start with a text number";
        return false;
    }
    pos = line.find_first_not_of(" \t", pos);
    if (pos == std::string_view::npos || line[pos] != '"') {
        reason = "expected a double-quoted text after the number";
        return false;
    }
    id = static_cast<unsigned>(number);
    return ParseQuoted(line, pos, value, reason);
}

// A text that replaces a built-in one must take exactly the arguments the
// library passes with it: the conversions of the built-in text, each as
// written, in the same order. Texts of other numbers are the host's (time
// patterns, its own messages) and are taken as they are.
bool CheckConversions(unsigned id, const std::string& value, std::string& reason)
{
    const char* builtin = FindBuiltin(id);
    if (!builtin)
        return true;
    std::vector<std::string> have, want;
    if (!NyrFormatConversions(value, have)) {
        reason = "an unknown or incomplete conversion after \"" + (have.empty() ? std::string() : have.back()) +
                 "\" (write %% for a percent sign)";
        return false;
    }
    NyrFormatConversions(builtin, want);
    if (have == want)
        return true;
    std::string list;
    for (const std::string& c : want)
        list += c;
    reason = "the text must keep the conversions \"" + list + "\" of the built-in text, in that order";
    return false;
}

void AppendQuoted(std::string& out, const std::string& text)
{
    out += '"';
    for (char c : text) {
        switch (c) {
        case '\n': out += "\\n"; break;
        case '\r': out += "\\r"; break;
        case '\t': out += "\\t"; break;
        case '"': out += "\\\""; break;
        case '\\': out += "\\\\"; break;
        default: out += c;
        }
    }
    out += '"';
}

}  // namespace

struct CNyrBuiltinTexts
{
    static CNyrResourceModule* Make()
    {
        auto* module = new CNyrResourceModule("Nyr240");
        module->m_builtin = true;
        return module;
    }
};

CNyrResourceModule::CNyrResourceModule(std::string name) : m_name(std::move(name)) {}
CNyrResourceModule::~CNyrResourceModule() = default;

CNyrResourceModule* CNyrResourceModule::Library()
{
    // Never destroyed: texts may be loaded from other objects' destructors at exit.
    static CNyrResourceModule* library = CNyrBuiltinTexts::Make();
    return library;
}

CNyrResourceModule* CNyrResourceModule::Host()
{
    static CNyrResourceModule* host = new CNyrResourceModule("host");
    return host;
}

std::unique_ptr<CNyrResourceModule> CNyrResourceModule::LoadFromText(const std::string& text, const std::string& name,
                                                                     std::string* error)
{
    try {
        return Parse(text, name, error);
    } catch (const std::bad_alloc&) {
        if (error)
            *error = name + ": not enough memory";
        return nullptr;
    }
}

std::unique_ptr<CNyrResourceModule> CNyrResourceModule::Parse(const std::string& text, const std::string& name,
                                                              std::string* error)
{
    auto module = std::make_unique<CNyrResourceModule>(name);
    std::size_t begin = 0;
    for (int number = 1; begin < text.size(); ++number) {
        const std::size_t lf = text.find('\n', begin);
        const std::size_t end = lf == std::string::npos ? text.size() : lf;
        const std::string_view line(text.data() + begin, end - begin);
        begin = end + 1;
        if (line.find('\0') != std::string_view::npos)
            return Fail(error, name, number, "a zero byte"), nullptr;
        const auto first = line.find_first_not_of(" \t\r");
        if (first == std::string_view::npos || line[first] == '#')
            continue;
        unsigned id = 0;
        std::string value, reason;
        if (!ParseLine(line, first, id, value, reason) || !CheckConversions(id, value, reason))
            return Fail(error, name, number, reason), nullptr;
        module->m_texts[id] = std::move(value);
    }
    return module;
}

std::unique_ptr<CNyrResourceModule> CNyrResourceModule::LoadFromFile(const std::string& path, std::string* error)
{
    std::string content, problem;
    if (!NyrReadRegularFile(path, kMaxFileSize, content, &problem)) {
        if (error)
            *error = problem;
        return nullptr;
    }
    return LoadFromText(content, path, error);
}

bool CNyrResourceModule::LoadString(unsigned id, std::string& text) const
{
    if (m_builtin) {
        const char* found = FindBuiltin(id);
        text = found ? found : "";
        return found != nullptr;
    }
    const auto it = m_texts.find(id);
    if (it == m_texts.end()) {
        text.clear();
        return false;
    }
    text = it->second;
    return true;
}

void CNyrResourceModule::SetString(unsigned id, std::string text)
{
    try {
        if (m_builtin) {
            // The built-in table is read-only; copy its entries on first change.
            std::map<unsigned, std::string> copy;
            for (const auto& entry : NyrBuiltinTexts())
                copy.emplace(entry.id, entry.text);
            m_texts = std::move(copy);
            m_builtin = false;
        }
        m_texts[id] = std::move(text);
    } catch (const std::bad_alloc&) {
        // Out of memory: the module stays as it was.
    }
}

std::size_t CNyrResourceModule::Size() const
{
    return m_builtin ? NyrBuiltinTexts().size() : m_texts.size();
}

const std::string& CNyrResourceModule::Name() const
{
    return m_name;
}

std::string CNyrResourceModule::ToText() const
try {
    std::string out;
    auto write = [&out](unsigned id, const std::string& text) {
        out += std::to_string(id);
        out += ' ';
        AppendQuoted(out, text);
        out += '\n';
    };
    if (m_builtin) {
        for (const auto& entry : NyrBuiltinTexts())
            write(entry.id, entry.text);
    } else {
        for (const auto& [id, text] : m_texts)
            write(id, text);
    }
    return out;
} catch (const std::bad_alloc&) {
    return {};
}

void NyrSetNyrResourceHandle(NyrResourceHandle module)
{
    State().nyrResource = module;
}

NyrResourceHandle NyrGetNyrResourceHandle()
{
    return State().nyrResource;
}

NyrResourceHandle NyrGetCurrentResourceHandle()
{
    return State().current;
}

void NyrSetCurrentResourceHandle(NyrResourceHandle module)
{
    State().current = module;
}

void NyrSetResourceHandle(NyrResourceHandle module)
{
    ResourceState& state = State();
    state.saved = state.current;
    state.current = module;
}

void NyrRestoreResourceHandle()
{
    ResourceState& state = State();
    if (state.saved) {
        state.current = state.saved;
        state.saved = nullptr;
    }
}

std::string NyrLoadCurrentString(unsigned id)
{
    std::string text;
    if (const NyrResourceHandle current = State().current)
        current->LoadString(id, text);
    return text;
}

std::string NyrLoadString(NyrResourceHandle module, unsigned id)
{
    NyrSetResourceHandle(module);
    std::string text = NyrLoadCurrentString(id);
    NyrRestoreResourceHandle();
    return text;
}

std::string NyrLoadString(unsigned id)
{
    return NyrLoadString(NyrGetNyrResourceHandle(), id);
}
