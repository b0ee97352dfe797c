#pragma once

#include <QByteArray>

/// Standard input and output as plain streams of bytes, without buffers between them and the client.
namespace StandardStreams {

/// Waits for input and returns what is there, as far as it fits a chunk; empty at the end of the input or on an error.
QByteArray readInput();

/// Writes all bytes to standard output. False if the reader of the output has gone.
bool writeOutput(const QByteArray &bytes);

} // namespace StandardStreams
