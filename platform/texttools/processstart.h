#pragma once

/// What a program does before anything else.
namespace ProcessStart {

/// Gives all threads at most so many heaps. The jobs of the programs run one after another, each on a thread of its
/// own: with heaps of their own these would keep what they have freed from each other. To be called before the first
/// thread starts.
void limitHeaps(int most);

/// Fills the places of closed standard streams: a file that is opened there would be read as input, or take messages.
void fillStandardStreams();

/// Sends the framework's debug output to the file that the environment variable NCX_LOG names, or nowhere; it never
/// reaches the console or a protocol on it. The file is begun anew; one that cannot be opened leaves the output silent.
void installDebugLog();

} // namespace ProcessStart
