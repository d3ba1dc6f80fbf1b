#include "nyrwidgets/msgbox/message_box_settings_lookup_table.h"

#include <algorithm>
#include <charconv>
#include <set>

#include "nyr/platform/ascii_p.h"
#include "nyr/util/profile_entries.h"
#include "nyrwidgets/frame/wait_cursor.h"
#include "nyrwidgets/msgbox/message_box_p.h"

using nyr::msgbox::NormalisedKey;
using nyr::msgbox::RelativeKey;

namespace {

// Whether `key` is `prefix` or lies below it; every key lies below "".
bool AtOrBelow(const std::string& key, const std::string& prefix)
{
    if (prefix.empty())
        return true;
    if (key.size() < prefix.size() || !nyr::ascii::EqualsNoCase(key.substr(0, prefix.size()), prefix))
        return false;
    return key.size() == prefix.size() || key[prefix.size()] == '/';
}

// An entry of the library's settings file that is a whole decimal number;
// -1 (no valid flag or answer) when absent or anything else ("abc", "6x").
int ReadWholeInt(const std::string& section, const char* entry)
{
    const std::string text = CNyrProfileEntries::ReadNyrProfileString(section, entry, {});
    int value = -1;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    return error == std::errc() && end == text.data() + text.size() ? value : -1;
}

}  // namespace

bool CNyrMessageBoxSettingsLookupTable::LessNoCase::operator()(const std::string& a, const std::string& b) const
{
    return nyr::ascii::CompareNoCase(a, b) < 0;
}

CNyrMessageBoxSettingsLookupTable::CNyrMessageBoxSettingsLookupTable() = default;
CNyrMessageBoxSettingsLookupTable::~CNyrMessageBoxSettingsLookupTable() = default;

CNyrMessageBoxSettingsLookupTable& CNyrMessageBoxSettingsLookupTable::Default()
{
    static CNyrMessageBoxSettingsLookupTable table;
    return table;
}

int CNyrMessageBoxSettingsLookupTable::AddMessage(const std::string& key, const PERSISTENT_MSG& msg)
{
    const std::string section = NormalisedKey(key);
    if (section.empty())
        return 0;
    Entry entry{msg};
    ReadIniFile(section, entry.msg);
    entry.orgDoNotPrompt = entry.msg.doNotPromptInFuture;
    entry.orgDefaultValue = entry.msg.defaultValue;
    m_entries.insert_or_assign(section, std::move(entry));
    return 1;
}

int CNyrMessageBoxSettingsLookupTable::LookUpMessage(const std::string& key, PERSISTENT_MSG& msg) const
{
    const auto it = m_entries.find(NormalisedKey(key));
    if (it == m_entries.end())
        return 0;
    msg = it->second.msg;
    return 1;
}

int CNyrMessageBoxSettingsLookupTable::UpdateMessage(const std::string& key, const PERSISTENT_MSG& msg, int write)
{
    const std::string section = NormalisedKey(key);
    if (msg.defaultValue < 1 || section.empty())
        return 0;
    if (write) {
        CNyrProfileEntries::WriteNyrProfileInt(section, CNyrProfileEntries::MessageBoxDoNotPromptInFuture(),
                                               msg.doNotPromptInFuture);
        CNyrProfileEntries::WriteNyrProfileInt(section, CNyrProfileEntries::MessageBoxDefaultValue(), msg.defaultValue);
    }
    Entry& entry = m_entries.try_emplace(section, Entry{msg, msg.doNotPromptInFuture, msg.defaultValue}).first->second;
    entry.msg = msg;
    if (write) {  // what the file holds is the original now
        entry.orgDoNotPrompt = msg.doNotPromptInFuture;
        entry.orgDefaultValue = msg.defaultValue;
    }
    return 1;
}

int CNyrMessageBoxSettingsLookupTable::ReadIniFile(const std::string& key, PERSISTENT_MSG& msg) const
{
    const std::string section = NormalisedKey(key);
    if (section.empty())
        return 0;
    const int flag = ReadWholeInt(section, CNyrProfileEntries::MessageBoxDoNotPromptInFuture());
    const int value = ReadWholeInt(section, CNyrProfileEntries::MessageBoxDefaultValue());
    if ((flag != 0 && flag != 1) || !nyr::msgbox::IsResultCode(value))
        return 0;
    msg.doNotPromptInFuture = flag;
    msg.defaultValue = value;
    return 1;
}

void CNyrMessageBoxSettingsLookupTable::DoNotPromptInFutureAllMessages(int doNotPrompt, const std::string& prefix)
{
    const std::string level = RelativeKey(prefix);
    for (auto& [section, entry] : m_entries)
        if (AtOrBelow(RelativeKey(section), level))
            entry.msg.doNotPromptInFuture = doNotPrompt ? 1 : 0;
}

void CNyrMessageBoxSettingsLookupTable::HoldOrgValues()
{
    for (auto& [section, entry] : m_entries) {
        entry.orgDoNotPrompt = entry.msg.doNotPromptInFuture;
        entry.orgDefaultValue = entry.msg.defaultValue;
    }
}

void CNyrMessageBoxSettingsLookupTable::RestoreOrgValues()
{
    for (auto& [section, entry] : m_entries) {
        entry.msg.doNotPromptInFuture = entry.orgDoNotPrompt;
        entry.msg.defaultValue = entry.orgDefaultValue;
    }
}

bool CNyrMessageBoxSettingsLookupTable::IsModified() const
{
    return std::any_of(m_entries.begin(), m_entries.end(), [](const auto& e) {
        return e.second.msg.doNotPromptInFuture != e.second.orgDoNotPrompt ||
               e.second.msg.defaultValue != e.second.orgDefaultValue;
    });
}

int CNyrMessageBoxSettingsLookupTable::WriteIniFile()
{
    const CNyrWaitCursor wait;
    int written = 0;
    for (const auto& [section, entry] : m_entries) {
        if (section.empty())
            continue;
        const int flagWritten = CNyrProfileEntries::WriteNyrProfileInt(
            section, CNyrProfileEntries::MessageBoxDoNotPromptInFuture(), entry.msg.doNotPromptInFuture);
        const int valueWritten = CNyrProfileEntries::WriteNyrProfileInt(
            section, CNyrProfileEntries::MessageBoxDefaultValue(), entry.msg.defaultValue);
        if (flagWritten && valueWritten)
            ++written;
    }
    return written;
}

int CNyrMessageBoxSettingsLookupTable::GetSize() const
{
    return static_cast<int>(m_entries.size());
}

std::vector<CNyrMessageBox::MessageEntry> CNyrMessageBoxSettingsLookupTable::GetMessages(
    const std::string& prefix) const
{
    const std::string level = RelativeKey(prefix);
    std::vector<CNyrMessageBox::MessageEntry> messages;
    for (const auto& [section, entry] : m_entries) {
        std::string key = RelativeKey(section);
        if (AtOrBelow(key, level))
            messages.emplace_back(std::move(key), entry.msg);
    }
    return messages;
}

std::vector<std::string> CNyrMessageBoxSettingsLookupTable::GetMessageKeys(const std::string& prefix) const
{
    std::vector<std::string> keys;
    for (auto& message : GetMessages(prefix))
        keys.push_back(std::move(message.first));
    return keys;
}

std::vector<std::string> CNyrMessageBoxSettingsLookupTable::GetMessageSubKeys(const std::string& prefix) const
{
    const std::string level = RelativeKey(prefix);
    const std::size_t skip = level.empty() ? 0 : level.size() + 1;
    std::set<std::string, LessNoCase> names;
    for (const std::string& key : GetMessageKeys(level)) {
        if (key.size() <= skip)
            continue;  // the level's own message
        const std::size_t end = key.find('/', skip);
        names.insert(key.substr(skip, end == std::string::npos ? std::string::npos : end - skip));
    }
    return {names.begin(), names.end()};
}
