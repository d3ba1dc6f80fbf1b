#pragma once

#include <atomic>
#include <chrono>
#include <cstdint>
#include <mutex>
#include <string>

#include "nyr/platform/export.h"

// The shared state of a long job: how far it is, and whether the user asked
// it to stop. The job reports through Step or SetPosition and stops as soon
// as either returns false:
//
//   progress.SetTotal(bytes, CNyrProgress::eBytes);
//   while (more) {
//       ...one block...
//       if (!progress.Step(block))
//           return;  // cancelled: stops within this one step
//   }
//
// Every member may be called from any thread; the job runs on one, the user
// interface reads and cancels from another.
class NYR_EXPORT CNyrProgress
{
public:
    enum eUnit
    {
        eItems,  // counts shown as numbers
        eBytes,  // counts shown as sizes (NyrFormatSize)
    };

    // What the user interface shows.
    struct Snapshot
    {
        std::uint64_t position = 0;
        std::uint64_t total = 0;  // 0: not known
        eUnit unit = eItems;
        std::string text;              // what the job is doing now
        double elapsedSeconds = 0.0;   // since Restart
        double remainingSeconds = -1;  // estimated; -1 while it cannot be
        bool cancelled = false;
    };

    CNyrProgress();
    CNyrProgress(const CNyrProgress&) = delete;
    CNyrProgress& operator=(const CNyrProgress&) = delete;

    // For a new job: position 0, total unknown, no text, not cancelled; the
    // clock starts again.
    void Restart();

    // The job's side. The setters return false once the job is cancelled:
    // the job must then stop.
    void SetTotal(std::uint64_t total, eUnit unit = eItems);
    bool SetPosition(std::uint64_t position);
    bool Step(std::uint64_t count = 1);
    void SetText(const std::string& text);
    bool IsCancelled() const;

    // The user interface's side.
    void Cancel();
    Snapshot Read() const;

private:
    using Clock = std::chrono::steady_clock;
    std::atomic<std::uint64_t> m_position{0};
    std::atomic<std::uint64_t> m_total{0};
    std::atomic<int> m_unit{eItems};
    std::atomic<bool> m_cancelled{false};
    std::atomic<Clock::rep> m_start;  // steady clock ticks at Restart
    mutable std::mutex m_textMutex;
    std::string m_text;
};

// A size for people: "%d bytes" below 1 KB, else KB, MB, GB or TB (of 1024)
// with one decimal ("%.*f KB", texts NYR_IDS_SIZE_BYTES to NYR_IDS_SIZE_TB of the text table).
// Loads texts: for the user-interface thread.
NYR_EXPORT std::string NyrFormatSize(std::uint64_t bytes);

// A duration as "m:ss" below an hour, "h:mm:ss" from there on (whole
// seconds, rounded down; negative or not finite gives "0:00").
NYR_EXPORT std::string NyrFormatDuration(double seconds);
