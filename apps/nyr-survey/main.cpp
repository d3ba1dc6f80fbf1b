// nyr-survey: survey points on the Nyr240 library.
//
//   nyr-survey [--settings FILE] [POINTS_FILE]    the window, on the file or the sample project; when
//                                                 it runs already, the file opens there instead
//   nyr-survey [--settings FILE] --tour OUTDIR    the scripted tour on the current platform
//   nyr-survey --generate COUNT FILE              writes COUNT test points (no window)
#include <QApplication>
#include <QCommandLineParser>
#include <QDir>
#include <cstdio>

#include "apps/nyr-survey/app/settings.h"
#include "apps/nyr-survey/app/texts.h"
#include "apps/nyr-survey/io/points_file.h"
#include "apps/nyr-survey/project/sample_project.h"
#include "apps/nyr-survey/project/survey_point.h"
#include "apps/nyr-survey/tour/tour.h"
#include "apps/nyr-survey/window/main_window.h"
#include "nyr/app/log_file.h"
#include "nyrwidgets/app/single_instance.h"

namespace {

int Generate(const QString& countText, const QString& path)
{
    bool ok = false;
    const qulonglong count = countText.toULongLong(&ok);
    if (!ok || count == 0 || count > 10'000'000) {
        std::fprintf(stderr, "nyr-survey: --generate takes a count from 1 to 10000000\n");
        return 2;
    }
    const survey::ProjectData data = survey::MakeTestData(count);
    std::string error;
    if (!survey::WritePointsFile(path.toStdString(), data.Pointers(), error)) {
        std::fprintf(stderr, "nyr-survey: %s\n", error.c_str());
        return 1;
    }
    return 0;
}

}  // namespace

int main(int argc, char** argv)
{
    QApplication app(argc, argv);
    QApplication::setApplicationName("nyr-survey");
    QApplication::setOrganizationName("Nyr240");
    QApplication::setApplicationVersion(NYR_SURVEY_VERSION);
    QCommandLineParser parser;
    parser.setApplicationDescription("Survey points on the Nyr240 library.");
    parser.addHelpOption();
    const QCommandLineOption settings("settings", "The settings file to use.", "FILE");
    const QCommandLineOption tour("tour", "Runs the scripted tour, writing screenshots and files to DIR.", "DIR");
    const QCommandLineOption generate("generate", "Writes COUNT test points to the file named last.", "COUNT");
    parser.addOptions({settings, tour, generate});
    parser.addPositionalArgument("file", "A points file to open.");
    parser.process(app);
    const QStringList files = parser.positionalArguments();

    if (parser.isSet(generate)) {
        survey::InstallEnglishTexts();
        if (files.size() != 1) {
            std::fprintf(stderr, "nyr-survey: --generate COUNT FILE\n");
            return 2;
        }
        return Generate(parser.value(generate), files.front());
    }
    if (parser.isSet(tour)) {
        const QString dir = QDir(parser.value(tour)).absolutePath();
        if (!QDir().mkpath(dir)) {
            std::fprintf(stderr, "nyr-survey: cannot create %s\n", qPrintable(dir));
            return 1;
        }
        const QString ini = parser.isSet(settings) ? parser.value(settings) : dir + "/nyr-survey.ini";
        survey::InitializeApplication(ini.toStdString());
        return survey::RunTour(dir);
    }
    // One window per user and desktop: a later start hands its files over.
    CNyrSingleInstance guard;
    switch (guard.Start(files)) {
    case CNyrSingleInstance::eHandedOver: return 0;
    case CNyrSingleInstance::eFailed:
        std::fprintf(stderr, "nyr-survey: %s\n", qPrintable(guard.ErrorText()));
        break;  // on its own, then
    default: break;
    }
    survey::InitializeApplication(parser.value(settings).toStdString());
    CNyrLogFile::Default().Info("Nyr Survey " NYR_SURVEY_VERSION " started");
    survey::CMainWindow window;
    guard.SetWindow(&window);
    QObject::connect(&guard, &CNyrSingleInstance::argumentsReceived, &window,
                     &survey::CMainWindow::OpenHandedOver);
    if (files.isEmpty() || !window.OpenFile(files.back()))
        window.OpenSample();
    window.show();
    const int status = app.exec();
    CNyrLogFile::Default().Info("Nyr Survey ended");
    return status;
}
