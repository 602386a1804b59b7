#pragma once

#include <string>
#include <string_view>

/// The text of one section of an answer. A text that stands in one place is looked at there and not
/// copied, for it may be as long as the answer: what is appended must live as long as this object
/// is used.
class SectionText {
public:
    void Append(std::string_view lines) {
        if (View().empty())
            m_onlyPiece = lines;
        else if (!lines.empty())
            Join(lines);
    }

    std::string_view View() const { return m_joinedPieces.empty() ? m_onlyPiece : m_joinedPieces; }

private:
    void Join(std::string_view lines) {
        if (m_joinedPieces.empty())
            m_joinedPieces = m_onlyPiece;
        m_joinedPieces += lines;
    }

    std::string_view m_onlyPiece;
    std::string m_joinedPieces;
};
