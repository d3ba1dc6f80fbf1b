#pragma once

#include <map>
#include <memory>
#include <string>

#include "nyr/frame/text_ids.h"  // the library's texts by name
#include "nyr/platform/export.h"

// A resource module is a catalogue of numbered texts. The library's own
// module holds the built-in English table; a language module is loaded from a
// UTF-8 file (format below); a host may build modules of its own in code.
//
// Language module file format, one entry per line:
//     # comment            (lines starting with '#' and blank lines are ignored)
//     26099 "OK"
//     26000 "ComCtl32.Dll V%d.%d found.\n\nRequired is version V%d.%d or higher."
// The number is decimal, followed by blanks and one double-quoted text in
// which \n, \r, \t, \" and \\ are the only escapes. Numbers the module does
// not list load as empty texts, as unknown numbers do in the built-in table.
// A text that replaces a built-in one must keep its conversions exactly as
// written and in order ("%d.%d" stays two %d; not %ld, not %5d), so a
// translation can never take arguments the library does not pass; "%%" is a
// percent sign; a conversion printf does not know or that is cut off
// ("100%", "%z", "%.66") is refused. Texts of numbers the library does not
// use are the host's (time patterns, its own messages) and taken as they
// are. A zero byte anywhere refuses the module. Files are read up to
// kMaxFileSize bytes, regular files only; a module is loaded whole or not.
class NYR_EXPORT CNyrResourceModule
{
public:
    explicit CNyrResourceModule(std::string name = {});
    ~CNyrResourceModule();
    CNyrResourceModule(const CNyrResourceModule&) = delete;
    CNyrResourceModule& operator=(const CNyrResourceModule&) = delete;

    // The library's own module with the built-in table; lives for the process.
    static CNyrResourceModule* Library();
    // The host application's module, current at start-up. It holds no texts
    // until the host adds its own with SetString.
    static CNyrResourceModule* Host();

    // Language modules are read up to this size (the whole table takes
    // about 20 KiB).
    static constexpr std::size_t kMaxFileSize = std::size_t{4} << 20;

    // Loads a language module. Returns null and describes the first problem
    // ("file:line: reason") in *error when the file cannot be read (not a
    // regular file, larger than kMaxFileSize) or a line is malformed; a module
    // is never half loaded.
    static std::unique_ptr<CNyrResourceModule> LoadFromFile(const std::string& path, std::string* error = nullptr);

    // Parses the file format above from memory; same rules as LoadFromFile.
    static std::unique_ptr<CNyrResourceModule> LoadFromText(const std::string& text, const std::string& name,
                                                            std::string* error = nullptr);

    // The text with that number; false (and an empty text) when there is none.
    bool LoadString(unsigned id, std::string& text) const;
    void SetString(unsigned id, std::string text);
    std::size_t Size() const;
    const std::string& Name() const;

    // Every entry in number order, written in the file format above (empty
    // when memory runs out).
    std::string ToText() const;

private:
    friend struct CNyrBuiltinTexts;
    static std::unique_ptr<CNyrResourceModule> Parse(const std::string& text, const std::string& name,
                                                     std::string* error);
    std::string m_name;
    std::map<unsigned, std::string> m_texts;  // empty for the library module: it reads the built-in table
    bool m_builtin = false;
};

// A module handle as the resource-switching functions pass it around. The
// handle does not own the module: a module loaded from a file must outlive
// every use of its handle (keep it for the life of the process). Null
// is a module without texts; it cannot be saved by NyrSetResourceHandle (the
// slot reads null as empty), so hosts pass CNyrResourceModule::Host() instead.
using NyrResourceHandle = CNyrResourceModule*;

// The module the library loads its own texts from. At start-up it is
// CNyrResourceModule::Library(); a host replaces it for a language module.
NYR_EXPORT void NyrSetNyrResourceHandle(NyrResourceHandle module);
NYR_EXPORT NyrResourceHandle NyrGetNyrResourceHandle();

// The process's current resource module, the one a text load reads from (the
// window framework's module state). Starts as CNyrResourceModule::Host().
NYR_EXPORT NyrResourceHandle NyrGetCurrentResourceHandle();
NYR_EXPORT void NyrSetCurrentResourceHandle(NyrResourceHandle module);

// Saves the current module in the single save slot and makes `module` current.
// The slot holds one module, not a stack: a second set before the restore
// overwrites it. This is intended; calls must not be nested.
NYR_EXPORT void NyrSetResourceHandle(NyrResourceHandle module);
// Makes the saved module current again and empties the slot; does nothing
// when the slot is empty.
NYR_EXPORT void NyrRestoreResourceHandle();

// Loads a text of the current resource module; empty when it has none.
NYR_EXPORT std::string NyrLoadCurrentString(unsigned id);

// Loads one of the library's texts through the fixed sequence: get the
// library's module, set it current, load, restore.
NYR_EXPORT std::string NyrLoadString(unsigned id);

// Loads a text of the given module through the same sequence.
NYR_EXPORT std::string NyrLoadString(NyrResourceHandle module, unsigned id);
