#include "check/frame/warninggroups.h"

#include <QCoreApplication>

#include <array>

using namespace Qt::StringLiterals;

namespace {

struct Row
{
    WarningGroup id;
    QLatin1StringView key;
    const char *title;
    const char *description;
};

constexpr std::array rows{
    Row{WG_NAMING, "WG_NAMING"_L1, QT_TRANSLATE_NOOP("ModelCheck", "Names and identifiers"),
        QT_TRANSLATE_NOOP("ModelCheck", "Missing names of objects, PGNs, SPNs and signals, variable names used more "
                                        "than once and names not following the naming rules.")},
    Row{WG_IDENTITY, "WG_IDENTITY"_L1, QT_TRANSLATE_NOOP("ModelCheck", "Identity and production readiness"),
        QT_TRANSLATE_NOOP("ModelCheck", "Use of the norvane vendor-ID and manufacturer code and questionable settings "
                                        "of the identity object 0x1018.")},
    Row{WG_LAYOUT, "WG_LAYOUT"_L1, QT_TRANSLATE_NOOP("ModelCheck", "Mapping and signal layout"),
        QT_TRANSLATE_NOOP("ModelCheck", "Overlapping SPNs, mapped objects that do not fill their mapping entry and "
                                        "bitwise mapping conflicts.")},
    Row{WG_IDS, "WG_IDS"_L1, QT_TRANSLATE_NOOP("ModelCheck", "COB-ID and CAN-ID assignment"),
        QT_TRANSLATE_NOOP("ModelCheck", "PDOs not following the pre-defined connection set and CAN-IDs used for "
                                        "transmit and receive at the same time.")},
    Row{WG_TIMING_LIMITS, "WG_TIMING_LIMITS"_L1, QT_TRANSLATE_NOOP("ModelCheck", "Timing parameters and limit check"),
        QT_TRANSLATE_NOOP("ModelCheck", "Event timer and inhibit time combinations and objects with an activated limit "
                                        "check while it is disabled globally.")},
    Row{WG_EDS, "WG_EDS"_L1, QT_TRANSLATE_NOOP("ModelCheck", "EDS/XDD documentation quality"),
        QT_TRANSLATE_NOOP("ModelCheck", "Default values that should be written into the EDS or XDD file but are not "
                                        "marked to be exported.")},
    Row{WG_TOOLCHAIN, "WG_TOOLCHAIN"_L1, QT_TRANSLATE_NOOP("ModelCheck", "Protocol stack and toolchain"),
        QT_TRANSLATE_NOOP("ModelCheck", "Source files to be added to the project after a tool update and hints about "
                                        "the configured protocol stack folder.")},
    Row{WG_CONFIG, "WG_CONFIG"_L1, QT_TRANSLATE_NOOP("ModelCheck", "Settings consistency"),
        QT_TRANSLATE_NOOP("ModelCheck", "Settings without effect, recommended objects that are missing and features "
                                        "enabled without the required configuration.")},
};

} // namespace

QList<WarningGroupInfo> warningGroups()
{
    QList<WarningGroupInfo> groups;
    for (const Row &row : rows)
        groups.append({row.id, row.key, QCoreApplication::translate("ModelCheck", row.title),
                       QCoreApplication::translate("ModelCheck", row.description)});
    return groups;
}

QList<WarningGroup> parseWarningGroups(const QString &keys)
{
    QList<WarningGroup> groups;
    for (const QString &key : keys.split(u',')) {
        for (const Row &row : rows) {
            if (key.trimmed().compare(row.key, Qt::CaseInsensitive) == 0)
                groups.append(row.id);
        }
    }
    return groups;
}
