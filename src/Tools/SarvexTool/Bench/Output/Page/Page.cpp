#include "Tools/SarvexTool/Bench/Output/Page/Page.h"

#include "Tools/SarvexTool/Bench/Output/Page/DataBlock.h"
#include "Tools/SarvexTool/Bench/Output/Page/Embedded.h"
#include "Tools/SarvexTool/Bench/Output/Page/Head.h"

#include <algorithm>
#include <array>
#include <ostream>
#include <string_view>

namespace Bench {

namespace {

/// A place of the template, {{NAME}}, and what is written there.
struct Part {
    std::string_view mark;
    void (*write)(const Page& page, std::ostream& out);
};

void WriteTitle(const Page& page, std::ostream& out) {
    out << EscapeHtml(page.subject) << " - " << EscapeHtml(page.kind);
}

constexpr std::array<Part, 7> parts{
    {{"{{title}}", WriteTitle},
     {"{{head}}", WriteHead},
     {"{{data}}", WriteDataBlock},
     {"{{style}}", [](const Page&, std::ostream& out) { out << Embedded::pageStyle; }},
     {"{{script}}", [](const Page&, std::ostream& out) { out << Embedded::pageScript; }},
     {"{{plot-style}}", [](const Page&, std::ostream& out) { out << Embedded::plotStyle; }},
     {"{{plot-script}}", [](const Page&, std::ostream& out) { out << Embedded::plotScript; }}}};

/// The part whose mark the text begins with; null for none.
const Part* PartAt(std::string_view text) {
    for (const Part& part : parts) {
        if (text.starts_with(part.mark))
            return &part;
    }
    return nullptr;
}

} // namespace

void WritePage(const Page& page, std::ostream& out) {
    std::string_view rest = Embedded::pageTemplate;
    while (!rest.empty()) {
        const std::size_t mark = std::min(rest.find("{{"), rest.size());
        out << rest.substr(0, mark);
        rest.remove_prefix(mark);
        const Part* part = PartAt(rest);
        if (part == nullptr)
            continue;
        part->write(page, out);
        rest.remove_prefix(part->mark.size());
    }
}

} // namespace Bench
