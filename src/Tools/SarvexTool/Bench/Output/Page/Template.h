#pragma once

#include <functional>
#include <iosfwd>
#include <string>
#include <string_view>

namespace Bench {

/// What one kind of page puts into the template that all pages share.
struct PageContent {
    /// Any text.
    std::string title;
    /// The body's elements, with the place {{head}}.
    std::string_view body;
    /// What follows the script that all pages share.
    std::string_view script;
    std::function<void(std::ostream&)> writeHead;
    /// Writes what the script shows, as JSON that cannot end the script element which holds it.
    std::function<void(std::ostream&)> writeData;
};

/// Writes one HTML file that needs nothing else: style, scripts and data are in it, and it asks the
/// network for nothing.
void WriteContent(const PageContent& content, std::ostream& out);

/// A text of any bytes as the text of an element or of a quoted attribute.
std::string EscapeHtml(std::string_view text);

/// Writes the kind of page and its subject, as the first lines of a head.
void WriteHeading(const std::string& kind, const std::string& subject, std::ostream& out);

/// Writes the first thing that a page says: a word in bold letters and a sentence. The kind is a
/// class of the style sheet: "pass", "fail" or "none".
void WriteBanner(const char* kind, const std::string& word, const std::string& sentence,
                 std::ostream& out);

/// Writes one of the facts of a head.
void WriteFact(const std::string& name, const std::string& value, std::ostream& out);

} // namespace Bench
