// The library's built-in English text table. Numbers are part of the
// interface: hosts and language modules refer to them. Keep the table sorted.
#include "nyr/frame/text_table_p.h"

#include <algorithm>
#include <functional>

#include "nyr/frame/text_ids.h"

namespace {

constexpr CNyrBuiltinText kTexts[] = {
    // System library version messages
    {26000, "ComCtl32.Dll V%d.%d found.\n\nRequired is version V%d.%d or higher."},
    {26001, "Shell32.Dll V%d.%d found.\n\nRequired is version V%d.%d or higher."},
    {26002, "Shlwapi.Dll V%d.%d found.\n\nRequired is version V%d.%d or higher."},
    {26003, "Mfc42.Dll V%d.%d found.\n\nRequired is version V%d.%d or higher."},
    {26004, "Mfc70.Dll V%d.%d found.\n\nRequired is version V%d.%d or higher."},
    // General words
    {26005, "OK"},
    {26006, "New Folder"},
    {26007, "Loading items..."},
    {26008, "[All columns]"},
    {26009, "<No Selection>"},
    // Hemisphere letters
    {26010, "N"},
    {26011, "S"},
    {26012, "E"},
    {26013, "W"},
    // Boolean words
    {26014, "Yes"},
    {26015, "No"},
    {26016, "True"},
    {26017, "False"},
    {26018, "On"},
    {26019, "Off"},
    // Menu and command texts of list and report views
    {26020, "S&elect"},
    {26021, "C&heck"},
    {26022, "&Auto arrange"},
    {26023, "&Sort"},
    {26024, "&Ascending"},
    {26025, "&Descending"},
    {26026, "&Original Order"},
    {26027, "&Hide"},
    {26028, "Hi&de all"},
    {26029, "View a&ll"},
    {26030, "&View"},
    {26031, "Save &As..."},
    {26032, "&Find...\tCtrl+F"},
    {26033, "Find &Next"},
    {26034, "Find P&revious"},
    {26035, "&Select All\tCtrl+A"},
    {26036, "&Invert Selection"},
    {26037, "Selec&t checked items"},
    {26038, "&Check All"},
    {26039, "In&vert Checked"},
    {26040, "&Print\tCtrl+P"},
    {26041, "&Delete\tDEL"},
    {26042, "&Modify..."},
    {26043, "&Columns..."},
    {26044, "By &multiple columns..."},
    {26045, "P&roperties...\tAlt+Enter"},
    {26046, "&Refresh\tF5"},
    {26047, "All"},
    {26048, "Selected"},
    {26049, "Checked"},
    // Find results and property list headings
    {26050, "Finished searching this view. The search item was not found."},
    {26051, "Finished searching this view. No more matches found."},
    {26052, "Property"},
    {26053, "Value"},
    // Browse-dialog titles and prompts by target kind
    {26054, "Browse for Folder"},
    {26055, "Select a directory:"},
    {26056, "Browse for Executable"},
    {26057, "Select an executable file:"},
    {26058, "Browse for Program"},
    {26059, "Select a program:"},
    {26060, "Browse for Library"},
    {26061, "Select a library:"},
    {26062, "Browse for File"},
    {26063, "Select a file:"},
    // Printed page headers
    {26064, "Page %d"},
    {26065, "Page %d of %d"},
    {26066, "Printed on %s"},
    // File-open dialog and edit-menu texts
    {26067, "Open"},
    {26068, "Save As"},
    {26069, "File &name:"},
    {26070, "Files of &type:"},
    {26071, "&Undo\tCtrl+Z"},
    {26072, "&Redo\tCtrl+Y"},
    {26073, "Cu&t\tCtrl+X"},
    {26074, "&Copy\tCtrl+C"},
    {26075, "&Paste\tCtrl+V"},
    {26076, "&Delete\tDEL"},
    {26077, "Select &All\tCtrl+A"},
    // Input validation messages and file filters
    {26078, "Field must not be empty"},
    {26079, "Minimum value is %MIN"},
    {26080, "Maximum value is %MAX"},
    {26081, "Value must be between %MIN and %MAX"},
    {26082, "Invalid number"},
    {26083, "Invalid integer number"},
    {26084, "Invalid angle"},
    {26085, "Invalid distance"},
    {26086, "Invalid latitude"},
    {26087, "Invalid longitude"},
    {26088, "Invalid date"},
    {26089, "Invalid time"},
    {26090, "Invalid time span"},
    {26091, "Invalid file name"},
    {26092, "File does not exist"},
    {26093, "Folder does not exist"},
    {26094, "Same column selected twice"},
    {26095, "Text must not be longer than %MAX characters"},
    {26096, "All Files (*.*)|*.*||"},
    {26097, "Text Files (*.txt)|*.txt|All Files (*.*)|*.*||"},
    {26098, "Libraries (*.so)|*.so|All Files (*.*)|*.*||"},
    // Message box buttons, check box and management titles
    {26099, "OK"},
    {26100, "Cancel"},
    {26101, "Yes"},
    {26102, "No"},
    {26103, "Abort"},
    {26104, "Ignore"},
    {26105, "Retry"},
    {26106, "&Skip"},
    {26107, "Skip &all"},
    {26108, "No &to all"},
    {26109, "Y&es to all"},
    {26110, "I&gnore all"},
    {26111, "none"},
    {26112, "OK to a&ll"},
    {26113, "&Try again"},
    {26114, "&Continue"},
    {26115, "Do not prompt in future"},
    {26116, "Remembered Answers"},
    // Unit names, angle masks and symbols
    {26117, "Metres [ m ]"},
    {26118, "US Survey feet [ fts ]"},
    {26119, "International feet [ fti ]"},
    {26120, "Degree [ dec ]"},
    {26121, "DMS [ dms ]"},
    {26122, "Decimal DMS [ dms ]"},
    {26123, "Grad [ grad ]"},
    {26124, "Gon [ gon ]"},
    {26125, "Decimal Gon [ gon ]"},
    {26126, "Revolution [ rev ]"},
    {26127, "Radians [ rad ]"},
    {26128, "-000\u00b0 00' 00.00000\""},
    {26129, "-000g 00c 00.00000cc"},
    {26130, "000\u00b0 00' 00.00000\" W"},
    {26131, "000g 00c 00.00000cc W"},
    {26132, "\""},
    {26133, "mgon"},
    {26134, "\u00b0"},
    // Mail client hand-off error texts
    {26135, "A recipient matched more than one of the recipient descriptor structures and MAPI_DIALOG was not set."},
    {26136, "The specified attachment was not found."},
    {26137, "The specified attachment could not be opened."},
    {26138, "The type of a recipient was not MAPI_TO, MAPI_CC, or MAPI_BCC."},
    {26139, "There was insufficient memory to proceed."},
    {26140, "One or more recipients were invalid or did not resolve to any address."},
    {26141, "There was no default logon, and the user failed to log on successfully when the logon dialog box was "
            "displayed."},
    {26142, "The text in the message was too large."},
    {26143, "There were too many file attachments."},
    {26144, "There were too many recipients."},
    {26145, "A recipient did not appear in the address list."},
    {26146, "One or more unspecified errors occurred."},
    {26147, "The user canceled one of the dialog boxes."},
    {26148, "The user had too many sessions open simultaneously."},
    {26149, "An invalid session handle was used for the lhSession parameter."},
    // SMTP and socket error texts
    {26150, "SMTP error."},
    {26151, "SMTP server error."},
    {26152, "SMTP server not available."},
    {26153, "SMTP server not ready for data."},
    {26154, "SMTP server didn't terminate session."},
    {26155, "SMTP server name must not be empty."},
    {26156, "Unable to create the socket."},
    {26157, "Unable to connect to server."},
    {26158, "Server didn't respond."},
    {26159, "Must be connected to SMTP server."},
    {26160, "No sender (FROM) given."},
    {26161, "No Recipient (TO) given."},
    {26162, "Socket not initialized."},
    {26163, "Network subsystem failed."},
    {26164, "Socket is not connected."},
    {26165, "Blocking Windows sockets operation is in progress."},
    {26166, "The descriptor is not a socket."},
    {26167, "Socket is not of type SOCK_STREAM."},
    {26168, "Socket has been shut down."},
    {26169, "Socket is marked as nonblocking and Receive operation would block"},
    {26170, "The datagram was too large to fit into the specified buffer and was truncated."},
    {26171, "Socket has not been bound with Bind."},
    {26172, "Virtual circuit was aborted due to timeout or other failure."},
    {26173, "Virtual circuit was reset by the remote side."},
    {26174, "Socket error."},
    // Shell browsing: column headings, attribute letters, drive kinds, sizes
    {26175, "Name"},
    {26176, "Size"},
    {26177, "Type"},
    {26178, "Modified"},
    {26179, "Attributes"},
    {26180, "Created"},
    {26181, "Accessed"},
    {26182, "Location"},
    {26183, "R"},
    {26184, "H"},
    {26185, "S"},
    {26186, "A"},
    {26187, "C"},
    {26188, "E"},
    {26189, "L"},
    {26190, "Unknown drive"},
    {26191, "No root directory"},
    {26192, "Removable disk"},
    {26193, "Local disk"},
    {26194, "Network drive"},
    {26195, "CD drive"},
    {26196, "RAM disk"},
    {26197, "%d bytes"},
    {26198, "%.*f KB"},
    {26199, "%.*f MB"},
    {26200, "%.*f GB"},
    {26201, "%.*f TB"},
    {26202, "File folder"},
    {26203, "File"},
    {26204, "%s File"},
    {26205, "Free space"},
    {26206, "Total size"},
    {26207, "Desktop"},
    {26208, "Home"},
    {26209, "Computer"},
    // Save-as and file filters
    {26241, "CSV (Comma delimited *.csv)|*.csv|Text (Tab delimited *.txt)|*.txt|Formated Text (Space delimited "
            "*.prn)|*.prn||"},
    {26242, "Save List As"},
    {26243, "Include &header"},
    // File dialog validation messages
    {26271, "The file name must not be empty."},
    {26272, "The file %s does not exist."},
    {26273, "The folder %s does not exist."},
    {26274, "The file %s already exists.\nDo you want to replace it?"},
    {26275, "The file name %s is not valid."},
    {26276, "The file %s is read-only."},
    {26277, "The file %s cannot be opened."},
    {26278, "The folder %s cannot be created."},
    {26279, "Access to %s was denied."},
    {26280, "The path %s is too long."},
    {26281, "Please select a file."},
    // Font size suffix and fraction glyphs
    {26282, " pt "},
    {26283, "\u00bc"},
    {26284, "\u00bd"},
    {26285, "\u00be"},
    // Mail: refused addresses
    {26286, "Mail address contains a control character."},
    // Mail: secure connections and login to SMTP servers
    {26287, "The SMTP server does not offer STARTTLS."},
    {26288, "The secure connection to the SMTP server failed."},
    {26289, "The certificate of the SMTP server could not be verified."},
    {26290, "SMTP authentication failed."},
    {26291, "The SMTP server offers no supported authentication method."},
    {26292, "User name and password are sent over a secure connection only."},
    // Mail: the hand-off to the user's mail client
    {26293, "The mail client cannot be started."},
    {26294, "The mail client hand-off command does not work."},
    // Find dialog and columns dialog of list and report views
    {26295, "F&ind what:"},
    {26296, "In c&olumn:"},
    {26297, "Match &whole word only"},
    {26298, "Match c&ase"},
    {26299, "Search from &beginning"},
    {26300, "Add to se&lection"},
    {26301, "Add to chec&ked"},
    {26302, "Width"},
    {26303, "Move &Up"},
    {26304, "Move &Down"},
    {26305, "De&faults"},
    // Settings store failures
    {26306, "The settings file %s is locked by another program."},
    {26307, "The settings file %s is read-only."},
    {26308, "The settings file %s is too large: settings files hold at most %d MiB."},
    {26309, "The settings file %s is not a regular file."},
    {26310, "The settings file %s cannot be read: %s"},
    {26311, "The settings file %s cannot be written: %s"},
    {26312, "The section, entry or value would break the lines of the settings file %s."},
    // Mail: addresses refused before sending
    {26320, "The mail address is not valid."},
    // Leap-second lists
    {26330, "The leap-second list cannot be read: %s"},
    {26331, "Line %d of the leap-second list %s cannot be read."},
    {26332, "The leap-second list %s has no hash line (#h): it may be cut off."},
    {26333, "The hash of the leap-second list %s does not match its data: the list is damaged or cut off."},
    {26334, "Line %d of the leap-second list %s does not follow the row before it by one second."},
    {26335, "The leap-second list %s holds no leap seconds."},
    {26336, "The leap-second table cannot be written to the settings file %s: %s"},
    {26337, "The leap-second table cannot be written to the settings file %s."},
    // Column headings of the columns dialog and the remembered-answers view
    {26340, "Column"},
    {26341, "Answer"},
    {26342, "Message"},
    // Input fields: what each typed field is for, told to assistive technology
    {26360, "Integer number"},
    {26361, "Number"},
    {26362, "Text"},
    {26363, "File name"},
    {26364, "Angle"},
    {26365, "Distance"},
    {26366, "Latitude"},
    {26367, "Longitude"},
    {26368, "Date and time"},
    {26369, "Date"},
    {26370, "Time"},
    {26371, "Time span"},
    {26372, "%s in %s"},
    // Printing of list and report views
    {26400, "Print Previe&w..."},
    {26401, "E&xport PDF..."},
    {26402, "Rows"},
    {26403, "Layout"},
    {26404, "&Fit to page width"},
    {26405, "&Keep column widths, continue on further pages"},
    {26406, "Orientation"},
    {26407, "&Portrait"},
    {26408, "&Landscape"},
    {26409, "Margins (mm)"},
    {26410, "L&eft:"},
    {26411, "&Top:"},
    {26412, "&Right:"},
    {26413, "&Bottom:"},
    {26414, "The page is too small to print on. Choose smaller margins or a larger page."},
    {26415, "The PDF file %s cannot be written:\n%s"},
    {26416, "The printer could not print the pages."},
    {26417, "PDF files (*.pdf)"},
    // Application services: dialog buttons, About box, progress, recent
    // documents, browsing, single instance
    {26420, "&Apply"},
    {26421, "&Help"},
    {26422, "Copy to &Clipboard"},
    {26423, "About %s"},
    {26424, "Application"},
    {26425, "Library"},
    {26426, "Qt libraries"},
    {26427, "Operating system"},
    {26428, "System requirements"},
    {26429, "All requirements are met."},
    {26430, "Not met (%d): %s"},
    {26431, "%s (built with %s)"},
    {26432, "Elapsed time: %s"},
    {26433, "Remaining time: %s"},
    {26434, "estimating..."},
    {26435, "%s of %s"},
    {26436, "Please wait..."},
    {26437, "Cancelling..."},
    {26438, "%s (missing)"},
    {26439, "&Clear List"},
    {26440, "(No recent documents)"},
    {26441, "The file %s is not an executable program."},
    {26442, "%s is already running but does not answer."},
    // Plan view
    {26460, "Zoom to &All\tHome"},
    {26461, "Zoom to &Selection\tShift+Home"},
    {26462, "Zoom &In\t+"},
    {26463, "Zoom &Out\t-"},
    {26464, "&Labels"},
    {26465, "Export as &PNG..."},
    {26466, "PNG images (*.png)"},
    {26467, "Export Plan"},
    {26468, "The image could not be written to %s."},
    {26469, "E %s  N %s %s"},
    // Shared by the library's dialogs
    {26480, "Save"},
    // Tool tips of small tool buttons
    {56118, "Browse"},
    {56119, "Clear"},
    {56120, "Undo"},
    {56121, "Redo"},
    {56122, "Find"},
    {56123, "Properties"},
    {56124, "Close"},
    {56125, "Help"},
};

constexpr bool IsSorted()
{
    for (std::size_t i = 1; i < std::size(kTexts); ++i)
        if (kTexts[i - 1].id >= kTexts[i].id)
            return false;
    return true;
}
static_assert(IsSorted(), "the text table must stay sorted by number, without duplicates");

// text_ids.def lists the names in the table's order, each with a text of the
// table, and as many names as texts: so every text has exactly one name.
constexpr unsigned kNamed[] = {
#define NYR_TEXT_ID(name, number) NYR_IDS_##name,
#include "nyr/frame/text_ids.def"
#undef NYR_TEXT_ID
};

constexpr bool EveryNameHasText()
{
    for (const unsigned id : kNamed) {
        const auto* at = std::lower_bound(std::begin(kTexts), std::end(kTexts), id,
                                          [](const CNyrBuiltinText& text, unsigned n) { return text.id < n; });
        if (at == std::end(kTexts) || at->id != id)
            return false;
    }
    return true;
}
constexpr bool NamesAscend()
{
    return std::adjacent_find(std::begin(kNamed), std::end(kNamed), std::greater_equal<>()) == std::end(kNamed);
}
static_assert(NamesAscend(), "text_ids.def must list its numbers in ascending order, each once");
static_assert(EveryNameHasText(), "a name in text_ids.def has no text in the table");
static_assert(std::size(kNamed) == std::size(kTexts), "a text of the table has no name in text_ids.def");

}  // namespace

std::span<const CNyrBuiltinText> NyrBuiltinTexts()
{
    return kTexts;
}
