#pragma once

#include <string>

/// The examples of docs/framework.md, one function a file. Each gives what it has found out as
/// text.
namespace Examples {

std::string MakeValues();
std::string ConvertSet();
std::string ExpandVariable();
std::string MakeByName();
std::string RequestServices();

} // namespace Examples
