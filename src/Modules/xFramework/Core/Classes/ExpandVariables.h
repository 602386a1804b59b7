#pragma once

#include <string>

namespace Core {

/// The string provider that replaces each $(name) in the text by the value of the global variable
/// of that name (GlobalVariables). References to unknown names stay. The text is worked on from its
/// end, so that in $(A$(B)) the inner reference is replaced first; inserted text is not looked at
/// again. A reference without closing parenthesis reaches to the end of the text.
void ExpandVariables(std::string& text);

} // namespace Core
