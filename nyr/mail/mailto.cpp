#include "nyr/mail/mailto_p.h"

#include "nyr/mail/mail_text_p.h"

namespace {

bool HoldsAnyOf(std::string_view text, std::string_view characters)
{
    return text.find_first_of(characters) != std::string_view::npos;
}

// Appends "name=value" (the value percent-encoded) to `fields`, after
// `separator` when it holds a field already; nothing for an empty value.
void AddField(std::string& fields, char separator, const char* name, const std::string& value)
{
    if (value.empty())
        return;
    if (!fields.empty())
        fields += separator;
    fields += name;
    fields += '=';
    fields += NyrMailText::PercentEncoded(value, "@");
}

std::string Joined(const std::vector<std::string>& items, char separator)
{
    std::string joined;
    for (const auto& item : items) {
        if (!joined.empty())
            joined += separator;
        joined += item;
    }
    return joined;
}

}  // namespace

bool NyrHandOffRecipient(std::string_view name, std::string_view address, std::string& text)
{
    const std::string_view structure = "\",;<>\\";
    if (NyrMailText::HasControlCharacter(name) || NyrMailText::HasControlCharacter(address) ||
        HoldsAnyOf(name, structure) || HoldsAnyOf(address, structure) || HoldsAnyOf(address, " ()"))
        return false;
    if (address.empty() || name.empty()) {
        text = address.empty() ? name : address;
        return !text.empty();
    }
    // Names with these specials are valid in an address list only quoted.
    const bool quote = HoldsAnyOf(name, "()[]:@.");
    text = (quote ? "\"" + std::string(name) + "\"" : std::string(name)) + " <" + std::string(address) + ">";
    return true;
}

std::string NyrMailtoUri(const NyrHandOffMail& mail, bool withFiles)
{
    std::string fields;
    const std::pair<const char*, const std::vector<std::string>*> lists[] = {
        {"to", &mail.to}, {"cc", &mail.cc}, {"bcc", &mail.bcc}};
    for (const auto& [name, list] : lists)
        for (const auto& recipient : *list)
            AddField(fields, '&', name, recipient);
    AddField(fields, '&', "subject", mail.subject);
    AddField(fields, '&', "body", mail.body);
    for (const auto& file : withFiles ? mail.files : std::vector<std::string>{})
        AddField(fields, '&', "attach", file);
    return "mailto:?" + fields;
}

std::string NyrThunderbirdCompose(const NyrHandOffMail& mail)
{
    std::string argument;
    AddField(argument, ',', "to", Joined(mail.to, ','));
    AddField(argument, ',', "cc", Joined(mail.cc, ','));
    AddField(argument, ',', "bcc", Joined(mail.bcc, ','));
    AddField(argument, ',', "subject", mail.subject);
    AddField(argument, ',', "body", mail.body);
    std::vector<std::string> urls;
    for (const auto& file : mail.files)
        urls.push_back("file://" + NyrMailText::PercentEncoded(file, "/"));
    AddField(argument, ',', "attachment", Joined(urls, ','));
    return argument;
}
