// An application for the single-instance tests, started as a real process:
//   single_instance_helper APPNAME [ARGUMENT...]
// Prints "first", "handed over" or "failed: TEXT". The first instance then
// prints "args CWD|A|B..." for every hand-over and ends when an argument is
// "--quit" (or after a minute, so that no test leaves it behind).
// NYR_TEST_TIMEOUT_MS sets how long a later start waits for an answer.
#include <QApplication>
#include <QTimer>
#include <cstdio>
#include <cstdlib>

#include "nyrwidgets/app/single_instance.h"

int main(int argc, char** argv)
{
    QApplication app(argc, argv);
    if (argc < 2)
        return 2;
    const char* timeout = std::getenv("NYR_TEST_TIMEOUT_MS");
    CNyrSingleInstance guard(argv[1]);
    QStringList arguments;
    for (int i = 2; i < argc; ++i)
        arguments << QString::fromLocal8Bit(argv[i]);
    switch (guard.Start(arguments, timeout ? std::atoi(timeout) : 10000)) {
    case CNyrSingleInstance::eHandedOver:
        std::printf("handed over\n");
        return 0;
    case CNyrSingleInstance::eFirst:
        break;
    default:
        std::printf("failed: %s\n", guard.ErrorText().toUtf8().constData());
        return 3;
    }
    QObject::connect(&guard, &CNyrSingleInstance::argumentsReceived,
                     [](const QStringList& received, const QString& directory) {
                         std::printf("args %s\n", (QStringList(directory) + received).join('|').toUtf8().constData());
                         std::fflush(stdout);
                         if (received.contains("--quit"))
                             QCoreApplication::quit();
                     });
    QTimer::singleShot(60000, &app, &QCoreApplication::quit);
    std::printf("first\n");
    std::fflush(stdout);
    return app.exec();
}
