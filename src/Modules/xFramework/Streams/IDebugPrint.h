#pragma once

#include <cstddef>
#include <cstdint>

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
