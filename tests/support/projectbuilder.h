#pragma once

#include "store/objectdatabase.h"
#include "support/printing.h"

#include <functional>

namespace TestSupport {

/// Makes a project in a few words. Calls apply to the line, object, PGN or CAN-ID that was named last.
class ProjectBuilder
{
public:
    /// A project of line 0, a CANopen line.
    ProjectBuilder();

    /// Adds the line, or names it, and sets its type code.
    ProjectBuilder &line(quint8 line, int type);
    /// Gives the project and its line what the check asks for: the timer, and for CANopen a node-id, 0x1000, 0x1001 and
    /// 0x1017, for J1939 a NAME and an address.
    ProjectBuilder &checked();
    ProjectBuilder &object(quint16 index, const QString &name, const StoreRecords::Metadata &metadata = {});
    ProjectBuilder &sub(quint8 subindex, const QString &name,
                        const std::function<void(StoreRecords::SubIndexData &)> &change = {});
    ProjectBuilder &pgn(quint32 number, quint8 direction, const QString &name,
                        const std::function<void(StoreRecords::PGN &)> &change = {});
    ProjectBuilder &spn(quint32 number, const QString &name,
                        const std::function<void(StoreRecords::SPN &)> &change = {});
    ProjectBuilder &canId(quint32 id, quint8 direction, const QString &name,
                          const std::function<void(StoreRecords::CANID &)> &change = {});
    ProjectBuilder &element(quint32 number, const QString &name,
                            const std::function<void(StoreRecords::DataElement &)> &change = {});
    ProjectBuilder &general(const QString &key, const QString &value);
    ProjectBuilder &j1939(const QString &key, const QString &value);
    ProjectBuilder &misc(const QString &key, const QString &value);

    const std::shared_ptr<ObjectDataBase> &store() const { return store_; }
    /// Writes the project, in the form that the path's ending asks for.
    bool save(const QString &path) { return store_->saveDatabase(path); }

private:
    std::shared_ptr<ObjectDataBase> store_ = std::make_shared<ObjectDataBase>();
    quint8 line_ = 0;
    quint16 index_ = 0;
    quint32 message_ = 0;
    quint8 direction_ = 0;
    quint32 signalCount_ = 0;
};

} // namespace TestSupport
