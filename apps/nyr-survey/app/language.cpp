#include "apps/nyr-survey/app/language.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <cstdlib>
#include <memory>

#include "apps/nyr-survey/app/texts.h"
#include "nyr/frame/resource_module.h"

namespace survey {

namespace {

eLanguage g_language = LanguageEnglish;

struct GermanModules
{
    std::unique_ptr<CNyrResourceModule> library;
    std::unique_ptr<CNyrResourceModule> application;
};

GermanModules& German()
{
    static GermanModules modules;
    return modules;
}

bool LoadGerman(std::string* error)
{
    GermanModules& de = German();
    if (de.library && de.application)
        return true;
    const std::string dir = LanguageDir();
    if (dir.empty()) {
        if (error)
            *error = "data/lang/de.lang not found";
        return false;
    }
    auto library = CNyrResourceModule::LoadFromFile(dir + "/de.lang", error);
    if (!library)
        return false;
    auto application = CNyrResourceModule::LoadFromFile(dir + "/nyr-survey-de.lang", error);
    if (!application)
        return false;
    de.library = std::move(library);
    de.application = std::move(application);
    return true;
}

}  // namespace

std::string LanguageDir()
{
    QStringList candidates;
    if (const char* env = std::getenv("NYR240_LANG_DIR"); env && *env)
        candidates << QString::fromLocal8Bit(env);
    const QString bin = QCoreApplication::applicationDirPath();
    candidates << bin + "/../share/nyr240/lang" << QStringLiteral(NYR_SURVEY_SOURCE_LANG_DIR);
    for (const QString& dir : candidates)
        if (QFileInfo::exists(dir + "/de.lang"))
            return QDir(dir).canonicalPath().toStdString();
    return {};
}

bool SetLanguage(eLanguage language, std::string* error)
{
    if (language == LanguageGerman) {
        if (!LoadGerman(error))
            return false;
        NyrSetNyrResourceHandle(German().library.get());
        // A text the module lacks stays English rather than going blank.
        InstallEnglishTexts();
        std::size_t count = 0;
        const unsigned int* ids = TextIds(count);
        std::string text;
        for (std::size_t i = 0; i < count; ++i)
            if (German().application->LoadString(ids[i], text) && !text.empty())
                CNyrResourceModule::Host()->SetString(ids[i], text);
    } else {
        NyrSetNyrResourceHandle(CNyrResourceModule::Library());
        InstallEnglishTexts();
    }
    g_language = language;
    return true;
}

eLanguage CurrentLanguage()
{
    return g_language;
}

}  // namespace survey

namespace survey {

std::string GermanText(unsigned int id)
{
    std::string text;
    if (LoadGerman(nullptr))
        German().application->LoadString(id, text);
    return text;
}

}  // namespace survey
