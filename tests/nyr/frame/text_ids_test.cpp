// The named text identifiers: each stands for its text, and the sources use
// the names.
#include "nyr/frame/text_ids.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <regex>
#include <sstream>
#include <string>

#include "nyr/frame/resource_module.h"

namespace {

struct NamedText
{
    const char* name;
    unsigned id;
};

constexpr NamedText kNamed[] = {
#define NYR_TEXT_ID(name, number) {#name, NYR_IDS_##name},
#include "nyr/frame/text_ids.def"
#undef NYR_TEXT_ID
};

TEST(TextIds, EveryNameLoadsItsText)
{
    for (const NamedText& named : kNamed)
        EXPECT_FALSE(NyrLoadString(named.id).empty()) << named.name << " " << named.id;
}

// Language modules translate by number, so a name must never move to
// another number. A sample across the families.
TEST(TextIds, NamesKeepTheirNumbers)
{
    const struct
    {
        unsigned id;
        unsigned number;
        const char* text;
    } cases[] = {
        {NYR_IDS_VERSION_COMCTL32, 26000, "ComCtl32.Dll V%d.%d found.\n\nRequired is version V%d.%d or higher."},
        {NYR_IDS_OK, 26005, "OK"},
        {NYR_IDS_HEMISPHERE_WEST, 26013, "W"},
        {NYR_IDS_MENU_SORT_ASCENDING, 26024, "&Ascending"},
        {NYR_IDS_ROWS_CHECKED, 26049, "Checked"},
        {NYR_IDS_INPUT_MINIMUM, 26079, "Minimum value is %MIN"},
        {NYR_IDS_BUTTON_OK, 26099, "OK"},
        {NYR_IDS_UNIT_RADIANS, 26127, "Radians [ rad ]"},
        {NYR_IDS_SMTP_ERROR, 26150, "SMTP error."},
        {NYR_IDS_SOCKET_ERROR, 26174, "Socket error."},
        {NYR_IDS_SIZE_GB, 26200, "%.*f GB"},
        {NYR_IDS_SAVE_AS_TITLE, 26242, "Save List As"},
        {NYR_IDS_FRACTION_THREE_QUARTERS, 26285, "\u00be"},
        {NYR_IDS_TIP_HELP, 56125, "Help"},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(c.id, c.number);
        EXPECT_EQ(NyrLoadString(c.id), c.text) << c.number;
    }
}

// A bare number in a source is a text nobody can find by name. Only the
// table, the list of names and the language file format example hold the
// numbers.
TEST(TextIds, SourcesUseTheNames)
{
    namespace fs = std::filesystem;
    // With or without an integer suffix (26132u).
    const std::regex bare(R"((^|[^\w.])(26[0-4]\d\d|5612[0-5])[uUlL]*($|[^\w.]))");
    int files = 0;
    for (const char* top : {"nyr", "nyrwidgets", "apps"}) {
        for (const auto& entry : fs::recursive_directory_iterator(fs::path(NYR_SOURCE_DIR) / top)) {
            const fs::path& path = entry.path();
            if (!entry.is_regular_file() || (path.extension() != ".cpp" && path.extension() != ".h") ||
                path.filename() == "text_table.cpp" || path.filename() == "resource_module.h")
                continue;
            ++files;
            std::ifstream in(path);
            std::string line;
            for (int number = 1; std::getline(in, line); ++number)
                EXPECT_FALSE(std::regex_search(line, bare)) << path.string() << ":" << number << ": " << line;
        }
    }
    EXPECT_GT(files, 100);
}

}  // namespace
