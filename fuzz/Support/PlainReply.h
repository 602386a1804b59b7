#pragma once

#include <cstddef>
#include <deque>
#include <string>

/// The client's side of an answer once more, written for plainness: the fuzz targets compare the
/// real one with it.
struct PlainReply {
    std::string information;
    std::string error;
    int returnCode = 0;
    /// Every line of the body, each followed by a line feed, up to the one that failed.
    std::string allLines;
    /// What is wrong with the line after the return-code marker; empty when nothing is.
    std::string problem;
};

/// The message that a client takes off the pieces which the daemon sends, one or several reads
/// each. The pieces that were read are gone afterwards. An empty piece closes the connection, and
/// so does the end of the pieces. reads is set to the number of reads.
std::string PlainReceive(std::deque<std::string>& pieces, int& reads);

/// Cuts the HTTP head off the message and sorts the lines after it.
PlainReply PlainSort(const std::string& message);
