#pragma once

#include <string>

// English and German for the whole application: the library's texts switch
// with the library's German module (data/lang/de.lang), the application's
// own with its module beside it (data/lang/nyr-survey-de.lang).
namespace survey {

enum eLanguage { LanguageEnglish = 0, LanguageGerman = 1 };

// The folder of the language modules: $NYR240_LANG_DIR when set, else the
// installed share/nyr240/lang beside the program's prefix, else the source
// tree's data/lang. Empty when none holds de.lang.
std::string LanguageDir();

// Switches every text. German needs both modules; when one cannot be loaded
// nothing changes, *error says why and the result is false. The modules
// loaded stay alive for the process, as the library's handles require.
bool SetLanguage(eLanguage language, std::string* error = nullptr);
eLanguage CurrentLanguage();

}  // namespace survey

namespace survey {
// The German text of one of the application's ids (loading the module on
// first use); empty when the module is not available.
std::string GermanText(unsigned int id);
}  // namespace survey
