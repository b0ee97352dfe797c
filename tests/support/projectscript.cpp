#include "support/projectscript.h"

#include "support/recordfields.h"

#include <gtest/gtest.h>

#include <QHash>

using namespace Qt::StringLiterals;
using namespace TestSupport;
using RecordFields::assign;
using RecordFields::number;

namespace {

/// "0x1018:2", or "0x1018" for its subindex 0.
std::pair<quint16, quint8> address(const QString &text)
{
    return {static_cast<quint16>(number(text.section(u':', 0, 0))),
            text.contains(u':') ? static_cast<quint8>(number(text.section(u':', 1))) : quint8{0}};
}

/// The short names of fields, and the attributes that have one.
const QHash<QString, QString> shortNames{
    {u"access"_s, u"accesstype"_s},
    {u"as"_s, u"implementation"_s},
    {u"bit"_s, u"bitposition"_s},
    {u"bits"_s, u"bitsize"_s},
    {u"code"_s, u"objecttype"_s},
    {u"cycle"_s, u"cycletime_ms"_s},
    {u"default"_s, u"defaultineds"_s},
    {u"eds"_s, u"writedefaulttoeds"_s},
    {u"high"_s, u"uplimit"_s},
    {u"inhibit"_s, u"inhibittime_ms"_s},
    {u"limited"_s, u"limitineds"_s},
    {u"low"_s, u"lowlimit"_s},
    {u"map"_s, u"pdomapping"_s},
    {u"noread"_s, u"refuseread"_s},
    {u"nowrite"_s, u"refusewrite"_s},
    {u"safe"_s, u"issafe"_s},
    {u"senders"_s, u"multisourceaddress"_s},
    {u"shared"_s, u"sharedlines"_s},
    {u"stored"_s, u"nvstorage"_s},
    {u"type"_s, u"datatype"_s},
    {u"value"_s, u"defaultvalue"_s},
    {u"var"_s, u"varname"_s},
};
const QHash<QString, QString> attributes{{u"tag"_s, u"eds_define"_s}, {u"edstype"_s, u"eds_datatype"_s}};

template <class Record>
void change(Record &record, const QString &fields)
{
    constexpr bool hasAttributes = requires
    {
        record.metadata;
    };
    constexpr bool isSub = std::is_same_v<Record, StoreRecords::SubIndexData>;
    for (const QString &field : fields.split(u"; "_s, Qt::SkipEmptyParts)) {
        const QString name = field.section(u'=', 0, 0);
        const QString value = field.section(u'=', 1);
        if constexpr (hasAttributes) {
            const QString key =
                name == "define"_L1 ? (isSub ? u"subdefine"_s : u"objectdefine"_s) : attributes.value(name);
            if (!key.isEmpty()) {
                record.metadata.insert(key, value);
                continue;
            }
        }
        const QString text = hasAttributes ? u"description"_s : u"desc"_s;
        assign(record, (name == "text"_L1 ? text : shortNames.value(name, name)) + u'=' + value);
    }
}

} // namespace

ProjectScript::ProjectScript(std::shared_ptr<ObjectDataBase> store)
    : store_(store ? std::move(store) : std::make_shared<ObjectDataBase>())
{
    if (!store_->isOpen())
        store_->createNewDataBase();
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
        if (!store_->nodeExists(line_))
            store_->addNode(line_, {});
        return store_->setGeneralSetting(u"line%1type"_s.arg(line_), value);
    }
    if (word == "authentication"_L1) {
        store_->setUDSServiceAuthentication(line_, static_cast<quint8>(number(key)), value);
        return true;
    }
    using Setter = bool (ObjectDataBase::*)(const QString &, const QString &);
    static const QHash<QString, Setter> setters{{u"general"_s, &ObjectDataBase::setGeneralSetting},
                                                {u"j1939"_s, &ObjectDataBase::setJ1939Setting},
                                                {u"misc"_s, &ObjectDataBase::setMiscSetting},
                                                {u"energybus"_s, &ObjectDataBase::setEnergyBusSetting},
                                                {u"description"_s, &ObjectDataBase::setDescriptionSetting}};
    if (word == "description"_L1)
        store_->setCurrentLine(line_);
    const Setter setter = setters.value(word);
    return setter &&
           std::ranges::all_of(key.split(u' '), [&](const QString &one) { return (*store_.*setter)(one, value); });
}

void ProjectScript::run(const QString &command)
{
    const QString word = command.section(u' ', 0, 0);
    const QString rest = command.section(u' ', 1);
    const auto numberAt = [&](int place) { return number(rest.section(u' ', place, place)); };
    const auto direction = [&] { return static_cast<quint8>(numberAt(1)); };
    if (word == "objects"_L1) {
        for (const QString &object : rest.split(u' ')) {
            store_->addIndex(line_, address(object).first, {});
            store_->addSubIndex(line_, address(object).first, 0, {});
        }
    } else if (word == "subs"_L1) {
        const auto [index, last] = address(rest);
        store_->addIndex(line_, index, {});
        for (quint16 subindex = 0; subindex <= last; ++subindex)
            store_->addSubIndex(line_, index, static_cast<quint8>(subindex), {});
    } else if (word == "object"_L1) {
        const quint16 index = address(rest.section(u' ', 0, 0)).first;
        StoreRecords::IndexData data;
        store_->getIndex(line_, index, data);
        change(data, rest.section(u' ', 1));
        store_->addIndex(line_, index, data);
    } else if (word == "sub"_L1) {
        const auto [index, subindex] = address(rest.section(u' ', 0, 0));
        StoreRecords::SubIndexData data;
        store_->getSubIndex(line_, index, subindex, data);
        change(data, rest.section(u' ', 1));
        store_->addSubIndex(line_, index, subindex, data);
    } else if (word == "remove"_L1) {
        const auto [index, subindex] = address(rest);
        rest.contains(u':') ? store_->removeSubIndex(line_, index, subindex) : store_->removeIndex(line_, index);
    } else if (word == "pgn"_L1) {
        StoreRecords::PGN data;
        store_->getPGN(line_, numberAt(0), direction(), data);
        data.direction = direction();
        change(data, rest.section(u' ', 2));
        store_->addPGN(line_, numberAt(0), data);
    } else if (word == "spn"_L1) {
        StoreRecords::SPN data;
        store_->getSPN(line_, numberAt(0), direction(), numberAt(2), data);
        change(data, rest.section(u' ', 3));
        store_->addSPN(line_, numberAt(0), direction(), numberAt(2), data);
    } else if (word == "canid"_L1) {
        StoreRecords::CANID data;
        store_->getCANID(line_, numberAt(0), direction(), data);
        data.direction = direction();
        change(data, rest.section(u' ', 2));
        store_->addCANID(line_, numberAt(0), data);
    } else if (word == "signal"_L1) {
        StoreRecords::DataElement data;
        store_->getDataElement(line_, numberAt(0), direction(), numberAt(2), data);
        change(data, rest.section(u' ', 3));
        store_->removeDataElement(line_, numberAt(0), numberAt(2), direction());
        store_->addDataElement(line_, numberAt(0), direction(), numberAt(2), data);
    } else {
        QString value = rest.section(u" ="_s, 1);
        if (value.startsWith(u' '))
            value.remove(0, 1);
        EXPECT_TRUE(runSetting(word, rest.section(u" ="_s, 0, 0), value)) << "no command: " << qPrintable(command);
    }
}
