#pragma once

#include "Tools/SarvexTool/Bench/Core/Outcomes.h"
#include "Tools/SarvexTool/Bench/Core/RunProgress.h"
#include "Tools/SarvexTool/Bench/Core/Settings.h"

#include <string>

namespace Bench {

/// Somebody who looks on while a run lasts.
class IRunWatcher {
public:
    virtual ~IRunWatcher() = default;

    /// A line is about to be sent, with the settings that it writes itself.
    virtual void BeginLine(LineNumber line, const OwnSettings& own) = 0;
    /// A line is kept. Returns why the run is not to go on, as a sentence without its end; empty
    /// when it is.
    virtual std::string FinishLine(const FinishedLine& line, const OwnSettings& own) = 0;
    /// The run does something else than before; with details as in RunState.
    virtual void ShowState(RunState::Kind state, const std::string& detail) = 0;
    /// Some time has passed.
    virtual void Tick() = 0;
};

} // namespace Bench
