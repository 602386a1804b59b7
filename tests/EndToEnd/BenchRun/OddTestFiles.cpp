#include "tests/EndToEnd/BenchRun/OddTestFiles.h"

#include "tests/Support/Files.h"

namespace EndToEnd {

namespace {

std::string Example(const std::string& name) {
    return TestSupport::ReadBytes(std::string(SARVEX_SOURCE_DIR) + "/examples/" + name);
}

std::string WithLineEnds(std::string text, const std::string& lineEnd) {
    for (std::size_t place = 0; (place = text.find('\n', place)) != std::string::npos;
         place += lineEnd.size())
        text.replace(place, 1, lineEnd);
    return text;
}

const std::string header = "Band,Chains,Bandwidth,Channel,Rate\n";
const std::string lines = "6,AB,80,101,HE-MCS3\n"
                          "-,A,-,-,-\n"
                          "-,-,-,33,HE-MCS7\n"
                          "2.4,B,20,6,54\n"
                          "5,AB,40,36,-\n";

} // namespace

std::map<std::string, std::string> OddTestFiles() {
    return {
        {"Short", Example("short.csv")},
        {"Sweep", Example("sweep.csv")},
        {"Oddities", Example("oddities.csv")},
        {"Spreadsheet", Example("spreadsheet.csv")},
        {"CrLf", WithLineEnds(header + lines, "\r\n")},
        {"LineEndsOfBothKinds", WithLineEnds(header, "\r\n") + lines},
        {"CrAlone", WithLineEnds(header + lines, "\r")},
        {"NoLastLineEnd", header + lines + "-,A,-,-,-"},
        {"CrAtTheEnd", header + lines + "-,A,-,-,-\r"},
        {"SurplusCells", header + "6,AB,80,101,HE-MCS3,x\n" + lines + "5,A,20,36,MCS0,,,y,\n"},
        {"MissingCells", header + lines + "6\n5,A\n-\n,\n6,AB,80,1\n"},
        {"UnknownColumn", "Band,Chanel,Chains\n6,101,A\n5,36,B\n5,40,-\n"},
        {"HeaderOnly", header},
        {"HeaderWithoutLineEnd", "Band,Chains"},
        {"UnknownColumnOnly", "Chanel\n"},
        {"Empty", ""},
        {"OneLineEnd", "\n"},
        {"LineEndsOnly", "\n\n\n"},
        {"CellsOfBlanks", header + lines + " , ,  ,\t,-\n" + lines + "   \n -,A ,20, 36,MCS0\n"},
        {"CellOfOneCr", header + lines + "\r,-,-,-,-\n-,-,-,-,\r\n\r\n" + lines},
        {"EmptyLines", header + "\n" + lines + "\n\n" + lines + "\n"},
        {"EmptyCells", header + lines + ",A,,,\n,,,,\n-,-,20,-,\n"},
        {"EndOfText", header + lines + "-,A,-,\x1A,-\n" + lines},
        {"ByteOrderMark", "\xEF\xBB\xBF" + header + lines},
        {"NoText", header + "6,AB,80,101,\xFF\xFE\x80\n-,A,\x01,-,-\n" + lines},
        {"MarkupInCells", header + lines + "-,A,<20>&\"x\",-,'\n-,A,&amp;,-,-\n"},
        {"RefusedBeforeMeasured", header + "7,A,20,36,MCS0\n-,AB,-,-,-\n5,-,-,-,-\n" + lines},
        {"ColumnTwice", "Band,Chains,Band,Channel\n6,A,5,36\n-,-,6,101\n5,B,-,-\n2.4,A,5,40\n"},
        {"TextOfAnAnswer",
         header + "6,AB,80,101,Done\n-,A,-,Sarvex tool RETURN CODE,HE-MCS3\n" + lines},
        {"LongCell", header + lines + "6,A,20,1," + std::string(3000, 'x') + "\n" + lines}};
}

} // namespace EndToEnd
