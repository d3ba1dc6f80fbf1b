// main() of the widget tests: a real QApplication on the offscreen platform
// (set by CTest; forced here too so a test binary run by hand needs no display),
// where a dialog no test answers fails the test rather than waiting.
#include <gtest/gtest.h>

#include <QApplication>
#include <cstdlib>

#include "tests/support/dialog_answer.h"

int main(int argc, char** argv)
{
    setenv("QT_QPA_PLATFORM", "offscreen", 0);
    QApplication app(argc, argv);
    QApplication::setApplicationName("NyrTests");
    ::testing::InitGoogleTest(&argc, argv);
    nyr::test::FailOnUnansweredDialogs();
    return RUN_ALL_TESTS();
}
