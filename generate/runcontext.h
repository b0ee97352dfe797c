#pragma once

#include <QList>
#include <QString>

#include <memory>
#include <optional>

class ObjectDataBase;

/// Protocols of a line, by its type code. The codes are no bit masks: 3 is no type, and 5, 6 and 7 are the three pairs.
struct LineProtocols
{
    static LineProtocols ofType(int typeCode);

    bool canOpen = false;
    bool j1939 = false;
    bool rawCan = false;

    bool any() const { return canOpen || j1939 || rawCan; }
    bool combined() const { return int{canOpen} + int{j1939} + int{rawCan} > 1; }
};

/// What a run computes once at its start, and what its rows decide by.
struct RunContext
{
    std::shared_ptr<ObjectDataBase> store;
    QString outputFolder;
    QString baseName; ///< of the project file

    bool hasCANopen = false; ///< on some line below 240, as the next two
    bool hasJ1939 = false;
    bool hasRawCAN = false;
    QList<quint8> lines; ///< below 254, in the store's order
    bool multiLine = false;
    bool bootloaderMode = false;

    /// Reads the lines and their types from the store; `bootloaderMode` stays unset.
    static RunContext ofProject(const std::shared_ptr<ObjectDataBase> &store);

    bool hasAnyProtocol() const { return hasCANopen || hasJ1939 || hasRawCAN; }
    bool isJ1939Only() const { return hasJ1939 && !hasCANopen && !hasRawCAN; }
    /// Several protocols, or raw CAN alone: the stack then takes its initialisation from gen_mp.c.
    bool isMultiProtocol() const { return hasRawCAN || (hasCANopen && hasJ1939); }
    LineProtocols protocols(quint8 line) const { return protocolsOf(*store, line); }
    static LineProtocols protocolsOf(ObjectDataBase &store, quint8 line);
    QString generalSetting(const QString &key) const;
    /// Read anew each time, since an import, a modifier file or a tool may have changed it after the open.
    bool usesV4() const;
};

/// The lines of a project that take part in generation (scratch lines do not), and those that count for its protocols.
inline constexpr quint8 firstScratchLine = 254;
inline constexpr quint8 firstLineWithoutProtocol = 240;
