#pragma once

#include <QList>
#include <QString>
#include <QStringList>

class ObjectDataBase;
class ProfileDatabases;

/// What a new project is to be.
struct NewProject
{
    QList<int> lineTypes = {1}; ///< codes, one per line (store/lineprotocols.h)
    int nodeId = 1;             ///< of its CANopen lines, 1 to 127
    QStringList profiles = {};  ///< of its CANopen lines, by their ids (import/profiledatabases.h)
    bool namesLines = true;
    int describedLine = -1; ///< a line that gets no objects, since those of a description come into it; -1 for none

    /// The code of a type by the name that the server has for it, in any letter case; 0 for no name.
    static int lineType(const QString &name);

    /// Fills a store with a project that passes the check: on CANopen lines the mandatory objects of CiA 301 and of the
    /// profiles, with the device type of the first of them; on J1939 lines a name and an address. The reason for which
    /// that cannot be, a sentence part; empty if it is done.
    QString makeIn(ObjectDataBase &store) const;

private:
    [[nodiscard]] bool addLines(ObjectDataBase &store) const;
    [[nodiscard]] bool fillLines(ObjectDataBase &store, ProfileDatabases &databases) const;
    [[nodiscard]] bool fillCANopen(ObjectDataBase &store, quint8 line, ProfileDatabases &databases) const;
};
