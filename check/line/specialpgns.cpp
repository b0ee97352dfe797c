#include "check/line/specialpgns.h"

#include "store/settings.h"
#include "texttools/numbertext.h"

#include <algorithm>
#include <array>

using namespace Qt::StringLiterals;

namespace {

constexpr std::array<quint32, 9> alwaysSpecial{59904, 60928, 60416, 60160, 59392, 3584, 65240, 9472, 17152};

/// Diagnostic messages whose PGNs follow each other, upwards or downwards.
struct DiagnosticRange
{
    quint32 firstDm;
    quint32 lastDm;
    quint32 firstPgn;
    int step = 1;
};

// DM9 has no PGN of its own here.
constexpr std::array diagnosticRanges{
    DiagnosticRange{1, 6, 65226},         DiagnosticRange{7, 7, 58112},         DiagnosticRange{8, 8, 65232},
    DiagnosticRange{10, 12, 65234},       DiagnosticRange{13, 13, 57088},       DiagnosticRange{14, 17, 55552, -256},
    DiagnosticRange{18, 19, 54272, -256}, DiagnosticRange{20, 21, 49664, -256}, DiagnosticRange{22, 22, 49920},
    DiagnosticRange{23, 26, 64949},       DiagnosticRange{27, 27, 64898},       DiagnosticRange{28, 28, 64896},
    DiagnosticRange{29, 29, 40448},       DiagnosticRange{30, 30, 41984},       DiagnosticRange{31, 35, 41728, -256},
    DiagnosticRange{36, 52, 64868, -1},   DiagnosticRange{53, 55, 64721},       DiagnosticRange{56, 57, 64711, -1},
};

bool isOnFor(const Settings &settings, const QString &key, std::optional<quint8> line)
{
    if (line)
        return settings.isOn(key, *line);
    const auto isOn = [](const QString &part) { return NumberText::byPrefix(part).value_or(0) > 0; };
    return std::ranges::any_of(settings.text(key).split(u','), isOn);
}

} // namespace

QList<quint32> specialPGNs(ObjectDataBase &store, std::optional<quint8> line)
{
    const Settings settings(store, Settings::Table::J1939);
    QList<quint32> pgns(alwaysSpecial.begin(), alwaysSpecial.end());
    for (const DiagnosticRange &range : diagnosticRanges) {
        quint32 pgn = range.firstPgn;
        for (quint32 dm = range.firstDm; dm <= range.lastDm; ++dm, pgn += static_cast<quint32>(range.step)) {
            const bool on = isOnFor(settings, u"diagsupport_dm%1"_s.arg(dm), line) ||
                            isOnFor(settings, u"diagsupport_dmtool%1"_s.arg(dm), line);
            if (on && !pgns.contains(pgn))
                pgns.append(pgn);
        }
    }
    return pgns;
}
