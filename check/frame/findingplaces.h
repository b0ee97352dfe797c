#pragma once

#include "check/frame/finding.h"
#include "check/line/checkedline.h"
#include "check/line/numericsettings.h"
#include "check/line/pdo.h"

// What the subject of a rule tells of the place of a finding, in addition to the subject around it.

inline void narrow(FindingPlace &place, const quint8 &line)
{
    place.line = line;
}

inline void narrow(FindingPlace &place, const CheckedObject &object)
{
    place.index = object.index;
}

inline void narrow(FindingPlace &place, const CheckedSubindex &sub)
{
    place.index = sub.index;
    place.subindex = sub.subindex;
}

/// The entries of an SRDO belong to the mapping object, which is not the one that the rule tells of.
inline void narrow(FindingPlace &place, const PDO::MappingEntry &entry)
{
    if (place.index && PDO::isMapping(*place.index))
        place.subindex = entry.number;
}

inline void narrow(FindingPlace &place, const CheckedPGN &pgn)
{
    place.pgn = pgn.data.number;
    place.direction = pgn.data.direction;
}

inline void narrow(FindingPlace &place, const CheckedCanId &canId)
{
    place.canId = canId.data.id;
    place.direction = canId.data.direction;
}

inline void narrow(FindingPlace &place, const CheckedSignal &signal)
{
    if (place.canId)
        place.signal = signal.position;
    else
        place.spn = signal.data.spnnumber;
}

inline void narrow(FindingPlace &place, const CheckedSetting &setting)
{
    place.setting = setting.key;
}

/// A text tells of no place.
inline void narrow(FindingPlace & /*place*/, const QString & /*text*/) {}
