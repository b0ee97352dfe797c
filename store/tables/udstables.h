#pragma once

#include "store/tables/tablefamily.h"

/// The services of a line's UDS server (ISO 14229-1): `UDSSettings%1`.
class UdsTables : public TableFamily
{
public:
    using Service = StoreRecords::UDSService;

    /// What is kept of a service.
    enum class Column
    {
        Active,
        Sessions,
        UserLevels,
        Authentication
    };

    explicit UdsTables(TableContext &context)
        : TableFamily(context)
    {
    }

    [[nodiscard]] bool createUDSSettingsTable(quint8 line);
    /// Writes one column of a service, which is a literal text. The row is replaced as a whole, so that a service
    /// without one gets it here.
    [[nodiscard]] bool set(quint8 line, quint8 sid, Column column, const QString &value);
    [[nodiscard]] bool setActive(quint8 line, quint8 sid, bool active);
    QString text(quint8 line, quint8 sid, Column column) { return value(line, sid, column).toString(); }
    bool isActive(quint8 line, quint8 sid) { return value(line, sid, Column::Active).toInt() != 0; }
    bool anyActive(quint8 line);
    QList<Service> getUDSServices(quint8 line);

private:
    QVariant value(quint8 line, quint8 sid, Column column);
};
