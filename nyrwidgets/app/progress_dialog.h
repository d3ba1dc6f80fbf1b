#pragma once

#include <QProgressDialog>
#include <QString>
#include <QVariant>
#include <memory>

#include "nyr/platform/export.h"
#include "nyrwidgets/app/worker.h"

// Qt's progress dialog following a CNyrWorker's job, with the library's
// texts ("Please wait...", "Cancel"). Its label shows, one line each:
//   what the job is doing (CNyrProgress::SetText), when it says;
//   how far it is: "12.5 MB of 100.0 MB" for sizes, "37 of 250" for items
//   (only the first figure while the total is not known; the bar then
//   shows that it is busy);
//   "Elapsed time: 0:05" and "Remaining time: 0:35" ("estimating..." until
//   work was done).
// Cancel, Escape and the close box cancel the job: the dialog then shows
// "Cancelling..." until the job has stopped. It appears when the job takes
// longer than minimumDuration() (MinimumDurationDefault) and closes when it
// ends.
class NYR_EXPORT CNyrProgressDialog : public QProgressDialog
{
    Q_OBJECT

public:
    // `worker` must outlive the dialog.
    explicit CNyrProgressDialog(CNyrWorker& worker, QWidget* parent = nullptr);
    ~CNyrProgressDialog() override;

    // Shows the job's progress now (done on every progressChanged).
    void Update();

    // How long a job runs before its dialog appears, in ms, for dialogs made
    // from now on: 1000 unless set; 0 shows it at once.
    static void MinimumDurationDefault(int ms);
    static int MinimumDurationDefault();

    // Runs `job` on a worker and waits for it. A job that ends within
    // minimumDuration() shows no dialog (the busy cursor, and the window
    // repaints meanwhile); after that the dialog runs modally through
    // NyrExecDialog until the job ends. A test hook gets the dialog while
    // the job runs; one that leaves it open cancels the job, which is then
    // waited for. Returns the job's CNyrWorker::eStatus and hands out its
    // result. `title` "" keeps "Please wait...".
    static int Run(QWidget* parent, const CNyrWorker::Job& job, QVariant* result = nullptr,
                   const QString& title = {});

public slots:
    void reject() override;

private:
    void Cancel();

    struct Private;
    std::unique_ptr<Private> d;
};
