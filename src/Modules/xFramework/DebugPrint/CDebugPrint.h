#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>

/// Turns a record of the debug printer into its output line.
class IDebugLineFormatter {
public:
    virtual ~IDebugLineFormatter() = default;

    /// Writes the zero-terminated line into the buffer, which has room for size bytes.
    virtual void FormatLine(const char* context, const char* tag, const char* text, char* buffer,
                            std::size_t size) = 0;
};

/// Takes the finished lines of the debug printer.
class IDebugSink {
public:
    virtual ~IDebugSink() = default;
    virtual void Write(const char* line) = 0;
};

/// A small levelled printer for the lowest layers, which cannot use the log. All texts are
/// zero-terminated; context names the place that prints. Sinks are numbered from 0 to 2.
class IDebugPrint {
public:
    /// Sends a text to each sink whose threshold is at least the level.
    virtual void PrintText(const char* context, std::int32_t level, const char* text) = 0;

    /// As PrintText, with a text in the manner of printf.
    [[gnu::format(printf, 4, 5)]] virtual void Print(const char* context, std::int32_t level,
                                                     const char* format, ...) = 0;

    virtual void SetThreshold(int sinkIndex, std::int32_t level) = 0;
    virtual std::int32_t GetThreshold(int sinkIndex) const = 0;

    /// The sink stays the caller's; null takes it out.
    virtual void SetSink(int sinkIndex, IDebugSink* sink) = 0;

    /// Takes ownership of a formatter when none is set yet, and deletes the one that is set when
    /// given null. False when a formatter is set already: the new one stays the caller's.
    virtual bool SetFormatter(IDebugLineFormatter* pFormatter) = 0;

    /// Passes a record through the formatter; the line is empty when none is set.
    virtual void FormatLine(const char* context, const char* tag, const char* text, char* buffer,
                            std::size_t size) = 0;

    /// Whether printing is on. Callers ask before they print.
    virtual bool IsEnabled() const = 0;

    virtual ~IDebugPrint() = default;
};

/// The debug printer. It is inert until a host gives it a formatter, a sink and a threshold.
class CDebugPrint : public IDebugPrint {
public:
    /// The process-wide printer, created on first use and destroyed at process exit.
    static CDebugPrint& Instance();

    CDebugPrint() = default;
    CDebugPrint(const CDebugPrint&) = delete;
    CDebugPrint& operator=(const CDebugPrint&) = delete;

    /// Does nothing unless printing is on and a formatter is set. A level outside 0 to 15 has the
    /// blank tag of level 0. The formatter's buffer has 4096 bytes.
    void PrintText(const char* context, std::int32_t level, const char* text) override;

    /// Cuts the text after 4095 characters; a text that cannot be formatted is empty.
    [[gnu::format(printf, 4, 5)]] void Print(const char* context, std::int32_t level,
                                             const char* format, ...) override;

    /// Also turns printing on, or off when level is 0: whichever sink was set last decides for all
    /// three. Kept as it is. A sink index outside 0 to 2 changes nothing.
    void SetThreshold(int sinkIndex, std::int32_t level) override;

    /// 0 for a sink index outside 0 to 2.
    std::int32_t GetThreshold(int sinkIndex) const override;

    void SetSink(int sinkIndex, IDebugSink* sink) override;
    bool SetFormatter(IDebugLineFormatter* pFormatter) override;
    void FormatLine(const char* context, const char* tag, const char* text, char* buffer,
                    std::size_t size) override;
    bool IsEnabled() const override { return m_enabled; }

private:
    static constexpr std::size_t sinkCount = 3;

    std::unique_ptr<IDebugLineFormatter> m_pFormatter;
    std::array<IDebugSink*, sinkCount> m_sinks{};
    std::array<std::int32_t, sinkCount> m_thresholds{};
    bool m_enabled = false;
};
