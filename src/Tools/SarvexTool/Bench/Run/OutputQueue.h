#pragma once

#include <chrono>
#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>
#include <ostream>
#include <streambuf>
#include <string>
#include <thread>

namespace Bench {

/// Writes texts in the order in which they are put, on a thread of its own: who puts one never
/// waits for its reader. What is not written yet waits in memory.
class OutputQueue {
public:
    /// A text and where it goes. The stream lives longer, and nothing else uses it meanwhile. One
    /// that takes no more, because its reader is gone for instance, is known by its state
    /// afterwards.
    struct Text {
        std::ostream* pStream = nullptr;
        std::string bytes;
        /// Gets the bytes that the stream has not taken; may be empty. Called on the queue's
        /// thread.
        std::function<void(std::string)> instead;
    };

    OutputQueue();
    /// Waits until all is written.
    ~OutputQueue();
    OutputQueue(const OutputQueue&) = delete;
    OutputQueue& operator=(const OutputQueue&) = delete;

    /// Any thread may call it.
    void Put(Text text);

    /// Whether all that was put is written.
    bool IsEmpty() const;

    /// Waits for that, but not longer; returns whether it is so.
    bool WaitUntilEmpty(std::chrono::milliseconds longest);

    /// Takes back what is not being written yet of what was put for a stream; nothing when some of
    /// that is being written.
    std::deque<Text> Withdraw(const std::ostream& stream);

private:
    void Write();

    mutable std::mutex m_mutex;
    std::condition_variable m_change;
    /// The first one is the one that is being written.
    std::deque<Text> m_texts;
    bool m_isEnding = false;
    std::thread m_thread;
};

/// A stream whose text goes through a queue to another stream, a piece for each flush.
class QueuedStream : public std::ostream {
public:
    /// The queue and the target live longer. instead gets what the target does not take, as in
    /// OutputQueue::Text.
    QueuedStream(OutputQueue& queue, std::ostream& target,
                 std::function<void(std::string)> instead = {});
    /// Flushes it.
    ~QueuedStream() override;
    QueuedStream(const QueuedStream&) = delete;
    QueuedStream& operator=(const QueuedStream&) = delete;

private:
    class Buffer : public std::streambuf {
    public:
        Buffer(OutputQueue& queue, std::ostream& target, std::function<void(std::string)> instead);

    protected:
        int_type overflow(int_type character) override;
        std::streamsize xsputn(const char* bytes, std::streamsize size) override;
        int sync() override;

    private:
        OutputQueue& m_queue;
        std::ostream& m_target;
        std::function<void(std::string)> m_instead;
        std::string m_bytes;
    };

    Buffer m_buffer;
};

} // namespace Bench
