#include "nyrwidgets/app/worker.h"

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QPushButton>
#include <QTest>
#include <QThread>
#include <atomic>
#include <regex>
#include <semaphore>
#include <stdexcept>

#include "nyr/frame/resource_module.h"
#include "nyrwidgets/app/progress_dialog.h"
#include "tests/support/dialog_answer.h"

namespace {

// Processes events until `done` holds; false after 30 s (a hung job).
template <class Predicate>
bool WaitFor(Predicate done)
{
    const QDeadlineTimer deadline(30000);
    while (!done()) {
        if (deadline.hasExpired())
            return false;
        QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
    }
    return true;
}

// A job that does one step each time the test opens the gate, so the test
// knows exactly where the job stands.
struct GatedJob
{
    std::counting_semaphore<> gate{0};
    std::atomic<int> work{0};

    CNyrWorker::Job Job(std::uint64_t total)
    {
        return [this, total](CNyrProgress& progress) -> QVariant {
            progress.SetTotal(total);
            for (;;) {
                gate.acquire();
                ++work;
                if (!progress.Step())
                    return work.load();
            }
        };
    }
};

struct Finish
{
    QVariant result;
    int status = -1;
    int count = 0;
    QThread* thread = nullptr;
    void Connect(CNyrWorker& worker)
    {
        QObject::connect(&worker, &CNyrWorker::finished, [this](const QVariant& r, int s) {
            result = r;
            status = s;
            ++count;
            thread = QThread::currentThread();
        });
    }
};

TEST(Worker, RunsOffTheInterfaceThreadAndDeliversOnIt)
{
    CNyrWorker worker;
    Finish finish;
    finish.Connect(worker);
    std::atomic<QThread*> jobThread{nullptr};
    ASSERT_TRUE(worker.Start([&](CNyrProgress& progress) -> QVariant {
        jobThread = QThread::currentThread();
        progress.SetTotal(3);
        progress.Step(3);
        return 42;
    }));
    EXPECT_TRUE(worker.IsRunning());
    ASSERT_TRUE(worker.Wait(30000));
    EXPECT_EQ(finish.count, 1);
    EXPECT_EQ(finish.status, CNyrWorker::eDone);
    EXPECT_EQ(finish.result.toInt(), 42);
    EXPECT_EQ(finish.thread, QCoreApplication::instance()->thread());
    EXPECT_NE(jobThread.load(), QCoreApplication::instance()->thread());
    EXPECT_EQ(worker.Progress().Read().position, 3u);

    // One job at a time; the next starts afresh.
    GatedJob gated;
    ASSERT_TRUE(worker.Start(gated.Job(10)));
    EXPECT_EQ(worker.Progress().Read().position, 0u);
    EXPECT_FALSE(worker.Start([](CNyrProgress&) { return QVariant(); }));
    EXPECT_FALSE(CNyrWorker().Start(nullptr));
    worker.Cancel();
    gated.gate.release();
    ASSERT_TRUE(worker.Wait(30000));
    EXPECT_EQ(finish.status, CNyrWorker::eCancelled);
    EXPECT_EQ(finish.count, 2);
}

TEST(Worker, WhatAJobThrowsEndsItAsFailedAndGoesNoFurther)
{
    CNyrWorker worker;
    Finish finish;
    finish.Connect(worker);
    worker.Start([](CNyrProgress&) -> QVariant { throw std::runtime_error("disk gone"); });
    ASSERT_TRUE(worker.Wait(30000));
    EXPECT_EQ(finish.status, CNyrWorker::eFailed);
    EXPECT_EQ(finish.result.toString(), "disk gone");
    worker.Start([](CNyrProgress&) -> QVariant { throw 7; });
    ASSERT_TRUE(worker.Wait(30000));
    EXPECT_EQ(finish.status, CNyrWorker::eFailed);
    EXPECT_FALSE(finish.result.isValid());
}

TEST(Worker, CancelInTheDialogStopsTheJobWithinOneStep)
{
    CNyrWorker worker;
    Finish finish;
    finish.Connect(worker);
    CNyrProgressDialog dialog(worker);
    dialog.show();
    GatedJob job;
    worker.Start(job.Job(100));
    job.gate.release(5);
    ASSERT_TRUE(WaitFor([&] { return worker.Progress().Read().position == 5; }));

    auto* cancel = dialog.findChild<QPushButton*>();
    ASSERT_NE(cancel, nullptr);
    EXPECT_EQ(cancel->text(), "Cancel");
    QTest::mouseClick(cancel, Qt::LeftButton);
    EXPECT_TRUE(dialog.isVisible());  // stays until the job has stopped
    EXPECT_FALSE(cancel->isEnabled());
    EXPECT_TRUE(dialog.labelText().startsWith("Cancelling...\n"));

    job.gate.release(100);  // enough for a job that would not stop
    ASSERT_TRUE(worker.Wait(30000));
    EXPECT_EQ(job.work, 6);
    EXPECT_EQ(finish.result.toInt(), 6);
    EXPECT_EQ(finish.status, CNyrWorker::eCancelled);
    EXPECT_FALSE(dialog.isVisible());

    // Escape cancels too.
    GatedJob second;
    worker.Start(second.Job(100));
    dialog.show();
    QTest::keyClick(&dialog, Qt::Key_Escape);
    EXPECT_TRUE(dialog.isVisible());
    second.gate.release(100);
    ASSERT_TRUE(worker.Wait(30000));
    EXPECT_EQ(second.work, 1);
}

// The job sets a total, a text and a position, then waits at the gate while
// the test reads the label.
TEST(Worker, DialogShowsAmountsAndTimesInTheLibrarysWords)
{
    const struct
    {
        std::uint64_t total, position;
        CNyrProgress::eUnit unit;
        const char* amount;
        bool estimated;
    } cases[] = {
        {10ull << 20, 0, CNyrProgress::eBytes, "0 bytes of 10.0 MB", false},
        {10ull << 20, 3ull << 19, CNyrProgress::eBytes, "1.5 MB of 10.0 MB", true},
        {10, 3, CNyrProgress::eItems, "3 of 10", true},
        {0, 37, CNyrProgress::eItems, "37", false},
    };
    for (const auto& c : cases) {
        CNyrWorker worker;
        CNyrProgressDialog dialog(worker);
        std::binary_semaphore gate(0);
        worker.Start([&](CNyrProgress& progress) -> QVariant {
            progress.SetTotal(c.total, c.unit);
            progress.SetPosition(c.position);
            progress.SetText("Reading points.csv");  // last: the test waits for it
            gate.acquire();
            return {};
        });
        ASSERT_TRUE(WaitFor([&] { return worker.Progress().Read().text == "Reading points.csv"; }));
        dialog.Update();
        const std::string label = dialog.labelText().toStdString();
        const std::string remaining = c.estimated ? R"(\d+:\d\d)" : "estimating\\.\\.\\.";
        EXPECT_TRUE(std::regex_match(label, std::regex("Reading points\\.csv\n" + std::string(c.amount) +
                                                       "\nElapsed time: \\d+:\\d\\d\nRemaining time: " + remaining)))
            << label;
        EXPECT_EQ(dialog.maximum(), c.total ? 1000 : 0);  // 0: busy
        if (c.total) {
            EXPECT_EQ(dialog.value(), static_cast<int>(c.position * 1000 / c.total));
        }
        gate.release();
        ASSERT_TRUE(worker.Wait(30000));
    }

    auto german = CNyrResourceModule::LoadFromFile(NYR_SOURCE_DIR "/data/lang/de.lang");
    ASSERT_TRUE(german);
    NyrSetNyrResourceHandle(german.get());
    CNyrWorker worker;
    CNyrProgressDialog dialog(worker);
    NyrSetNyrResourceHandle(CNyrResourceModule::Library());
    EXPECT_EQ(dialog.windowTitle(), "Bitte warten...");
    EXPECT_EQ(dialog.findChild<QPushButton*>()->text(), "Abbrechen");
}

TEST(Worker, DestroyedWhileTheJobRunsItStopsTheJobAndReportsNothing)
{
    std::atomic<bool> stopped{false};
    int finished = 0;
    {
        CNyrWorker worker;
        QObject::connect(&worker, &CNyrWorker::finished, [&] { ++finished; });
        worker.Start([&](CNyrProgress& progress) -> QVariant {
            while (progress.Step())
                std::this_thread::yield();
            stopped = true;
            return {};
        });
        ASSERT_TRUE(WaitFor([&] { return worker.Progress().Read().position > 0; }));
    }
    EXPECT_TRUE(stopped);
    QCoreApplication::processEvents();
    EXPECT_EQ(finished, 0);
}

TEST(Worker, RunShowsTheDialogOfALongJobThroughTheSeamAndCancelsWhatIsLeftOpen)
{
    const auto endless = [](CNyrProgress& progress) -> QVariant {
        while (progress.Step())
            std::this_thread::yield();
        return QString("partial");
    };
    const struct
    {
        bool click;  // Cancel clicked, or the dialog left open
    } cases[] = {{true}, {false}};
    for (const auto& c : cases) {
        QString title;
        nyr::test::DialogAnswer answer([&](QDialog& dialog) {
            title = dialog.windowTitle();
            if (c.click)
                QTest::mouseClick(dialog.findChild<QPushButton*>(), Qt::LeftButton);
        });
        QVariant result;
        EXPECT_EQ(CNyrProgressDialog::Run(nullptr, endless, &result, "Import"), CNyrWorker::eCancelled);
        EXPECT_EQ(title, "Import");
        EXPECT_EQ(result.toString(), "partial");
        EXPECT_EQ(answer.opened, 1);
    }
}

TEST(Worker, RunOfAShortJobShowsNoDialogAndAFailureComesBack)
{
    nyr::test::DialogAnswer answer([](QDialog&) {});
    QVariant result;
    EXPECT_EQ(CNyrProgressDialog::Run(nullptr, [](CNyrProgress&) -> QVariant { return 42; }, &result),
              CNyrWorker::eDone);
    EXPECT_EQ(result.toInt(), 42);
    EXPECT_EQ(CNyrProgressDialog::Run(
                  nullptr, [](CNyrProgress&) -> QVariant { throw std::runtime_error("disk gone"); }, &result),
              CNyrWorker::eFailed);
    EXPECT_EQ(result.toString(), "disk gone");
    EXPECT_EQ(answer.opened, 0);
}

}  // namespace
