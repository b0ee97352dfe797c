#pragma once

#include <QList>
#include <QString>

/// What an import took from a file and what it dropped, for whoever wants to show it.
struct ImportReport
{
    /// A part of the file that did not come in.
    struct Dropped
    {
        qsizetype line = 0; ///< of the file, from 1; 0 where it has none
        QString what;

        friend bool operator==(const Dropped &, const Dropped &) = default;
    };

    /// Of more dropped parts only the number is kept.
    static constexpr qsizetype mostKept = 1000;

    qsizetype objects = 0;
    qsizetype subObjects = 0;
    qsizetype messages = 0;    ///< PGNs and CAN-IDs
    qsizetype signalCount = 0; ///< SPNs and data elements
    QList<Dropped> dropped;    ///< in the order of the file, as far as they are kept
    qsizetype droppedCount = 0;
    QList<Dropped> notes; ///< what came in, but not as the file has it
    qsizetype noteCount = 0;

    void drop(qsizetype line, const QString &what);
    void note(qsizetype line, const QString &what);
    /// Drops what could not be written; the reason stands in the log before it. Returns whether it was written.
    bool wrote(bool done, const QString &what, qsizetype line = 0);
    /// What was taken in one line, and a line for each part that was dropped and kept.
    QString text() const;
};
