#pragma once

#include "ncx/compare/compareddevice.h"

/// A rule by which a change breaks the other side of the bus.
struct BreakingRule;

/// A difference between two devices.
struct DeviceChange
{
    enum class Kind : quint8
    {
        Added,
        Removed,
        Changed
    };

    Kind kind = Kind::Changed;
    PartPlace place = {};
    QString title = {};    ///< what the part is called
    QString property = {}; ///< of a change: what is another now
    QString before = {};
    QString after = {};
    const BreakingRule *rule = nullptr; ///< null for a change that breaks nothing

    QJsonObject toJson() const;
};

/// What differs between two devices, in the order of lines and addresses. Of a part that only one side has its own
/// parts are not told. If one side is a description, only what descriptions say is compared.
class DeviceChanges
{
public:
    /// Lines are compared with those of their number; or this line alone, which is that of a description too.
    DeviceChanges(ComparedDevice &before, ComparedDevice &after, std::optional<quint8> only = {});

    const QList<DeviceChange> &all() const { return changes_; }
    QList<DeviceChange> breaking() const;

    /// A line of both sides; of one that only one side has the other is null.
    struct Sides
    {
        quint8 line = 0; ///< by which its changes are told
        DeviceLine *before = nullptr;
        DeviceLine *after = nullptr;
    };
    const QList<Sides> &lines() const { return lines_; }
    ComparedDevice &before() const { return before_; }
    ComparedDevice &after() const { return after_; }

    /// The form "ncx-diff" (docs/ncx.md).
    static QJsonObject toJson(const QString &before, const QString &after, const QList<DeviceChange> &changes);

private:
    void compareLines(DeviceLine &before, DeviceLine &after);
    void compareObjects(DeviceLine &before, DeviceLine &after);
    void compareSubindices(const CheckedObject &before, const CheckedObject &after);
    void comparePgns(DeviceLine &before, DeviceLine &after);
    void compareCanIds(DeviceLine &before, DeviceLine &after);
    void compareSignals(const CheckedCanId &before, const CheckedCanId &after);
    void compareServices();
    void compareFacts(const PartPlace &place, const QString &title, const Facts &before, const Facts &after);
    void compareSettings(const PartPlace &place, Facts before, Facts after);
    void tell(DeviceChange change);
    void tellWhole(DeviceChange::Kind kind, const PartPlace &place, const QString &title);
    PartPlace place(PartKind kind, quint32 number = 0, quint32 sub = 0, quint8 direction = 0) const;

    ComparedDevice &before_;
    ComparedDevice &after_;
    Scope scope_;
    quint8 line_ = 0;
    QList<Sides> lines_;
    QList<DeviceChange> changes_;
};
