#pragma once

/// The framework's debug and warning output, which must never reach the console or a protocol on it.
namespace DebugLog {

/// Silences it for the whole process, or sends it to the file that the environment variable NCX_LOG names. The file is
/// begun anew; one that cannot be opened leaves the output silent.
void install();

} // namespace DebugLog
