#include "nyrwidgets/app/worker.h"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QTimer>
#include <condition_variable>
#include <exception>
#include <mutex>
#include <thread>

namespace {

constexpr int kPollMs = 100;

// What the job's thread shares with the worker; it outlives a worker that
// had to leave a job running.
struct Shared
{
    CNyrProgress progress;
    std::mutex mutex;
    std::condition_variable cv;
    bool ended = true;
    bool orphaned = false;  // the worker is gone: nobody takes the result
};

}  // namespace

struct CNyrWorker::Private
{
    std::shared_ptr<Shared> shared = std::make_shared<Shared>();
    std::thread thread;
    QTimer poll;
    bool running = false;
    CNyrProgress::Snapshot last;  // what progressChanged last told
};

CNyrWorker::CNyrWorker(QObject* parent) : QObject(parent), d(std::make_unique<Private>())
{
    d->poll.setInterval(kPollMs);
    connect(&d->poll, &QTimer::timeout, this, &CNyrWorker::Poll);
}

CNyrWorker::~CNyrWorker()
{
    if (!d->thread.joinable())
        return;
    Shared& shared = *d->shared;
    shared.progress.Cancel();
    std::unique_lock lock(shared.mutex);
    if (shared.cv.wait_for(lock, std::chrono::milliseconds(kStopWaitMs), [&] { return shared.ended; })) {
        lock.unlock();
        d->thread.join();
    } else {
        shared.orphaned = true;
        d->thread.detach();  // it keeps `shared` alive; its result goes nowhere
    }
}

bool CNyrWorker::Start(Job job)
{
    if (d->running || !job)
        return false;
    if (d->thread.joinable())
        d->thread.join();  // the last job has ended: it posted its result
    d->shared->progress.Restart();
    d->shared->ended = false;
    d->running = true;
    d->last = {};
    d->thread = std::thread([shared = d->shared, job = std::move(job), self = this] {
        QVariant result;
        int status = eDone;
        try {
            result = job(shared->progress);
            status = shared->progress.IsCancelled() ? eCancelled : eDone;
        } catch (const std::exception& e) {
            result = QString::fromUtf8(e.what());
            status = eFailed;
        } catch (...) {
            status = eFailed;
        }
        std::lock_guard lock(shared->mutex);
        // Posted before `ended` is set: until then a worker being destroyed
        // waits for it, so `self` is alive (unless it gave up waiting); a
        // worker deleted before the call arrives drops it with its other
        // posted events.
        if (!shared->orphaned)
            QMetaObject::invokeMethod(self, [self, result, status] { self->Deliver(result, status); },
                                      Qt::QueuedConnection);
        shared->ended = true;
        shared->cv.notify_all();
    });
    d->poll.start();
    return true;
}

bool CNyrWorker::IsRunning() const
{
    return d->running;
}

void CNyrWorker::Cancel()
{
    d->shared->progress.Cancel();
}

const CNyrProgress& CNyrWorker::Progress() const
{
    return d->shared->progress;
}

bool CNyrWorker::Wait(int msecs)
{
    const QDeadlineTimer deadline(msecs);
    while (d->running && !deadline.hasExpired())
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 50);
    return !d->running;
}

void CNyrWorker::Poll()
{
    const CNyrProgress::Snapshot now = d->shared->progress.Read();
    if (now.position == d->last.position && now.total == d->last.total && now.text == d->last.text &&
        now.cancelled == d->last.cancelled)
        return;
    d->last = now;
    emit progressChanged();
}

void CNyrWorker::Deliver(const QVariant& result, int status)
{
    d->poll.stop();
    d->running = false;
    Poll();
    emit finished(result, status);
}
