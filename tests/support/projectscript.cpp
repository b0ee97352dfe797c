#include "support/projectscript.h"

#include "support/recordfields.h"

#include <QHash>

#include <gtest/gtest.h>

#include <algorithm>

using namespace Qt::StringLiterals;
using namespace TestSupport;
using RecordFields::assign;
using RecordFields::number;

namespace {

using ServiceWriter = bool (UdsTables::*)(quint8, quint8, const QString &);

/// What writes this column of a diagnostic service; null for another word.
ServiceWriter serviceWriter(const QString &word)
{
    static const QHash<QString, ServiceWriter> writers{
        {u"sessions"_s, &UdsTables::setUDSServiceSessions},
        {u"userlevels"_s, &UdsTables::setUDSServiceUserLevels},
        {u"authentication"_s, &UdsTables::setUDSServiceAuthentication},
    };
    return writers.value(word);
}

/// "0x1018:2", or "0x1018" for its subindex 0.
std::pair<quint16, quint8> address(const QString &text)
{
    return {static_cast<quint16>(number(text.section(u':', 0, 0))),
            text.contains(u':') ? static_cast<quint8>(number(text.section(u':', 1))) : quint8{0}};
}

} // namespace

ProjectScript::ProjectScript(std::shared_ptr<ObjectDataBase> store)
    : store_(store ? std::move(store) : std::make_shared<ObjectDataBase>())
{
    if (!store_->isOpen()) {
        EXPECT_TRUE(store_->createNewDataBase());
    }
}

void ProjectScript::run(const QStringList &commands)
{
    const ObjectDataBase::Transaction transaction(*store_);
    for (const QString &command : commands)
        run(command);
}

bool ProjectScript::runSetting(const QString &word, const QString &key, const QString &value)
{
    if (word == "line"_L1) {
        line_ = static_cast<quint8>(number(key));
        if (!store_->nodeExists(line_)) {
            EXPECT_TRUE(store_->addNode(line_, {}));
        }
        return store_->setGeneralSetting(u"line%1type"_s.arg(line_), value);
    }
    if (word == "description"_L1)
        store_->setCurrentLine(line_);
    if (const auto write = serviceWriter(word))
        return ((*store_).*write)(line_, static_cast<quint8>(number(key)), value);
    if (word == "active"_L1)
        return store_->setUDSServiceActive(line_, static_cast<quint8>(number(key)), number(value) != 0);
    const QStringList keys = key.split(u' ');
    return std::ranges::all_of(keys, [&](const QString &one) {
        return (word == "general"_L1 && store_->setGeneralSetting(one, value)) ||
               (word == "j1939"_L1 && store_->setJ1939Setting(one, value)) ||
               (word == "misc"_L1 && store_->setMiscSetting(one, value)) ||
               (word == "energybus"_L1 && store_->setEnergyBusSetting(one, value)) ||
               (word == "description"_L1 && store_->setDescriptionSetting(one, value));
    });
}

/// Adds an object with the subindices from 0 to the last.
void ProjectScript::addSubs(quint16 index, quint8 last)
{
    EXPECT_TRUE(store_->addIndex(line_, index, {}));
    for (quint16 subindex = 0; subindex <= last; ++subindex)
        EXPECT_TRUE(store_->addSubIndex(line_, index, static_cast<quint8>(subindex), {}));
}

void ProjectScript::run(const QString &command)
{
    const QString word = command.section(u' ', 0, 0);
    const QString rest = command.section(u' ', 1);
    const auto numberAt = [&](int place) { return number(rest.section(u' ', place, place)); };
    const auto direction = [&] { return static_cast<quint8>(numberAt(1)); };
    if (word == "objects"_L1) {
        for (const QString &index : rest.split(u' '))
            addSubs(address(index).first, 0);
    } else if (word == "subs"_L1) {
        addSubs(address(rest).first, address(rest).second);
    } else if (word == "object"_L1) {
        const quint16 index = address(rest.section(u' ', 0, 0)).first;
        auto data = store_->getIndex(line_, index).value_or(StoreRecords::IndexData());
        assign(data, rest.section(u' ', 1));
        EXPECT_TRUE(store_->addIndex(line_, index, data));
    } else if (word == "sub"_L1) {
        const auto [index, subindex] = address(rest.section(u' ', 0, 0));
        auto data = store_->getSubIndex(line_, index, subindex).value_or(StoreRecords::SubIndexData());
        assign(data, rest.section(u' ', 1));
        EXPECT_TRUE(store_->addSubIndex(line_, index, subindex, data, Quotes::Kept));
    } else if (word == "remove"_L1) {
        const auto [index, subindex] = address(rest);
        EXPECT_TRUE(rest.contains(u':') ? store_->removeSubIndex(line_, index, subindex)
                                        : store_->removeIndex(line_, index));
    } else if (word == "pgn"_L1) {
        auto data = store_->getPGN(line_, numberAt(0), direction()).value_or(StoreRecords::PGN());
        data.direction = direction();
        assign(data, rest.section(u' ', 2));
        EXPECT_TRUE(store_->addPGN(line_, numberAt(0), data));
    } else if (word == "spn"_L1) {
        auto data = store_->getSPN(line_, numberAt(0), direction(), numberAt(2)).value_or(StoreRecords::SPN());
        assign(data, rest.section(u' ', 3));
        EXPECT_TRUE(store_->addSPN(line_, numberAt(0), direction(), numberAt(2), data));
    } else if (word == "canid"_L1) {
        auto data = store_->getCANID(line_, numberAt(0), direction()).value_or(StoreRecords::CANID());
        data.direction = direction();
        assign(data, rest.section(u' ', 2));
        EXPECT_TRUE(store_->addCANID(line_, numberAt(0), data));
    } else if (word == "signal"_L1) {
        auto data =
            store_->getDataElement(line_, numberAt(0), direction(), numberAt(2)).value_or(StoreRecords::DataElement());
        assign(data, rest.section(u' ', 3));
        EXPECT_TRUE(store_->removeDataElement(line_, numberAt(0), numberAt(2), direction()));
        EXPECT_TRUE(store_->addDataElement(line_, numberAt(0), direction(), numberAt(2), data));
    } else {
        QString value = rest.section(u" ="_s, 1);
        if (value.startsWith(u' '))
            value.remove(0, 1);
        EXPECT_TRUE(runSetting(word, rest.section(u" ="_s, 0, 0), value)) << "no command: " << qPrintable(command);
    }
}
