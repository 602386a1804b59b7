#pragma once

#include <cstddef>
#include <istream>
#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

namespace VemoSimulator {

/// The answers that a daemon gave, by command: the exchanges.jsonl of a run. Each line of such a
/// file is a JSON object of one exchange. Its key "end" tells how the exchange ended, "command" and
/// "answer" hold the request's body and every byte that came back; "commandBase64" and
/// "answerBase64" hold them where they are no UTF-8. Other keys do not matter, nor do exchanges
/// that did not end "answered".
class Recording {
public:
    /// Reads all lines. A last line that is no JSON and has no end was being written when its
    /// program was ended; it is left out. name is the file's, for messages. Throws
    /// std::invalid_argument with a message that names the line when another line is no exchange,
    /// or when no exchange was answered.
    Recording(std::istream& lines, const std::string& name);

    /// The name of the file.
    const std::string& Name() const { return m_name; }

    /// The answers to a command in the order of the file; null when it was never answered.
    const std::vector<std::string>* AnswersTo(const std::string& command) const;

private:
    void Add(const std::string& line);

    std::string m_name;
    std::unordered_map<std::string, std::vector<std::string>> m_answers;
};

/// Throws std::invalid_argument also when the file cannot be read.
std::shared_ptr<const Recording> ReadRecording(const std::string& file);

} // namespace VemoSimulator
