#pragma once

#include <QString>

#include <vector>

class CodeWriter;
class ObjectDataBase;
struct Dialect;
struct DictionaryTables;

/// The COB-IDs that a device takes from its project in place of those of the predefined connection set (CiA 301).
struct PredefinedSet
{
    struct CobId
    {
        quint16 index = 0;
        quint8 subindex = 0;
        bool addsNodeId = false;
        QString offset; ///< what is added to the node id, as the project has it; unused without
    };

    struct Line
    {
        quint8 line = 0;
        std::vector<CobId> sdoServers;
        std::vector<CobId> sdoClients;
        std::vector<CobId> rpdos;
        std::vector<CobId> tpdos;

        bool usesNodeId() const;
        bool isEmpty() const { return sdoServers.empty() && sdoClients.empty() && rpdos.empty() && tpdos.empty(); }
    };

    /// The lines with the setting `overwrite_predef`.
    static PredefinedSet collect(ObjectDataBase &store, const DictionaryTables &tables);

    bool multiLine = false;
    std::vector<Line> lines;
};

/// Writes the function that sets these COB-IDs; nothing if no line asks for it.
void writePredefinedSet(CodeWriter &out, const PredefinedSet &set, const Dialect &dialect);
