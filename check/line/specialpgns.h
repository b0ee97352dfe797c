#pragma once

#include <QList>

#include <optional>

class ObjectDataBase;

/// The PGNs that the J1939 stack handles by itself, so that a project may not define them: those of the transport,
/// address and group management (SAE J1939-21, -81), and of each diagnostic message DM1 to DM57 (SAE J1939-73) that
/// the J1939 settings `diagsupport_dm%1` or `diagsupport_dmtool%1` switch on for `line`, or for any line without
/// one. Each stands in the list once.
QList<quint32> specialPGNs(ObjectDataBase &store, std::optional<quint8> line = {});
