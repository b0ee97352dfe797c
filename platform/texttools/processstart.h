#pragma once

/// What a program does before anything else.
namespace ProcessStart {

/// Fills the places of closed standard streams: a file that is opened there would be read as input, or take messages.
void fillStandardStreams();

/// Sends the framework's debug output to the file that the environment variable NCX_LOG names, or nowhere; it never
/// reaches the console or a protocol on it. The file is begun anew; one that cannot be opened leaves the output silent.
void installDebugLog();

} // namespace ProcessStart
