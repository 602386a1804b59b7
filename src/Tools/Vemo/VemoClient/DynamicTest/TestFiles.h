#pragma once

#include <fstream>
#include <string>

/// The files of a test run: the test file for reading, in text mode, and the two result files,
/// which are created anew. All are closed when the object goes.
struct TestFiles {
    TestFiles(const std::string& testFileName, const std::string& csvFileName,
              const std::string& xmlFileName);

    /// Whether all three are open and the test file can be read; on some systems a directory can be
    /// opened.
    bool AreOpen() const { return test.is_open() && !test.bad() && csv.is_open() && xml.is_open(); }

    std::ifstream test;
    std::ofstream csv;
    std::ofstream xml;
};
