#include "Tools/SarvexTool/Bench/Run/OutputQueue.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace Bench {

OutputQueue::OutputQueue() : m_thread([this] { Write(); }) {}

OutputQueue::~OutputQueue() {
    {
        const std::lock_guard lock(m_mutex);
        m_isEnding = true;
    }
    m_change.notify_all();
    m_thread.join();
}

void OutputQueue::Put(Text text) {
    {
        const std::lock_guard lock(m_mutex);
        m_texts.push_back(std::move(text));
    }
    m_change.notify_all();
}

bool OutputQueue::IsEmpty() const {
    const std::lock_guard lock(m_mutex);
    return m_texts.empty();
}

bool OutputQueue::WaitUntilEmpty(std::chrono::milliseconds longest) {
    std::unique_lock lock(m_mutex);
    return m_change.wait_for(lock, longest, [this] { return m_texts.empty(); });
}

std::deque<OutputQueue::Text> OutputQueue::Withdraw(const std::ostream& stream) {
    const std::lock_guard lock(m_mutex);
    std::deque<Text> withdrawn;
    if (m_texts.empty() || m_texts.front().pStream == &stream)
        return withdrawn;
    std::deque<Text> kept;
    for (auto text = m_texts.begin() + 1; text != m_texts.end(); ++text)
        (text->pStream == &stream ? withdrawn : kept).push_back(std::move(*text));
    // The first one is in use where it is.
    m_texts.resize(1);
    std::move(kept.begin(), kept.end(), std::back_inserter(m_texts));
    return withdrawn;
}

void OutputQueue::Write() {
    std::unique_lock lock(m_mutex);
    for (;;) {
        m_change.wait(lock, [this] { return m_isEnding || !m_texts.empty(); });
        if (m_texts.empty())
            return;
        // It stays where it is while others are put after it.
        Text& text = m_texts.front();
        lock.unlock();
        text.pStream->write(text.bytes.data(), static_cast<std::streamsize>(text.bytes.size()));
        if (!text.pStream->flush() && text.instead)
            text.instead(std::move(text.bytes));
        lock.lock();
        m_texts.pop_front();
        m_change.notify_all();
    }
}

QueuedStream::QueuedStream(OutputQueue& queue, std::ostream& target,
                           std::function<void(std::string)> instead)
    : std::ostream(nullptr), m_buffer(queue, target, std::move(instead)) {
    rdbuf(&m_buffer);
}

QueuedStream::~QueuedStream() {
    flush();
}

QueuedStream::Buffer::Buffer(OutputQueue& queue, std::ostream& target,
                             std::function<void(std::string)> instead)
    : m_queue(queue), m_target(target), m_instead(std::move(instead)) {}

QueuedStream::Buffer::int_type QueuedStream::Buffer::overflow(int_type character) {
    if (!traits_type::eq_int_type(character, traits_type::eof()))
        m_bytes += traits_type::to_char_type(character);
    return traits_type::not_eof(character);
}

std::streamsize QueuedStream::Buffer::xsputn(const char* bytes, std::streamsize size) {
    m_bytes.append(bytes, static_cast<std::size_t>(size));
    return size;
}

int QueuedStream::Buffer::sync() {
    if (!m_bytes.empty())
        m_queue.Put({&m_target, std::exchange(m_bytes, {}), m_instead});
    return 0;
}

} // namespace Bench
