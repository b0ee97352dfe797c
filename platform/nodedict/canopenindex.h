#pragma once

#include "nodedict/canopensubindex.h"
#include "nodedict/cohelper.h"

#include <QString>

namespace CANopen {

/// One object as a device description (EDS or DCF, CiA 306) declares it, without its sub-objects.
struct CANopenIndex
{
    quint32 index = 0;
    quint32 objecttype = Var; ///< CANopen::ObjectCode, or the number that the file has
    quint32 datatype = CAN::Unsigned8;
    QString name;
    QString description;
    quint32 category = Optional; ///< CANopen::ObjectCategory
    /// Number of equal sub-objects, from sub-index 1 on, that stand for sections of their own (`CompactSubObj`); 0 for
    /// an object that has sections for its sub-objects, or none.
    quint8 compactcount = 0;
    /// What these have in common. Its name is the base name of all.
    CANopenSubindex compacttemplate;

    /// One of the compact sub-objects, or for 0 the one that holds their number.
    CANopenSubindex compactSub(quint8 subindex) const
    {
        CANopenSubindex sub;
        if (subindex == 0) {
            sub.name = QStringLiteral("Highest subindex supported");
            sub.datatype = CAN::Unsigned8;
            sub.defaultvalue = QString::number(compactcount);
        } else {
            sub = compacttemplate;
            sub.name = name + QLatin1Char(' ') + QString::number(subindex);
            sub.parametervalue.clear();
            sub.denotation.clear();
        }
        sub.index = index;
        sub.subindex = subindex;
        return sub;
    }
};

} // namespace CANopen
