#pragma once

#include <string>
#include <utility>
#include <vector>

#include "nyr/frame/resource_module.h"
#include "nyr/platform/export.h"
#include "nyrwidgets/msgbox/message_box_dialog.h"

class QWidget;

// Message boxes whose answers the user can ask to have remembered.
//
// A message is identified by a key such as "Import/Overwrite". When the user
// ticks "Do not prompt in future" and answers, the answer is stored in the
// library's settings file (NyrGetProfilePath()) in the section
// "@NyrMessageBox/<key>" as "DoNotPromptInFuture" (0 or 1) and
// "defaultvalue" (the result code), and later calls with the same key, in
// this process or any later one, return it at once without a dialog.
//
// Keys are normalised before use: blanks are trimmed at both ends, every "\"
// becomes "/", and leading and trailing "/" are removed ("\\Import\\Overwrite/"
// is "Import/Overwrite"). Keys compare without regard to ASCII case, as the
// settings file compares its section names.
//
// Everything is class-wide and runs on the user-interface thread. The
// registered messages and their answers live in the process-wide
// CNyrMessageBoxSettingsLookupTable::Default(), created on first use.
class NYR_EXPORT CNyrMessageBox
{
public:
    // One registered message.
    struct PERSISTENT_MSG
    {
        int doNotPromptInFuture = 0;  // 1: return defaultValue without asking
        int offerDoNotPrompt = 1;     // the dialog shows "Do not prompt in future"
        int defaultValue = 0;         // remembered answer (a result code); below 1: none
        unsigned style = NYR_MB_OK;   // eNyrMessageBoxStyle flags
        std::string text;             // the message, UTF-8
        // A short label of the message for the management view
        // (CNyrMessageBoxAnswersView), which shows the text when it is empty.
        std::string description;
        // A result for which the check box is ignored; ~0u (-1): none.
        unsigned neverRemembered = ~0u;
    };
    // A message as the listing operations give it: its normalised key (without
    // the section prefix) and its entry.
    using MessageEntry = std::pair<std::string, PERSISTENT_MSG>;

    CNyrMessageBox() = delete;

    // Registers a message under `key`. When the settings file already holds a
    // remembered answer for the key (a valid pair: flag 0 or 1 and a known
    // result code), that pair replaces `doNotPrompt` and `defaultValue`: the
    // user's choice outlives the host's registration. Registering a key again
    // replaces the entry. Returns 0 (and registers nothing) for an empty key.
    static int AddMessage(const char* key, const char* text, unsigned style, int doNotPrompt = 0,
                          int offerDoNotPrompt = 1, int defaultValue = 0, unsigned neverRemembered = ~0u);
    // The same with the text loaded from `module` (the host's module, for
    // instance) by number.
    static int AddMessage(const char* key, NyrResourceHandle module, unsigned textId, unsigned style,
                          int doNotPrompt = 0, int offerDoNotPrompt = 1, int defaultValue = 0,
                          unsigned neverRemembered = ~0u);

    // Copies the registered message of `key` into `msg`; non-zero when found.
    static int LookUpMessage(const char* key, PERSISTENT_MSG& msg);

    // For registered messages only: -1, and nothing shown, when `key` is not
    // registered. An empty or null `text` is replaced by the registered text;
    // the result is ShowMessageDialog's with the registered style.
    static int ShowMessage(QWidget* parent, const char* key, const char* text = nullptr,
                           const char* caption = nullptr);
    static int ShowMessage(QWidget* parent, const char* key, NyrResourceHandle module, unsigned textId,
                           const char* caption = nullptr);

    // The general call; returns the result code.
    //  1. An empty or null caption becomes the application's name.
    //  2. The key is normalised; an empty key becomes the caption.
    //  3. The section "@NyrMessageBox/<key>" is looked up in the table. A key
    //     that is not registered is shown as a message offering the check box,
    //     with the answer remembered for it in the settings file, if any.
    //  4. When the message's do-not-prompt flag is set, its default value is
    //     returned at once; nothing is shown.
    //  5. Otherwise the dialog is shown modally with the message's default
    //     value (as default button) and check-box offer. A wait cursor shown
    //     before gives way to the normal cursor while the dialog is up and is
    //     shown again afterwards; the focus goes back where it was. A dialog
    //     destroyed with its parent while up gives its cancel value and
    //     stores nothing.
    //  6. Cancel (2) and Abort (3) are never remembered: intended, a user who
    //     backs out has not answered.
    //  7. Any other answer: when the check box is offered and the answer is
    //     not the message's never-remembered result, the do-not-prompt flag
    //     is set from the check box; the default value becomes the answer;
    //     both are stored (UpdateMessage with write) and the key is registered.
    //  8. The answer is returned.
    static int ShowMessageDialog(const char* key, QWidget* parent, const char* text, const char* caption,
                                 unsigned style);

    // Sets (non-zero) or clears the do-not-prompt flag of every registered
    // message, in the table only: WriteIniFile stores it. A message set so
    // without an answer returns its default value (0 when none was given).
    static void DoNotPromptInFutureAllMessages(int doNotPrompt);

    // The registered messages at or below a key level: `prefix` "Import"
    // takes "Import" and "Import/...", not "Importer"; empty takes all. The
    // prefix is normalised and may carry the section prefix. Ordered by key.
    static std::vector<MessageEntry> GetMessages(const char* prefix = "");
    static std::vector<std::string> GetMessageKeys(const char* prefix = "");
    // The distinct names of the next key level below `prefix`: with the keys
    // "Import/Overwrite" and "Import/Units/Angle", "Import" gives "Overwrite"
    // and "Units", and "" gives "Import".
    static std::vector<std::string> GetMessageSubKeys(const char* prefix = "");

    // Split a key or section path: any leading "@NyrMessageBox/" removed and
    // "\" read as "/", GetFirst is the part before the first "/" (all of it
    // when there is none) and GetRest the part after it (empty when none).
    static std::string GetFirst(const char* path);
    static std::string GetRest(const char* path);

    // Normalises `key` in place (see above) and returns non-zero when it is
    // well formed: not empty, no empty level ("a//b"), at most kMaxKeyLevels
    // levels, and no character that the settings file refuses in a section
    // name ("]", CR, LF, NUL: the answer of such a key is not stored). Only
    // the report depends on these rules; ShowMessageDialog goes on with any key.
    static int CheckKey(std::string& key);
    static constexpr int kMaxKeyLevels = 8;

    // The section name of a key: "@NyrMessageBox/" + the normalised key.
    static std::string SectionName(const char* key);

    // Four class-wide texts for the management view (CNyrMessageBoxAnswersView):
    // 1 the heading of its key column, 2 of its answer column, 3 of its text
    // column, 4 the label of the item that stands for all messages. Empty at
    // start. The overloads taking a number load it from the current resource
    // module (the host's, unless switched).
    static void SetSub1Text(const char* text);
    static void SetSub2Text(const char* text);
    static void SetSub3Text(const char* text);
    static void SetSub4Text(const char* text);
    static void SetSub1Text(unsigned textId);
    static void SetSub2Text(unsigned textId);
    static void SetSub3Text(unsigned textId);
    static void SetSub4Text(unsigned textId);
    static std::string GetSub1Text();
    static std::string GetSub2Text();
    static std::string GetSub3Text();
    static std::string GetSub4Text();
};
