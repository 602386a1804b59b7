#pragma once

#include <string_view>

namespace Bench::Embedded {

/// The page's parts, as they are in this folder and in third_party/uPlot. The build makes their
/// definitions of the files (cmake/EmbedFiles.cmake).
extern const std::string_view pageTemplate;
extern const std::string_view pageStyle;
extern const std::string_view sharedScript;
extern const std::string_view runBody;
extern const std::string_view runScript;
extern const std::string_view historyBody;
extern const std::string_view historyScript;
extern const std::string_view plotStyle;
extern const std::string_view plotScript;

} // namespace Bench::Embedded
