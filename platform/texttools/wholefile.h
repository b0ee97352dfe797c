#pragma once

class QSaveFile;

namespace TextTools {

/// Puts a new file in its place if all of it could be written. False, with the error of the file set, leaves the former
/// one there. A commit alone overlooks that the rest of the buffer found no room on the disk.
bool commitWhole(QSaveFile &file);

} // namespace TextTools
