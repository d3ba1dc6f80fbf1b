#pragma once

#include <QObject>
#include <QVariant>
#include <functional>
#include <memory>

#include "nyr/app/progress.h"
#include "nyr/platform/export.h"

// Runs one job at a time on a thread of its own, so the user interface stays
// live, and hands its result back on the thread the worker belongs to (the
// user-interface thread):
//
//   auto* worker = new CNyrWorker(window);
//   connect(worker, &CNyrWorker::finished, window, [](const QVariant& points, int status) { ... });
//   worker->Start([file](CNyrProgress& progress) -> QVariant {
//       progress.SetTotal(size, CNyrProgress::eBytes);
//       while (...) { ...; if (!progress.Step(block)) return {}; }  // cancelled
//       return QVariant::fromValue(points);
//   });
//
// The job must return soon after Step or SetPosition returned false: that is
// how Cancel stops it, within one progress step. An exception from the job
// ends it with eFailed and its message; nothing the job throws reaches the
// caller.
class NYR_EXPORT CNyrWorker : public QObject
{
    Q_OBJECT

public:
    enum eStatus
    {
        eDone = 0,       // the job returned and was not cancelled
        eCancelled = 1,  // the job returned after Cancel
        eFailed = 2,     // the job threw; the result is the exception's text
    };
    using Job = std::function<QVariant(CNyrProgress& progress)>;

    // Longest wait of the destructor for a job that does not stop, in ms.
    static constexpr int kStopWaitMs = 60000;

    explicit CNyrWorker(QObject* parent = nullptr);
    // Cancels a running job and waits for it to end (at most kStopWaitMs;
    // a job still running then is left to finish on its own, and its result
    // is dropped). finished is not emitted.
    ~CNyrWorker() override;
    CNyrWorker(const CNyrWorker&) = delete;
    CNyrWorker& operator=(const CNyrWorker&) = delete;

    // Starts `job`; false (nothing started) while a job runs, that is until
    // its finished signal. The progress is reset first.
    bool Start(Job job);
    bool IsRunning() const;
    // Asks the job to stop: its next progress report returns false.
    void Cancel();
    // The running (or last) job's progress.
    const CNyrProgress& Progress() const;

    // Processes events until finished was emitted or `msecs` passed; true
    // when no job runs any more. For hosts that must wait, and for tests.
    bool Wait(int msecs);

signals:
    // About ten times a second while the progress changes.
    void progressChanged();
    // The job ended: its result and an eStatus. Emitted on the worker's
    // thread; IsRunning() is false from here on, so a new job may start.
    void finished(const QVariant& result, int status);

private:
    void Deliver(const QVariant& result, int status);
    void Poll();

    struct Private;
    std::unique_ptr<Private> d;
};
