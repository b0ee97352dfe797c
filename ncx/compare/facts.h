#pragma once

#include "check/line/checkedline.h"
#include "ncx/compare/part.h"

#include <QList>

class DeviceLine;
class ObjectDataBase;

/// One thing that a device says of one of its parts, in the words of its protocol.
struct Fact
{
    QString name = {};     ///< "data type"; of a setting, its key
    QString value = {};    ///< as the project has it
    bool isUsual = false;  ///< what holds where nothing is said
    bool isNumber = false; ///< the same as any other text of this number

    /// True for another value.
    bool differsFrom(const Fact &other) const;
};
using Facts = QList<Fact>;

/// How much of a device is told.
enum class Scope : quint8
{
    Project,
    Description ///< what an EDS says of it (CiA 306)
};

/// What is said of the parts of a device. Parts of one kind have the same facts in the same order, but for the settings
/// of lines and projects, which come with those that there are, by key.
namespace FactsOf {

Facts object(const CheckedObject &object, Scope scope);
Facts subindex(const CheckedObject &object, const CheckedSubindex &sub, Scope scope);
Facts pgn(const CheckedPGN &pgn);
Facts canId(const CheckedCanId &canId);
Facts signal(const CheckedSignal &signal);
Facts line(ObjectDataBase &store, DeviceLine &line, Scope scope);
Facts lineSettings(ObjectDataBase &store, DeviceLine &line, Scope scope);
Facts projectSettings(ObjectDataBase &store);

/// A service that the line's server offers.
struct Service
{
    quint8 sid = 0;
    QString name = {};
    Facts facts = {};
};
QList<Service> services(ObjectDataBase &store, quint8 line);

} // namespace FactsOf
