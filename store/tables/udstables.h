#pragma once

#include "store/tables/tablefamily.h"

/// The services of a line's UDS server (ISO 14229-1): `UDSSettings%1`. What a service is for, its sessions, user levels
/// and authentication, are comma lists of numbers, and literal texts.
class UdsTables : public TableFamily
{
public:
    using Service = StoreRecords::UDSService;

    explicit UdsTables(TableContext &context)
        : TableFamily(context)
    {
    }

    [[nodiscard]] bool createUDSSettingsTable(quint8 line);

    // One column of a service. A service without a row gets it here, inactive and with its other columns empty.
    [[nodiscard]] bool setUDSServiceActive(quint8 line, quint8 sid, bool active);
    [[nodiscard]] bool setUDSServiceSessions(quint8 line, quint8 sid, const QString &sessions);
    [[nodiscard]] bool setUDSServiceUserLevels(quint8 line, quint8 sid, const QString &levels);
    [[nodiscard]] bool setUDSServiceAuthentication(quint8 line, quint8 sid, const QString &authentication);
    bool getUDSServiceActive(quint8 line, quint8 sid);
    QString getUDSServiceSessions(quint8 line, quint8 sid);
    QString getUDSServiceUserLevels(quint8 line, quint8 sid);
    QString getUDSServiceAuthentication(quint8 line, quint8 sid);

    bool anyUDSServiceActive(quint8 line);
    QList<Service> getUDSServices(quint8 line);

private:
    /// What is kept of a service.
    enum class Column
    {
        Active,
        Sessions,
        UserLevels,
        Authentication
    };

    bool setColumn(quint8 line, quint8 sid, Column column, const QString &value);
    QVariant columnOf(quint8 line, quint8 sid, Column column);
};
