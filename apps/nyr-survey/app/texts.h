#pragma once

#include <QString>
#include <string>

// The application's own texts. They live in the host's resource module
// (CNyrResourceModule::Host()), filled with the English table at start-up;
// a language module of the application's own (data/lang/nyr-survey-de.lang)
// replaces them. Placeholders are Qt's %1, %2, ... (QString::arg).
namespace survey {

enum eText : unsigned int {
    TxtAppName = 1000,
    // Column labels, in the order of eColumn
    TxtColPoint = 1001, TxtColCode, TxtColEasting, TxtColNorthing, TxtColHeight, TxtColLatitude, TxtColLongitude,
    TxtColObserved, TxtColGpsWeek, TxtColGpsSeconds, TxtColDistance, TxtColAzimuth,
    // Menus
    TxtMenuFile = 1100, TxtOpen, TxtSave, TxtSaveAs, TxtExport, TxtSend, TxtGenerate, TxtOpenSample, TxtExit,
    TxtMenuEdit = 1110, TxtDelete, TxtSetBase, TxtFind, TxtFindNext, TxtFindPrevious, TxtSelectAll,
    TxtInvertSelection, TxtSelectChecked, TxtCheckAll, TxtInvertChecked, TxtCheckSelected, TxtUncheckSelected,
    TxtMenuView = 1130, TxtColumns, TxtSortMultiple, TxtOriginalOrder, TxtAutoArrange, TxtShowAllColumns,
    TxtMenuTools = 1140, TxtTimeConverter, TxtUnitConverter,
    TxtMenuSettings = 1150, TxtRememberedAnswers, TxtMailServer, TxtMenuLanguage, TxtEnglish, TxtGerman,
    TxtMenuHelp = 1160, TxtAbout,
    // Tool bar and status bar
    TxtUnitBar = 1170, TxtDistanceUnit, TxtAngleUnit, TxtLatLonUnit, TxtTimeFormat,
    TxtStatusPoints = 1180, TxtStatusSelected, TxtStatusChecked, TxtStatusBase, TxtStatusNoBase, TxtOpened, TxtSaved,
    TxtGenerated, TxtSampleProject, TxtUntitled,
    // Printing, recent files, editing, long work
    TxtPrint = 1190, TxtPrintPreview, TxtExportPdf, TxtRecentFiles, TxtEditPoint, TxtPointTitle, TxtOpenTitle,
    TxtReading, TxtOpenCancelled, TxtGenerateCancelled,
    // Questions and errors
    TxtAskDelete = 1200, TxtAskOverwrite, TxtAnswersQuestion, TxtAnswersAnswer, TxtAnswersText, TxtOpenFailed,
    TxtSaveFailed, TxtCsvFilter, TxtLanguageFailed, TxtNothingSelected, TxtGenerating, TxtAskSaveChanges,
    // Reading points files
    TxtErrEmpty = 1300, TxtErrMissingColumn, TxtErrFieldCount, TxtErrNotNumber, TxtErrNotAngle, TxtErrNotTime,
    TxtErrUtf8, TxtErrTooLarge, TxtErrDuplicateColumn, TxtErrNoName, TxtErrNoPosition, TxtErrRange,
    TxtErrQuote, TxtErrRead, TxtErrLine, TxtErrPointName, TxtErrOutsideZone,
    // Time converter
    TxtTimeTitle = 1400, TxtLocalTime, TxtUtc, TxtMjd, TxtGpsWeekSeconds, TxtGpsMinusUtc, TxtImportLeap,
    TxtLeapImported, TxtLeapExpired, TxtLeapFailed, TxtTimeInvalid, TxtNow,
    // Angle and distance converter
    TxtUnitTitle = 1420, TxtAngleGroup, TxtDistanceGroup, TxtValue, TxtFromUnit, TxtInvalidValue,
    // Sending points
    TxtSendTitle = 1500, TxtMailTo, TxtMailSubject, TxtMailBody, TxtSendWith, TxtMailClient, TxtSmtpServer,
    TxtServer, TxtPort, TxtSecurity, TxtSecurityNone, TxtSecurityStartTls, TxtSecurityTls, TxtUser, TxtPassword,
    TxtSender, TxtRememberPassword, TxtPasswordPrompt, TxtSent, TxtSendFailed, TxtSmtpTitle, TxtDefaultSubject,
    TxtDefaultBody, TxtTrustedCertificates, TxtSecretServiceNote,
};

// The text in the current language (the host module's).
std::string Text(unsigned int id);
QString QText(unsigned int id);

// Fills the host module with the English texts. Called once at start-up
// (again by SetLanguage to go back to English).
void InstallEnglishTexts();

// The English text of an id, whatever the current language; empty when none.
std::string EnglishText(unsigned int id);

// Every id of the application's table, in number order.
const unsigned int* TextIds(std::size_t& count);

}  // namespace survey
