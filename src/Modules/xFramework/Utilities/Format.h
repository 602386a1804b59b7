#pragma once

// Public, stable within a major version. One message belongs to one thread; messages in several
// threads as long as no variable and no provider changes. Throws std::bad_alloc, and what a string
// provider throws.

#include <concepts>
#include <cstdint>
#include <string>
#include <vector>

namespace Utilities {

/// A message under construction: a template with the placeholders ${1}, ${2}, … and the count of
/// the arguments applied so far. Each applied argument replaces every occurrence of its
/// placeholder; placeholders that no argument reached stay in the text. Nothing is ever reported as
/// an error.
///
/// An argument must not contain its own placeholder, nor form one with the text around it: the
/// search starts at the front again after each replacement and would never end. Texts that come
/// from a user or from outside the program go through FillTemplate instead.
class Format {
public:
    /// Takes the template, after the string providers have rewritten it.
    explicit Format(const std::string& templateText);

    /// Takes the template and applies text arguments in their order.
    template <typename... Texts>
    requires(sizeof...(Texts) >= 1 && sizeof...(Texts) <= 5 &&
             (std::convertible_to<const Texts&, std::string> && ...))
        Format(const std::string& templateText, const Texts&... arguments)
        : Format(templateText) {
        (*this % ... % arguments);
    }

    /// Applies a text; the string providers rewrite a copy of it first.
    Format& operator%(const std::string& argument);

    /// Applies a zero-terminated text unchanged; null counts as empty. That literals bypass the
    /// string providers and texts do not is intended.
    Format& operator%(const char* argument);

    /// The message as far as it is built.
    const std::string& Text() const { return m_text; }
    operator const std::string&() const { return m_text; }

private:
    void ReplaceNextPlaceholder(const std::string& argument);

    std::string m_text;
    std::int32_t m_argumentIndex = 0;
};

/// The message that Format builds from the same texts, for arguments that may hold anything: what
/// is inserted is not searched, so that a placeholder in an argument stays as it is. The template
/// holds each placeholder at most once, in the order of the numbers. The string providers rewrite
/// the template and each argument.
std::string FillTemplate(std::string templateText, const std::vector<std::string>& arguments);

} // namespace Utilities
