#include "nyrwidgets/msgbox/message_box.h"

#include <QCoreApplication>
#include <QGuiApplication>
#include <QPointer>
#include <algorithm>
#include <array>

#include "nyr/platform/ascii_p.h"
#include "nyr/platform/text_p.h"
#include "nyr/util/profile_entries.h"
#include "nyrwidgets/frame/wait_cursor.h"
#include "nyrwidgets/msgbox/message_box_p.h"
#include "nyrwidgets/msgbox/message_box_settings_lookup_table.h"

namespace nyr::msgbox {

std::string NormalisedKey(const std::string& key)
{
    std::string result(nyr::text::Trimmed(key));
    std::replace(result.begin(), result.end(), '\\', '/');
    const std::size_t begin = result.find_first_not_of('/');
    if (begin == std::string::npos)
        return {};
    return result.substr(begin, result.find_last_not_of('/') - begin + 1);
}

namespace {

// "@NyrMessageBox/"
const std::string& SectionPrefix()
{
    static const std::string prefix = CNyrProfileEntries::MessageBoxDialogSettings();
    return prefix;
}

// `path` with "\" read as "/" and any leading section prefix removed.
std::string WithoutSectionPrefix(std::string path)
{
    std::replace(path.begin(), path.end(), '\\', '/');
    const std::string& prefix = SectionPrefix();
    if (path.size() >= prefix.size() && nyr::ascii::EqualsNoCase(path.substr(0, prefix.size()), prefix))
        path.erase(0, prefix.size());
    return path;
}

}  // namespace

std::string RelativeKey(const std::string& key)
{
    const std::string normalised = NormalisedKey(key);
    if (nyr::ascii::EqualsNoCase(normalised + "/", SectionPrefix()))
        return {};
    return WithoutSectionPrefix(normalised);
}

}  // namespace nyr::msgbox

namespace {

using nyr::msgbox::NormalisedKey;

std::string Text(const char* text)
{
    return text ? std::string(text) : std::string();
}

CNyrMessageBoxSettingsLookupTable& Table()
{
    return CNyrMessageBoxSettingsLookupTable::Default();
}

std::array<std::string, 4>& SubTexts()
{
    static std::array<std::string, 4> texts;
    return texts;
}

// While a wait cursor is up, the dialog gets the normal cursor; the wait
// cursor comes back when the dialog is gone.
class NormalCursorWhileAsking
{
public:
    NormalCursorWhileAsking() : m_wasWaiting(CNyrWaitCursor::IsShown())
    {
        if (m_wasWaiting)
            QGuiApplication::setOverrideCursor(Qt::ArrowCursor);
    }
    ~NormalCursorWhileAsking()
    {
        if (m_wasWaiting)
            QGuiApplication::restoreOverrideCursor();
    }
    NormalCursorWhileAsking(const NormalCursorWhileAsking&) = delete;
    NormalCursorWhileAsking& operator=(const NormalCursorWhileAsking&) = delete;

private:
    bool m_wasWaiting;
};

}  // namespace

int CNyrMessageBox::AddMessage(const char* key, const char* text, unsigned style, int doNotPrompt,
                               int offerDoNotPrompt, int defaultValue, unsigned neverRemembered)
{
    if (NormalisedKey(Text(key)).empty())
        return 0;
    PERSISTENT_MSG msg;
    msg.doNotPromptInFuture = doNotPrompt ? 1 : 0;
    msg.offerDoNotPrompt = offerDoNotPrompt ? 1 : 0;
    msg.defaultValue = defaultValue;
    msg.style = style;
    msg.text = Text(text);
    msg.neverRemembered = neverRemembered;
    return Table().AddMessage(SectionName(key), msg);
}

int CNyrMessageBox::AddMessage(const char* key, NyrResourceHandle module, unsigned textId, unsigned style,
                               int doNotPrompt, int offerDoNotPrompt, int defaultValue, unsigned neverRemembered)
{
    return AddMessage(key, NyrLoadString(module, textId).c_str(), style, doNotPrompt, offerDoNotPrompt,
                      defaultValue, neverRemembered);
}

int CNyrMessageBox::LookUpMessage(const char* key, PERSISTENT_MSG& msg)
{
    if (NormalisedKey(Text(key)).empty())
        return 0;
    return Table().LookUpMessage(SectionName(key), msg);
}

int CNyrMessageBox::ShowMessage(QWidget* parent, const char* key, const char* text, const char* caption)
{
    PERSISTENT_MSG msg;
    if (!LookUpMessage(key, msg))
        return -1;
    return ShowMessageDialog(key, parent, text && *text ? text : msg.text.c_str(), caption, msg.style);
}

int CNyrMessageBox::ShowMessage(QWidget* parent, const char* key, NyrResourceHandle module, unsigned textId,
                                const char* caption)
{
    return ShowMessage(parent, key, NyrLoadString(module, textId).c_str(), caption);
}

int CNyrMessageBox::ShowMessageDialog(const char* key, QWidget* parent, const char* text, const char* caption,
                                      unsigned style)
{
    std::string title = Text(caption);
    if (title.empty())
        title = QCoreApplication::applicationName().toStdString();

    std::string normalised = Text(key);
    CheckKey(normalised);  // the report is ignored: a malformed key still identifies its message
    if (normalised.empty())
        normalised = NormalisedKey(title);
    const std::string section = SectionName(normalised.c_str());

    PERSISTENT_MSG entry;
    if (!Table().LookUpMessage(section, entry)) {
        entry.style = style;
        entry.text = Text(text);
        Table().ReadIniFile(section, entry);
    }
    if (entry.doNotPromptInFuture)
        return entry.defaultValue;

    int result = 0;
    int tick = 0;
    {
        const NormalCursorWhileAsking cursor;
        // On the heap: a parent destroyed while the dialog is up takes the
        // dialog with it.
        QPointer<CNyrMessageBoxDialog> dialog =
            new CNyrMessageBoxDialog(parent, text, title.c_str(), style, entry.defaultValue, entry.offerDoNotPrompt);
        result = dialog->ShowMessageBox();
        if (!dialog)
            return result;  // nobody answered: nothing to remember
        tick = dialog->GetDoNotPromptUser();
        delete dialog;
    }

    if (result == NYR_IDCANCEL || result == NYR_IDABORT)
        return result;  // never remembered, on purpose
    // A never-remembered result of ~0u (none) differs from every answer.
    if (entry.offerDoNotPrompt && entry.neverRemembered != static_cast<unsigned>(result))
        entry.doNotPromptInFuture = tick;
    entry.defaultValue = result;
    Table().UpdateMessage(section, entry, 1);
    return result;
}

void CNyrMessageBox::DoNotPromptInFutureAllMessages(int doNotPrompt)
{
    Table().DoNotPromptInFutureAllMessages(doNotPrompt);
}

std::vector<CNyrMessageBox::MessageEntry> CNyrMessageBox::GetMessages(const char* prefix)
{
    return Table().GetMessages(Text(prefix));
}

std::vector<std::string> CNyrMessageBox::GetMessageKeys(const char* prefix)
{
    return Table().GetMessageKeys(Text(prefix));
}

std::vector<std::string> CNyrMessageBox::GetMessageSubKeys(const char* prefix)
{
    return Table().GetMessageSubKeys(Text(prefix));
}

std::string CNyrMessageBox::GetFirst(const char* path)
{
    const std::string relative = nyr::msgbox::WithoutSectionPrefix(Text(path));
    return relative.substr(0, relative.find('/'));
}

std::string CNyrMessageBox::GetRest(const char* path)
{
    const std::string relative = nyr::msgbox::WithoutSectionPrefix(Text(path));
    const std::size_t slash = relative.find('/');
    return slash == std::string::npos ? std::string() : relative.substr(slash + 1);
}

int CNyrMessageBox::CheckKey(std::string& key)
{
    key = NormalisedKey(key);
    if (key.empty() || key.find("//") != std::string::npos)
        return 0;
    if (std::count(key.begin(), key.end(), '/') >= kMaxKeyLevels)
        return 0;
    return key.find_first_of(std::string("]\r\n\0", 4)) == std::string::npos ? 1 : 0;
}

std::string CNyrMessageBox::SectionName(const char* key)
{
    return nyr::msgbox::SectionPrefix() + NormalisedKey(Text(key));
}

void CNyrMessageBox::SetSub1Text(const char* text) { SubTexts()[0] = Text(text); }
void CNyrMessageBox::SetSub2Text(const char* text) { SubTexts()[1] = Text(text); }
void CNyrMessageBox::SetSub3Text(const char* text) { SubTexts()[2] = Text(text); }
void CNyrMessageBox::SetSub4Text(const char* text) { SubTexts()[3] = Text(text); }
void CNyrMessageBox::SetSub1Text(unsigned textId) { SubTexts()[0] = NyrLoadCurrentString(textId); }
void CNyrMessageBox::SetSub2Text(unsigned textId) { SubTexts()[1] = NyrLoadCurrentString(textId); }
void CNyrMessageBox::SetSub3Text(unsigned textId) { SubTexts()[2] = NyrLoadCurrentString(textId); }
void CNyrMessageBox::SetSub4Text(unsigned textId) { SubTexts()[3] = NyrLoadCurrentString(textId); }
std::string CNyrMessageBox::GetSub1Text() { return SubTexts()[0]; }
std::string CNyrMessageBox::GetSub2Text() { return SubTexts()[1]; }
std::string CNyrMessageBox::GetSub3Text() { return SubTexts()[2]; }
std::string CNyrMessageBox::GetSub4Text() { return SubTexts()[3]; }
