#pragma once

#include <string>

namespace Core {

/// The string provider that replaces each $(name) in the text by the value of the global variable
/// of that name (GlobalVariables). References to unknown names stay. A reference without closing
/// parenthesis reaches to the end of the text.
///
/// The text is worked on from its end, so that in $(A$(B)) the inner reference is replaced first. A
/// reference that begins in an inserted text is not replaced. But an inserted text counts for a
/// reference that begins before it: it can be part of its name, a parenthesis in it closes it, and
/// one at its start opens it after a $.
void ExpandVariables(std::string& text);

} // namespace Core
