#include "Tools/Vemo/VemoClient/DynamicTest/TestFiles.h"

TestFiles::TestFiles(const std::string& testFileName, const std::string& csvFileName,
                     const std::string& xmlFileName)
    : test(testFileName), csv(csvFileName), xml(xmlFileName) {
    // The first read tells a directory from a file. An empty file is none of its business: the
    // header line is read whether that works or not.
    test.peek();
}
