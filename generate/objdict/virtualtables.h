#pragma once

#include "generate/model/dictionarytables.h"

/// A row of vod_description.
struct VirtualDescriptionRow
{
    quint16 index = 0;
    quint8 subindex = 0;
    quint16 dataType = 0;
    /// The index for an object that a service of the stack uses, else the number of the subindex, from 0, among the
    /// virtual ones that are stored alike, those without a row of their own included.
    quint16 value = 0;
    bool valueIsIndex = false;
    Attributes attributes{};
    quint16 defaultPosition = 0; ///< in the constants of gen_objdict.c, as the limits
    quint16 lowerPosition = 0;
    quint16 upperPosition = 0;

    /// The name of the data that the application serves: index and subindex in hexadecimal, "V_2000_1".
    QString dataName() const;
};

/// The virtual object dictionary: the objects of all lines whose subindex 0 is virtual, with their virtual subindices.
/// Objects that lines share have the rows of line 0.
struct VirtualTables
{
    std::vector<VirtualDescriptionRow> description;
    std::vector<AssignRow> assign;
};

/// `dynamic`: the dictionary may grow at run time (GeneralSettings `dynod`), which each row then tells.
VirtualTables collectVirtualTables(const DictionaryTables &tables, bool dynamic);

/// True if the project has a virtual object, and so needs gen_vobjdict.c.
bool hasVirtualObjects(ObjectDataBase &store);
