#pragma once

#include <QObject>
#include <QString>

#include <memory>

class ObjectDataBase;

/// Brings the settings of a project that an older program saved up to date, in its working copy.
///
/// Each correction returns true whatever it found: none of them can stop an open, not even by a write that fails. What
/// is up to date stays as it is, so that a correction can run at every open.
class ProjectConverter : public QObject
{
    Q_OBJECT

public:
    explicit ProjectConverter(QObject *parent = nullptr)
        : QObject(parent)
    {
    }

    void setDatabase(const std::shared_ptr<ObjectDataBase> &store) { store_ = store; }

    /// Settings whose meaning has changed: the group filter of the driver, the version of the UDS server.
    bool doGenericCorrection();
    /// Settings that have moved: stack path, NMT master list, USDO switches; and the PDO mapping of object 0x1032.
    bool doCorrection();
    /// Of the EnergyBus build (CiA 454): the kinds of devices, "ecurity" becoming "security", and the device count,
    /// which is raised to reach the last device named. A kind "correct" marks an entry that stays as it is.
    bool doEnergyBusCorrection();
    /// Of the builds with J1939: the numbers of SPNs that PGNs keep are counted anew.
    bool doJ1939Correction();

private:
    void takeStackPathFromUser();
    void moveMasterList();
    void switchOnWhereCounted(const QString &enabledKey, const QString &countKey);
    void unmapObject1032(quint8 line);
    QString correctedKind(const QString &key);

    std::shared_ptr<ObjectDataBase> store_;
};
