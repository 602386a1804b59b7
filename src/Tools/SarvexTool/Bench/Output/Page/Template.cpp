#include "Tools/SarvexTool/Bench/Output/Page/Template.h"

#include "Tools/SarvexTool/Bench/Output/Page/Embedded.h"
#include "Tools/SarvexTool/Bench/Output/ShownText.h"

#include <algorithm>
#include <array>
#include <ostream>

namespace Bench {

namespace {

void Fill(std::string_view rest, const PageContent& content, std::ostream& out);

/// A place of the template, {{NAME}}, and what is written there.
struct Part {
    std::string_view mark;
    void (*write)(const PageContent& content, std::ostream& out);
};

constexpr std::array<Part, 9> parts{
    {{"{{title}}",
      [](const PageContent& content, std::ostream& out) { out << EscapeHtml(content.title); }},
     {"{{body}}",
      [](const PageContent& content, std::ostream& out) { Fill(content.body, content, out); }},
     {"{{head}}", [](const PageContent& content, std::ostream& out) { content.writeHead(out); }},
     {"{{data}}", [](const PageContent& content, std::ostream& out) { content.writeData(out); }},
     {"{{style}}", [](const PageContent&, std::ostream& out) { out << Embedded::pageStyle; }},
     {"{{shared-script}}",
      [](const PageContent&, std::ostream& out) { out << Embedded::sharedScript; }},
     {"{{script}}", [](const PageContent& content, std::ostream& out) { out << content.script; }},
     {"{{plot-style}}", [](const PageContent&, std::ostream& out) { out << Embedded::plotStyle; }},
     {"{{plot-script}}",
      [](const PageContent&, std::ostream& out) { out << Embedded::plotScript; }}}};

/// The part whose mark the text begins with; null for none.
const Part* PartAt(std::string_view text) {
    for (const Part& part : parts) {
        if (text.starts_with(part.mark))
            return &part;
    }
    return nullptr;
}

void Fill(std::string_view rest, const PageContent& content, std::ostream& out) {
    while (!rest.empty()) {
        const std::size_t mark = std::min(rest.find("{{"), rest.size());
        out << rest.substr(0, mark);
        rest.remove_prefix(mark);
        const Part* part = PartAt(rest);
        if (part == nullptr)
            continue;
        part->write(content, out);
        rest.remove_prefix(part->mark.size());
    }
}

} // namespace

void WriteContent(const PageContent& content, std::ostream& out) {
    Fill(Embedded::pageTemplate, content, out);
}

std::string EscapeHtml(std::string_view text) {
    std::string escaped;
    for (const char letter : MakeHarmless(text)) {
        switch (letter) {
        case '&':
            escaped += "&amp;";
            break;
        case '<':
            escaped += "&lt;";
            break;
        case '>':
            escaped += "&gt;";
            break;
        case '"':
            escaped += "&quot;";
            break;
        case '\'':
            escaped += "&#39;";
            break;
        default:
            escaped += letter;
        }
    }
    return escaped;
}

void WriteHeading(const std::string& kind, const std::string& subject, std::ostream& out) {
    out << "<p class=\"kind\">" << EscapeHtml(kind) << "</p>\n"
        << "<h1>" << EscapeHtml(subject) << "</h1>\n";
}

void WriteBanner(const char* kind, const std::string& word, const std::string& sentence,
                 std::ostream& out) {
    out << "<p class=\"verdict is-" << kind << "\"><strong>" << EscapeHtml(word)
        << "</strong> <span>" << EscapeHtml(sentence) << "</span></p>\n";
}

void WriteFact(const std::string& name, const std::string& value, std::ostream& out) {
    out << "<div><dt>" << EscapeHtml(name) << "</dt><dd>" << EscapeHtml(value) << "</dd></div>\n";
}

} // namespace Bench
