// Property: a message is what a plain expansion of $(name) references and a plain replacing of one
// placeholder after the other give, for text arguments and for literals, and it is made in as many
// replacements as the template has placeholders to offer: it always ends where the arguments keep
// to the rule that makes it end.
//
// Input: a group with the template and up to five arguments, one record each, then one with
// variables, each a record with its name and one with its text.

#include "Modules/xFramework/Core/Classes/ExpandVariables.h"
#include "Modules/xFramework/Core/Classes/Namespace.h"
#include "Modules/xFramework/Core/Classes/Value.h"
#include "Modules/xFramework/Utilities/Format.h"
#include "fuzz/Support/Check.h"
#include "fuzz/Support/Input.h"

#include <algorithm>
#include <map>
#include <memory>
#include <optional>

namespace {

using Variables = std::map<std::string, std::string>;

constexpr std::size_t longestMessage = 1 << 12;
constexpr std::size_t maximumArguments = 5;

/// The global variables while the object lives.
class DefinedVariables {
public:
    explicit DefinedVariables(const std::vector<std::string>& records) {
        for (std::size_t index = 0; index + 1 < records.size(); index += 2) {
            const Core::Value value(records[index + 1]);
            m_texts[records[index]] = value.ToString();
            Core::GlobalVariables().Add(records[index],
                                        std::make_unique<Core::Value>(value).release());
        }
    }
    ~DefinedVariables() {
        for (const auto& [name, text] : m_texts)
            Core::GlobalVariables().Remove(name);
    }
    DefinedVariables(const DefinedVariables&) = delete;
    DefinedVariables& operator=(const DefinedVariables&) = delete;

    const Variables& Texts() const { return m_texts; }

private:
    Variables m_texts;
};

/// From the end to the front, each reference that has a variable.
std::string ExpandPlainly(std::string text, const Variables& variables) {
    for (std::size_t hit = text.size(); hit-- > 0;) {
        if (text.compare(hit, 2, "$(") != 0)
            continue;
        const std::size_t end = std::min(text.find(')', hit), text.size());
        const auto variable = variables.find(text.substr(hit + 2, end - hit - 2));
        if (variable != variables.end())
            text = text.substr(0, hit) + variable->second +
                   (end < text.size() ? text.substr(end + 1) : "");
    }
    return text;
}

/// A replacement by such a text takes a character that every placeholder needs, and gives none
/// back: so the replacing ends, whatever is around.
bool MustEnd(const std::string& argument) {
    return argument.find('$') == std::string::npos || argument.find('}') == std::string::npos;
}

/// Nothing when the message becomes too long or an argument that breaks the rule does not end.
std::optional<std::string> ReplacePlainly(std::string text, std::size_t number,
                                          const std::string& argument) {
    constexpr std::size_t enoughReplacements = 50;
    const std::string placeholder = "${" + std::to_string(number) + "}";
    const std::size_t most = MustEnd(argument) ? text.size() : enoughReplacements;
    std::size_t replacements = 0;
    for (std::size_t hit = text.find(placeholder); hit != std::string::npos;
         hit = text.find(placeholder)) {
        const bool isLast = replacements++ == most;
        Check(!isLast || !MustEnd(argument), "a sound argument ends the replacing");
        if (isLast || text.size() > longestMessage)
            return std::nullopt;
        text.replace(hit, placeholder.size(), argument);
    }
    return text;
}

class PlainMessage {
public:
    explicit PlainMessage(const std::string& text) : m_text(text) {}

    void Apply(const std::string& argument) {
        ++m_count;
        if (m_text)
            m_text = ReplacePlainly(*m_text, m_count, argument);
    }

    /// Nothing when an argument broke the rule or the message became too long.
    const std::optional<std::string>& Text() const { return m_text; }

private:
    std::optional<std::string> m_text;
    std::size_t m_count = 0;
};

/// Every argument is applied as a text and as a literal, in turn.
void CheckMessage(const std::string& templateText, const std::vector<std::string>& arguments,
                  const Variables& variables) {
    PlainMessage plain(ExpandPlainly(templateText, variables));
    Utilities::Format message(templateText);
    for (std::size_t index = 0; index < arguments.size() && index < maximumArguments; ++index) {
        const bool isLiteral = index % 2 == 1;
        const std::string literal = UpToNul(arguments[index]);
        plain.Apply(isLiteral ? literal : ExpandPlainly(arguments[index], variables));
        if (!plain.Text())
            return;
        if (isLiteral)
            message % literal.c_str();
        else
            message % arguments[index];
        CheckEqual(message.Text(), *plain.Text(), "a message is what plain replacing gives");
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const Parts groups(ToText(data, size), GroupSeparator);
    const Parts texts(groups[0], RecordSeparator);
    const DefinedVariables variables(Split(groups[1], RecordSeparator));

    std::string expanded = texts[0];
    Core::ExpandVariables(expanded);
    const std::string expected = ExpandPlainly(texts[0], variables.Texts());
    CheckEqual(expanded, expected, "references are expanded from the end to the front");
    CheckEqual(Utilities::Format(texts[0]).Text(), expected,
               "a template is expanded when it is taken");
    CheckMessage(texts[0], texts.From(1), variables.Texts());
    return 0;
}
