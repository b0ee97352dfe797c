#pragma once

#include "store/lineprotocols.h"

#include <QList>
#include <QString>

#include <memory>
#include <optional>

class ObjectDataBase;

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
    /// MiscSettings `generateML`: a project of one line is to carry its line number in names too.
    static bool generatesMultiLine(ObjectDataBase &store);
    /// A switch of the device (see `Settings`).
    bool isOn(const QString &key) const;
    bool isOnForJ1939(const QString &key) const;
    /// Read anew each time, since an import, a modifier file or a tool may have changed it after the open.
    bool usesV4() const;
};
