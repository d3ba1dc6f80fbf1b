#pragma once

#include <map>
#include <string>
#include <vector>

#include "nyr/platform/export.h"
#include "nyrwidgets/msgbox/message_box.h"

// The registered messages and their remembered answers, by section name
// ("@NyrMessageBox/Import/Overwrite"). Every key given to these operations is
// normalised as CNyrMessageBox::CheckKey does; names compare without regard
// to ASCII case, as the settings file's section names do.
//
// The table reads the settings file (NyrGetProfilePath()) per section, when a
// message is added or read with ReadIniFile (the settings store does not
// list its sections). A stored pair is used only when it is valid
// ("DoNotPromptInFuture" 0 or 1, "defaultvalue" a whole number that is a
// known result code); anything else is refused whole and the registered
// values stay. Not locked: use it from the user-interface thread.
class NYR_EXPORT CNyrMessageBoxSettingsLookupTable
{
public:
    using PERSISTENT_MSG = CNyrMessageBox::PERSISTENT_MSG;

    CNyrMessageBoxSettingsLookupTable();
    ~CNyrMessageBoxSettingsLookupTable();
    CNyrMessageBoxSettingsLookupTable(const CNyrMessageBoxSettingsLookupTable&) = delete;
    CNyrMessageBoxSettingsLookupTable& operator=(const CNyrMessageBoxSettingsLookupTable&) = delete;

    // The process-wide table of CNyrMessageBox, created on first use.
    static CNyrMessageBoxSettingsLookupTable& Default();

    // Inserts or replaces the entry of `key`, with a valid pair stored in the
    // settings file taking the place of its flag and default value. Returns 0
    // for an empty key, else 1.
    int AddMessage(const std::string& key, const PERSISTENT_MSG& msg);
    // Copies the entry of `key` into `msg`; non-zero when found.
    int LookUpMessage(const std::string& key, PERSISTENT_MSG& msg) const;
    // Refuses (returns 0, changes nothing) an entry whose default value is
    // below 1 and an empty key. With `write` non-zero the settings file gets
    // "DoNotPromptInFuture" and "defaultvalue" in the section `key` first.
    // Then the table entry is replaced or inserted (a written one also
    // becomes its original values); returns 1.
    int UpdateMessage(const std::string& key, const PERSISTENT_MSG& msg, int write);
    // Reads the remembered pair of `key` from the settings file into `msg`'s
    // flag and default value; 0 (and `msg` unchanged) when there is no valid pair.
    int ReadIniFile(const std::string& key, PERSISTENT_MSG& msg) const;

    // Sets (non-zero) or clears the do-not-prompt flag of every entry, or of
    // those at or below the key level `prefix` (as GetMessages takes it), in
    // the table only.
    void DoNotPromptInFutureAllMessages(int doNotPrompt, const std::string& prefix = {});
    // Keeps every entry's flag and default value as its original values, for
    // a management view that may be cancelled: RestoreOrgValues puts them
    // back, IsModified tells whether any differs now.
    void HoldOrgValues();
    void RestoreOrgValues();
    bool IsModified() const;
    // Writes "DoNotPromptInFuture" and "defaultvalue" of every entry (all of
    // them, answered or not) with the wait cursor shown; returns the number
    // of entries written.
    int WriteIniFile();
    int GetSize() const;

    // As CNyrMessageBox's listing operations; keys come without the section prefix.
    std::vector<CNyrMessageBox::MessageEntry> GetMessages(const std::string& prefix) const;
    std::vector<std::string> GetMessageKeys(const std::string& prefix) const;
    std::vector<std::string> GetMessageSubKeys(const std::string& prefix) const;

private:
    struct LessNoCase
    {
        bool operator()(const std::string& a, const std::string& b) const;
    };
    struct Entry
    {
        PERSISTENT_MSG msg;
        int orgDoNotPrompt = 0;  // as of the last HoldOrgValues (or insertion)
        int orgDefaultValue = 0;
    };
    std::map<std::string, Entry, LessNoCase> m_entries;  // section name -> entry
};
