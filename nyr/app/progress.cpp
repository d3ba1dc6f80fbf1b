#include "nyr/app/progress.h"

#include <cmath>

#include "nyr/frame/resource_module.h"
#include "nyr/frame/text_ids.h"
#include "nyr/platform/string_format.h"

CNyrProgress::CNyrProgress() : m_start(Clock::now().time_since_epoch().count()) {}

void CNyrProgress::Restart()
{
    m_position = 0;
    m_total = 0;
    m_unit = eItems;
    m_cancelled = false;
    m_start = Clock::now().time_since_epoch().count();
    std::lock_guard lock(m_textMutex);
    m_text.clear();
}

void CNyrProgress::SetTotal(std::uint64_t total, eUnit unit)
{
    m_unit = unit;
    m_total = total;
}

bool CNyrProgress::SetPosition(std::uint64_t position)
{
    m_position = position;
    return !m_cancelled;
}

bool CNyrProgress::Step(std::uint64_t count)
{
    m_position += count;
    return !m_cancelled;
}

void CNyrProgress::SetText(const std::string& text)
{
    std::lock_guard lock(m_textMutex);
    m_text = text;
}

bool CNyrProgress::IsCancelled() const
{
    return m_cancelled;
}

void CNyrProgress::Cancel()
{
    m_cancelled = true;
}

CNyrProgress::Snapshot CNyrProgress::Read() const
{
    Snapshot s;
    s.position = m_position;
    s.total = m_total;
    s.unit = static_cast<eUnit>(m_unit.load());
    s.cancelled = m_cancelled;
    const Clock::duration elapsed = Clock::now().time_since_epoch() - Clock::duration(m_start);
    s.elapsedSeconds = std::chrono::duration<double>(elapsed).count();
    // The rate so far, applied to what is left: known once work was done.
    if (s.total > 0 && s.position > 0 && s.position <= s.total)
        s.remainingSeconds =
            s.elapsedSeconds * static_cast<double>(s.total - s.position) / static_cast<double>(s.position);
    std::lock_guard lock(m_textMutex);
    s.text = m_text;
    return s;
}

std::string NyrFormatSize(std::uint64_t bytes)
{
    if (bytes < 1024)
        return NyrFormat(NyrLoadString(NYR_IDS_SIZE_BYTES).c_str(), static_cast<int>(bytes));
    double value = static_cast<double>(bytes) / 1024.0;
    unsigned id = NYR_IDS_SIZE_KB;  // KB, then MB, GB, TB
    // 1023.96 KB would show as "1024.0 KB": it is "1.0 MB".
    while (value >= 1023.95 && id < NYR_IDS_SIZE_TB) {
        value /= 1024.0;
        ++id;
    }
    return NyrFormat(NyrLoadString(id).c_str(), 1, value);
}

std::string NyrFormatDuration(double seconds)
{
    if (!std::isfinite(seconds) || seconds < 0)
        seconds = 0;
    const auto whole = static_cast<std::uint64_t>(std::min(seconds, 1e15));
    const std::uint64_t h = whole / 3600, m = whole / 60 % 60, s = whole % 60;
    if (h == 0)
        return NyrFormat("%llu:%02llu", static_cast<unsigned long long>(m), static_cast<unsigned long long>(s));
    return NyrFormat("%llu:%02llu:%02llu", static_cast<unsigned long long>(h), static_cast<unsigned long long>(m),
                     static_cast<unsigned long long>(s));
}
