#pragma once

#include "Modules/xFramework/Streams/IDebugPrint.h"

#include <array>
#include <cstdint>
#include <memory>

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
