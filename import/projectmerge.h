#pragma once

#include <QtGlobal>

class ObjectDataBase;
struct ImportReport;

/// What one project takes over from another.
///
/// Objects, PGNs and CAN-IDs come as wholes, with their children, in place of those that have the same number (and
/// direction) on the line: a message made of the signals of two projects would have them on top of each other. What the
/// source lacks stays as it is. All ranges include both ends. What is taken is added to the report.
namespace ProjectMerge {

void copyObjects(ObjectDataBase &target, quint8 line, ObjectDataBase &source, quint8 sourceLine, quint16 first,
                 quint16 last, ImportReport &report);
void copyPGNs(ObjectDataBase &target, quint8 line, ObjectDataBase &source, quint8 sourceLine, quint32 first,
              quint32 last, ImportReport &report);
/// Of an identifier the 29 bits count for the range, not the mark of an extended one.
void copyCANIDs(ObjectDataBase &target, quint8 line, ObjectDataBase &source, quint8 sourceLine, quint32 first,
                quint32 last, ImportReport &report);

} // namespace ProjectMerge
