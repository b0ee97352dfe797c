#pragma once

#include <QList>
#include <QString>

/// Groups of warnings, each of which a project may suppress as a whole (MiscSettings `SuppressedWarningGroups`).
enum WarningGroup : quint8
{
    WG_NAMING = 1,
    WG_IDENTITY = 2,
    WG_LAYOUT = 3,
    WG_IDS = 4,
    WG_TIMING_LIMITS = 5,
    WG_EDS = 6,
    WG_TOOLCHAIN = 7,
    WG_CONFIG = 8
};

/// What a user is told about a group.
struct WarningGroupInfo
{
    WarningGroup id;
    QString key; ///< name of the enumerator
    QString title;
    QString description;
};

/// All groups, in the order of their ids.
QList<WarningGroupInfo> warningGroups();

/// The groups of a comma list of keys. Blanks around a key and its letter case do not matter; unknown keys are dropped.
QList<WarningGroup> parseWarningGroups(const QString &keys);
