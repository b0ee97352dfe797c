#pragma once

#include <QLatin1StringView>
#include <QString>
#include <QtGlobal>

class Statements;

/// An index for the time of a job that writes many rows of a table by their keys, so that each write need not read the
/// table. It is never part of a saved project. One at a time for a table.
class TemporaryIndex
{
public:
    /// Keys of the messages and signals of a line.
    static constexpr QLatin1StringView pgnKeys{"PGNs%1 (number, direction)"};
    static constexpr QLatin1StringView spnKeys{"SPNs%1 (pgnnumber, spnnumber, direction)"};
    static constexpr QLatin1StringView canidKeys{"CANIDs%1 (id, direction)"};
    static constexpr QLatin1StringView elementKeys{"DataElements%1 (canid, number, direction)"};

    /// `tableAndColumns` with %1 for the line.
    TemporaryIndex(Statements &statements, quint8 line, QLatin1StringView tableAndColumns);
    ~TemporaryIndex();
    Q_DISABLE_COPY_MOVE(TemporaryIndex)

private:
    Statements &statements_;
    QString name_;
};
