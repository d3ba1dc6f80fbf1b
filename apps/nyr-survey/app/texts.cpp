#include "apps/nyr-survey/app/texts.h"

#include <algorithm>
#include <iterator>

#include "nyr/frame/resource_module.h"

namespace survey {

namespace {

struct EnglishEntry
{
    unsigned int id;
    const char* text;
};

constexpr EnglishEntry kEnglish[] = {
    {TxtAppName, "Nyr Survey"},
    {TxtColPoint, "Point"},
    {TxtColCode, "Code"},
    {TxtColEasting, "Easting"},
    {TxtColNorthing, "Northing"},
    {TxtColHeight, "Height"},
    {TxtColLatitude, "Latitude"},
    {TxtColLongitude, "Longitude"},
    {TxtColObserved, "Observed"},
    {TxtColGpsWeek, "GPS week"},
    {TxtColGpsSeconds, "GPS seconds"},
    {TxtColDistance, "Distance"},
    {TxtColAzimuth, "Azimuth"},
    {TxtMenuFile, "&File"},
    {TxtOpen, "&Open..."},
    {TxtSave, "&Save"},
    {TxtSaveAs, "Save &As..."},
    {TxtExport, "&Export..."},
    {TxtSend, "Se&nd..."},
    {TxtGenerate, "&Generate test data"},
    {TxtOpenSample, "Open sa&mple project"},
    {TxtExit, "E&xit"},
    {TxtMenuEdit, "&Edit"},
    {TxtDelete, "&Delete"},
    {TxtSetBase, "Set as &base point"},
    {TxtFind, "&Find..."},
    {TxtFindNext, "Find &Next"},
    {TxtFindPrevious, "Find &Previous"},
    {TxtSelectAll, "Select &all"},
    {TxtInvertSelection, "&Invert selection"},
    {TxtSelectChecked, "Select chec&ked"},
    {TxtCheckAll, "C&heck all"},
    {TxtInvertChecked, "In&vert checked"},
    {TxtCheckSelected, "Check &selected"},
    {TxtUncheckSelected, "&Uncheck selected"},
    {TxtMenuView, "&View"},
    {TxtColumns, "&Columns..."},
    {TxtSortMultiple, "Sort by &multiple columns..."},
    {TxtOriginalOrder, "&Original order"},
    {TxtAutoArrange, "&Auto arrange columns"},
    {TxtShowAllColumns, "Show a&ll columns"},
    {TxtMenuTools, "&Tools"},
    {TxtTimeConverter, "&Time converter..."},
    {TxtUnitConverter, "&Angle and distance converter..."},
    {TxtMenuSettings, "&Settings"},
    {TxtRememberedAnswers, "&Remembered answers..."},
    {TxtMailServer, "&Mail server..."},
    {TxtMenuLanguage, "&Language"},
    {TxtEnglish, "&English"},
    {TxtGerman, "&Deutsch"},
    {TxtMenuHelp, "&Help"},
    {TxtAbout, "&About Nyr Survey..."},
    {TxtUnitBar, "Units"},
    {TxtDistanceUnit, "Distance:"},
    {TxtAngleUnit, "Angle:"},
    {TxtLatLonUnit, "Lat/Lon:"},
    {TxtTimeFormat, "Time:"},
    {TxtStatusPoints, "%1 points"},
    {TxtStatusSelected, "%1 selected"},
    {TxtStatusChecked, "%1 checked"},
    {TxtStatusBase, "Base point: %1"},
    {TxtStatusNoBase, "No base point"},
    {TxtOpened, "Opened %1"},
    {TxtSaved, "Saved %1"},
    {TxtGenerated, "Generated %1 points"},
    {TxtSampleProject, "Sample project"},
    {TxtUntitled, "Untitled"},
    {TxtPrint, "&Print..."},
    {TxtPrintPreview, "Print Pre&view..."},
    {TxtExportPdf, "Export P&DF..."},
    {TxtRecentFiles, "&Recent files"},
    {TxtEditPoint, "&Edit point..."},
    {TxtPointTitle, "Point %1"},
    {TxtOpenTitle, "Opening a Points File"},
    {TxtReading, "Reading %1"},
    {TxtOpenCancelled, "Opening %1 was cancelled; the project stays as it was."},
    {TxtGenerateCancelled, "Generating test data was cancelled."},
    {TxtAskDelete, "Delete the selected points?"},
    {TxtAskOverwrite, "Replace a file that exists?"},
    {TxtAnswersQuestion, "Question"},
    {TxtAnswersAnswer, "Answer"},
    {TxtAnswersText, "Text"},
    {TxtOpenFailed, "%1 cannot be opened:\n%2"},
    {TxtSaveFailed, "%1 cannot be saved:\n%2"},
    {TxtCsvFilter, "Points files (*.csv;*.txt;*.prn)|*.csv;*.txt;*.prn|All files (*.*)|*.*||"},
    {TxtLanguageFailed, "The language module cannot be loaded:\n%1"},
    {TxtNothingSelected, "No point is selected or checked."},
    {TxtGenerating, "Generating %1 points..."},
    {TxtAskSaveChanges, "The points of %1 were changed. Save them first?"},
    {TxtErrEmpty, "The file is empty."},
    {TxtErrMissingColumn, "Line %1: the column \"%2\" is missing."},
    {TxtErrFieldCount, "Line %1: %2 fields where the header has %3."},
    {TxtErrNotNumber, "Line %1, column \"%2\": \"%3\" is not a number."},
    {TxtErrNotAngle, "Line %1, column \"%2\": \"%3\" is not an angle."},
    {TxtErrNotTime, "Line %1, column \"%2\": \"%3\" is not a time."},
    {TxtErrUtf8, "Line %1: the text is not valid UTF-8."},
    {TxtErrTooLarge, "The file is larger than %1 MB."},
    {TxtErrDuplicateColumn, "Line %1: the column \"%2\" appears twice."},
    {TxtErrNoName, "Line %1: the point has no name."},
    {TxtErrNoPosition, "Line %1: the header names neither Latitude and Longitude nor Easting and Northing."},
    {TxtErrRange, "Line %1, column \"%2\": \"%3\" is out of range."},
    {TxtErrQuote, "Line %1: a quoted field does not end."},
    {TxtErrRead, "The file cannot be read: %1"},
    {TxtErrLine, "Line %1 is longer than %2 bytes."},
    {TxtErrPointName, "A point needs a name."},
    {TxtErrOutsideZone, "This position lies outside the grid of UTM zone %1."},
    {TxtTimeTitle, "Time Converter"},
    {TxtLocalTime, "Local time:"},
    {TxtUtc, "UTC:"},
    {TxtMjd, "MJD:"},
    {TxtGpsWeekSeconds, "GPS week and seconds:"},
    {TxtGpsMinusUtc, "GPS - UTC: %1 s"},
    {TxtImportLeap, "&Import the system's leap seconds"},
    {TxtLeapImported, "%1 leap seconds added to the table."},
    {TxtLeapExpired, "The system's leap-second list has expired; update the time-zone data."},
    {TxtLeapFailed, "The leap-second list %1 cannot be read."},
    {TxtTimeInvalid, "This is not a time the converter can read."},
    {TxtNow, "&Now"},
    {TxtUnitTitle, "Angle and Distance Converter"},
    {TxtAngleGroup, "Angle"},
    {TxtDistanceGroup, "Distance"},
    {TxtValue, "Value:"},
    {TxtFromUnit, "In unit:"},
    {TxtInvalidValue, "not readable in this unit"},
    {TxtSendTitle, "Send Points"},
    {TxtMailTo, "To:"},
    {TxtMailSubject, "Subject:"},
    {TxtMailBody, "Message:"},
    {TxtSendWith, "Send with:"},
    {TxtMailClient, "My mail client"},
    {TxtSmtpServer, "The mail server (SMTP)"},
    {TxtServer, "Server:"},
    {TxtPort, "Port:"},
    {TxtSecurity, "Security:"},
    {TxtSecurityNone, "None"},
    {TxtSecurityStartTls, "STARTTLS"},
    {TxtSecurityTls, "TLS"},
    {TxtUser, "User:"},
    {TxtPassword, "Password:"},
    {TxtSender, "Sender:"},
    {TxtRememberPassword, "Keep the password in the desktop's secret service"},
    {TxtPasswordPrompt, "Password of %1 at %2:"},
    {TxtSent, "%1 points sent to %2."},
    {TxtSendFailed, "The points could not be sent:\n%1"},
    {TxtSmtpTitle, "Mail Server"},
    {TxtDefaultSubject, "Survey points"},
    {TxtDefaultBody, "The attached file holds %1 survey points."},
    {TxtTrustedCertificates, "Trusted certificates (PEM):"},
    {TxtSecretServiceNote, "The password is never written to the settings file. Without a secret service it is asked "
                           "for each time."},
};

constexpr bool IsSorted()
{
    for (std::size_t i = 1; i < std::size(kEnglish); ++i)
        if (kEnglish[i - 1].id >= kEnglish[i].id)
            return false;
    return true;
}
static_assert(IsSorted(), "the application's texts must stay sorted by number, without duplicates");

unsigned int kIds[std::size(kEnglish)];

}  // namespace

std::string Text(unsigned int id)
{
    return NyrLoadString(CNyrResourceModule::Host(), id);
}

QString QText(unsigned int id)
{
    return QString::fromStdString(Text(id));
}

void InstallEnglishTexts()
{
    for (const EnglishEntry& e : kEnglish)
        CNyrResourceModule::Host()->SetString(e.id, e.text);
}

std::string EnglishText(unsigned int id)
{
    const auto* it = std::lower_bound(std::begin(kEnglish), std::end(kEnglish), id,
                                      [](const EnglishEntry& e, unsigned int key) { return e.id < key; });
    return it != std::end(kEnglish) && it->id == id ? it->text : "";
}

const unsigned int* TextIds(std::size_t& count)
{
    for (std::size_t i = 0; i < std::size(kEnglish); ++i)
        kIds[i] = kEnglish[i].id;
    count = std::size(kEnglish);
    return kIds;
}

}  // namespace survey
