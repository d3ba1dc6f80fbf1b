#include "nyrwidgets/app/progress_dialog.h"

#include <QCoreApplication>
#include <algorithm>
#include <QDeadlineTimer>
#include <QPushButton>

#include "nyr/frame/resource_module.h"
#include "nyr/frame/text_ids.h"
#include "nyr/platform/string_format.h"
#include "nyrwidgets/frame/dialog_hook.h"
#include "nyrwidgets/frame/wait_cursor.h"

namespace {

constexpr int kBarSteps = 1000;  // the bar's range: totals may pass int

int& MinimumDuration()
{
    static int ms = 1000;
    return ms;
}

std::string Amount(std::uint64_t value, CNyrProgress::eUnit unit)
{
    return unit == CNyrProgress::eBytes ? NyrFormatSize(value) : std::to_string(value);
}

std::string LabelText(const CNyrProgress::Snapshot& s)
{
    std::string text;
    if (s.cancelled)
        text += NyrLoadString(NYR_IDS_PROGRESS_CANCELLING) + "\n";
    if (!s.text.empty())
        text += s.text + "\n";
    if (s.total > 0)
        text += NyrFormat(NyrLoadString(NYR_IDS_PROGRESS_AMOUNT_OF).c_str(), Amount(s.position, s.unit).c_str(),
                          Amount(s.total, s.unit).c_str());
    else
        text += Amount(s.position, s.unit);
    text +=
        "\n" + NyrFormat(NyrLoadString(NYR_IDS_PROGRESS_ELAPSED).c_str(), NyrFormatDuration(s.elapsedSeconds).c_str());
    const std::string remaining =
        s.remainingSeconds < 0 ? NyrLoadString(NYR_IDS_PROGRESS_ESTIMATING) : NyrFormatDuration(s.remainingSeconds);
    text += "\n" + NyrFormat(NyrLoadString(NYR_IDS_PROGRESS_REMAINING).c_str(), remaining.c_str());
    return text;
}

}  // namespace

struct CNyrProgressDialog::Private
{
    CNyrWorker* worker;
};

CNyrProgressDialog::CNyrProgressDialog(CNyrWorker& worker, QWidget* parent)
    : QProgressDialog(parent), d(std::make_unique<Private>())
{
    d->worker = &worker;
    setWindowTitle(QString::fromStdString(NyrLoadString(NYR_IDS_PROGRESS_WAIT)));
    setCancelButtonText(QString::fromStdString(NyrLoadString(NYR_IDS_BUTTON_CANCEL)));
    setAutoClose(false);
    setAutoReset(false);
    setMinimumDuration(MinimumDurationDefault());
    // Qt's dialog hides itself on cancel; this one stays until the job stops.
    // Qt makes that connection by name, so it is undone by name.
    disconnect(this, SIGNAL(canceled()), this, SLOT(cancel()));
    connect(this, &QProgressDialog::canceled, this, &CNyrProgressDialog::Cancel);
    connect(&worker, &CNyrWorker::progressChanged, this, &CNyrProgressDialog::Update);
    connect(&worker, &CNyrWorker::finished, this, [this](const QVariant&, int status) {
        Update();
        done(status == CNyrWorker::eDone ? Accepted : Rejected);
    });
    Update();
}

CNyrProgressDialog::~CNyrProgressDialog() = default;

void CNyrProgressDialog::Update()
{
    const CNyrProgress::Snapshot s = d->worker->Progress().Read();
    setLabelText(QString::fromStdString(LabelText(s)));
    if (s.total == 0) {
        setRange(0, 0);  // busy
        return;
    }
    setRange(0, kBarSteps);
    const std::uint64_t done = std::min(s.position, s.total);
    setValue(static_cast<int>(static_cast<double>(done) / static_cast<double>(s.total) * kBarSteps));
}

void CNyrProgressDialog::MinimumDurationDefault(int ms)
{
    MinimumDuration() = std::max(ms, 0);
}

int CNyrProgressDialog::MinimumDurationDefault()
{
    return MinimumDuration();
}

void CNyrProgressDialog::reject()
{
    Cancel();
}

void CNyrProgressDialog::Cancel()
{
    if (!d->worker->IsRunning())
        return;
    d->worker->Cancel();
    if (QPushButton* button = findChild<QPushButton*>())
        button->setEnabled(false);
    Update();
}

int CNyrProgressDialog::Run(QWidget* parent, const CNyrWorker::Job& job, QVariant* result, const QString& title)
{
    CNyrWorker worker;
    int status = CNyrWorker::eFailed;
    QVariant value;
    connect(&worker, &CNyrWorker::finished, &worker, [&](const QVariant& r, int s) {
        value = r;
        status = s;
    });
    if (!worker.Start(job))
        return CNyrWorker::eFailed;
    CNyrProgressDialog dialog(worker, parent);
    if (!title.isEmpty())
        dialog.setWindowTitle(title);
    // A short job ends before the dialog would appear: it is waited for
    // with the busy cursor, the window repainting and the user's input held
    // back until it ends.
    {
        CNyrWaitCursor wait;
        const QDeadlineTimer deadline(dialog.minimumDuration());
        while (worker.IsRunning() && !deadline.hasExpired())
            QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents | QEventLoop::WaitForMoreEvents, 20);
    }
    if (worker.IsRunning())
        NyrExecDialog(dialog);
    worker.Wait(CNyrWorker::kStopWaitMs);
    if (result)
        *result = value;
    return status;
}
