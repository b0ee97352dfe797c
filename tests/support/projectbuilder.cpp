#include "support/projectbuilder.h"

#include "store/lineprotocols.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using namespace TestSupport;

ProjectBuilder::ProjectBuilder()
{
    EXPECT_TRUE(store_->createNewDataBase());
    line(0, 1);
}

ProjectBuilder &ProjectBuilder::line(quint8 line, int type)
{
    line_ = line;
    if (!store_->nodeExists(line)) {
        EXPECT_TRUE(store_->addNode(line, {}));
    }
    return general(u"line%1type"_s.arg(line), QString::number(type));
}

ProjectBuilder &ProjectBuilder::checked()
{
    general(u"co_timer_interval"_s, u"1000"_s);
    const LineProtocols protocols = LineProtocols::ofLine(*store_, line_);
    if (protocols.j1939) {
        for (const char *key : {"identitynumber", "manufacturercode", "ecuinstance", "functioninstance", "function",
                                "vehiclesystem", "vehicleinstance", "industrygroup", "startaddress"})
            j1939(QString::fromLatin1(key), u"1"_s);
    }
    if (!protocols.canOpen)
        return *this;
    general(u"co_node_id"_s, u"32"_s);
    for (const auto &[index, name] : {std::pair{0x1000, u"Device type"_s}, std::pair{0x1001, u"Error register"_s},
                                      std::pair{0x1017, u"Producer heartbeat"_s}})
        object(static_cast<quint16>(index), name).sub(0, name);
    return *this;
}

ProjectBuilder &ProjectBuilder::object(quint16 index, const QString &name, const StoreRecords::Metadata &metadata)
{
    index_ = index;
    StoreRecords::IndexData data;
    data.name = name;
    data.metadata = metadata;
    EXPECT_TRUE(store_->addIndex(line_, index, data));
    return *this;
}

ProjectBuilder &ProjectBuilder::sub(quint8 subindex, const QString &name,
                                    const std::function<void(StoreRecords::SubIndexData &)> &change)
{
    StoreRecords::SubIndexData data;
    data.name = name;
    if (change)
        change(data);
    std::ignore = store_->addSubIndex(line_, index_, subindex, data); // a quote in one of its texts keeps it out
    return *this;
}

ProjectBuilder &ProjectBuilder::pgn(quint32 number, quint8 direction, const QString &name,
                                    const std::function<void(StoreRecords::PGN &)> &change)
{
    message_ = number;
    direction_ = direction;
    StoreRecords::PGN data;
    data.name = name;
    data.number = number;
    data.direction = direction;
    if (change)
        change(data);
    EXPECT_TRUE(store_->addPGN(line_, number, data));
    return *this;
}

ProjectBuilder &ProjectBuilder::spn(quint32 number, const QString &name,
                                    const std::function<void(StoreRecords::SPN &)> &change)
{
    StoreRecords::SPN data;
    data.name = name;
    data.pos = signalCount_++;
    data.direction = direction_;
    data.spnnumber = number;
    if (change)
        change(data);
    EXPECT_TRUE(store_->addSPN(line_, message_, direction_, number, data));
    return *this;
}

ProjectBuilder &ProjectBuilder::canId(quint32 id, quint8 direction, const QString &name,
                                      const std::function<void(StoreRecords::CANID &)> &change)
{
    message_ = id;
    direction_ = direction;
    StoreRecords::CANID data;
    data.name = name;
    data.id = id;
    data.direction = direction;
    if (change)
        change(data);
    EXPECT_TRUE(store_->addCANID(line_, id, data));
    return *this;
}

ProjectBuilder &ProjectBuilder::element(quint32 number, const QString &name,
                                        const std::function<void(StoreRecords::DataElement &)> &change)
{
    StoreRecords::DataElement data;
    data.name = name;
    data.pos = signalCount_++;
    data.direction = direction_;
    if (change)
        change(data);
    EXPECT_TRUE(store_->addDataElement(line_, message_, direction_, number, data));
    return *this;
}

ProjectBuilder &ProjectBuilder::general(const QString &key, const QString &value)
{
    EXPECT_TRUE(store_->setGeneralSetting(key, value));
    return *this;
}

ProjectBuilder &ProjectBuilder::j1939(const QString &key, const QString &value)
{
    EXPECT_TRUE(store_->setJ1939Setting(key, value));
    return *this;
}

ProjectBuilder &ProjectBuilder::misc(const QString &key, const QString &value)
{
    EXPECT_TRUE(store_->setMiscSetting(key, value));
    return *this;
}
