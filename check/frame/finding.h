#pragma once

#include "check/frame/warninggroups.h"

#include <QString>

#include <optional>

/// Where a finding is: what its rule looked at. What the rule did not look at is unset.
struct FindingPlace
{
    std::optional<quint8> line = {};
    std::optional<quint16> index = {};
    std::optional<quint8> subindex = {};
    std::optional<quint32> pgn = {};
    std::optional<quint32> spn = {};
    std::optional<quint32> canId = {};
    std::optional<quint8> direction = {}; ///< of the PGN or CAN-ID
    std::optional<int> signal = {};       ///< place of a data element in its CAN-ID, from 1
    QString setting = {};                 ///< its key
};

/// What a check has found, as a value.
struct CheckFinding
{
    enum class Kind
    {
        Error,
        Warning,
        Hint,
        Correction ///< of the project, and done
    };

    Kind kind = Kind::Error;
    QString rule = {}; ///< name of the rule; empty for a line without a type, which no rule looks at
    std::optional<WarningGroup> group = {};
    FindingPlace place = {};
    QString text = {}; ///< with markup, as it stands in the log of a run
};
