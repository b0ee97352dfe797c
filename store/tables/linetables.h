#pragma once

#include "store/tables/tablefamily.h"

class SettingsTables;
class UdsTables;

/// The CAN lines of a device: the table `Nodes`, and the tables of each line as a whole.
class LineTables : public TableFamily
{
public:
    using Node = StoreRecords::NodeData;

    LineTables(TableContext &context, SettingsTables &settings, UdsTables &uds)
        : TableFamily(context)
        , settings_(settings)
        , uds_(uds)
    {
    }

    /// Adds or updates a line and makes its tables. Of an existing line five fields stay: `isbootupmanager`,
    /// `isconfigmanager`, `excludepdolinking`, `multilinedata`, `lssslave`.
    [[nodiscard]] bool addNode(quint8 line, const Node &data, Quotes quotes = Quotes::Literal);
    /// Removes a line; the comma lists of later lines move down by one place.
    [[nodiscard]] bool removeNode(quint8 line);
    [[nodiscard]] std::optional<Node> getNode(quint8 line);
    QList<quint8> getNodeList();
    bool nodeExists(quint8 line);
    /// Writes one column of a line that exists; the form in which text projects arrive.
    [[nodiscard]] bool setNodeSqlValue(const QString &nodeId, const QString &column, const QVariant &value,
                                       Quotes quotes = Quotes::Literal);

private:
    bool writeNodeRow(quint8 line, const Node &data, Quotes quotes);
    bool createTables(quint8 line);
    bool activateBasicServices(quint8 line);

    SettingsTables &settings_;
    UdsTables &uds_;
};
