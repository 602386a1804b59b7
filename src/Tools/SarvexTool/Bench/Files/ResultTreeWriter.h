#pragma once

#include "Tools/SarvexTool/Bench/Files/BadFile.h"

#include <string>

namespace Bench {

/// What a result tree, result.xml, is made of.
struct ResultRows {
    /// The name of result.csv, as clients on this system have written it.
    std::string table;
    /// The first line of the test file as a text of this system, without its end; empty for an
    /// empty file.
    std::string header;
    /// "-" for an unknown one.
    std::string countryCode;
};

/// Writes the result tree that the client writes after it has written these rows, equal byte for
/// byte. It is written beside the file of that name, as "NAME.part", and takes its place when it is
/// whole. Rows are read one by one: the memory is that of the tree.
///
/// Throws BadInput when the rows cannot be read, and with the line when a row is none of a client
/// that was given this header: nothing is written then. Throws BadOutput when the tree cannot be
/// written.
void WriteResultTree(const ResultRows& rows, const std::string& tree);

} // namespace Bench
