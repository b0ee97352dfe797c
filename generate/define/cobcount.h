#pragma once

#include <QtGlobal>

class LineDictionary;
class ObjectDataBase;

/// How many messages (communication objects) the stack keeps for a line.
namespace CobCount {

/// What the CANopen protocol needs on a line: its services by the objects that they have (CiA 301, 302, 304, 305, 447,
/// 454, 1301), and the project's `additional_cob_count`.
quint32 ofCanOpen(ObjectDataBase &store, const LineDictionary &dictionary);

/// The part of `additional_cob_count` for a line. A list that has no entry for it counts its entries instead.
quint32 additional(ObjectDataBase &store, quint8 line);

/// What ISO-TP (ISO 15765-2) and UDS (ISO 14229-1) need.
quint32 ofDiagnostics(ObjectDataBase &store, quint8 line);

} // namespace CobCount
