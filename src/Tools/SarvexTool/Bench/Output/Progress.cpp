#include "Tools/SarvexTool/Bench/Output/Progress.h"

#include "Tools/SarvexTool/Bench/Output/ProgressText.h"
#include "Tools/SarvexTool/Bench/Output/ShownWidth.h"

#include <algorithm>
#include <utility>

namespace Bench {

namespace {

constexpr std::chrono::milliseconds drawingPause(100);
constexpr std::chrono::seconds linePause(30);

} // namespace

TerminalProgress::TerminalProgress(std::ostream& stream, std::function<std::size_t()> width,
                                   std::function<bool()> isWritten)
    : m_stream(stream), m_width(std::move(width)), m_isWritten(std::move(isWritten)) {}

void TerminalProgress::Update(const RunProgress& progress, TimePoint now) {
    if (now < m_nextDrawing || !m_isWritten())
        return;
    m_nextDrawing = now + drawingPause;
    // A character in the last column would move the cursor to the next line on some terminals.
    const std::size_t room = std::max<std::size_t>(m_width(), 1) - 1;
    const std::string text = CutToWidth(ProgressText(progress), room);
    const std::size_t width = ShownWidth(text);
    const std::size_t before = std::min(m_drawnWidth, room);
    // The cursor waits at the beginning, so that a key's echo does not break the line.
    m_stream << "\r" << text << std::string(std::max(before, width) - width, ' ') << "\r"
             << std::flush;
    m_drawnWidth = width;
}

void TerminalProgress::MakeRoom() {
    if (m_drawnWidth > 0)
        m_stream << "\r" << std::string(m_drawnWidth, ' ') << "\r" << std::flush;
    m_drawnWidth = 0;
}

void TerminalProgress::End(const RunSummary& /*summary*/) {
    MakeRoom();
}

bool StateChange::Note(const RunState& state) {
    const bool isOther = state.kind != m_last.kind || state.detail != m_last.detail;
    m_last = state;
    return isOther;
}

void LineProgress::Begin(const RunProgress& progress, TimePoint now) {
    m_change.Note(progress.state);
    Write(progress, now);
}

void LineProgress::Update(const RunProgress& progress, TimePoint now) {
    if (m_change.Note(progress.state) || now >= m_nextLine)
        Write(progress, now);
}

void LineProgress::Write(const RunProgress& progress, TimePoint now) {
    m_nextLine = now + linePause;
    m_stream << ProgressText(progress) << "\n" << std::flush;
}

} // namespace Bench
