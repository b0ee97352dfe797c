#include "import/dbc/dbcimporter.h"

#include "candb/dbcreader.h"
#include "store/lineprotocols.h"
#include "store/objectdatabase.h"
#include "store/tables/temporaryindex.h"
#include "texttools/textfile.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

/// Writes the part of a line in a list of all lines.
bool setJ1939Setting(ObjectDataBase &store, const QString &key, quint8 line, const QString &value)
{
    QStringList parts = store.getJ1939Setting(key).split(u',');
    while (parts.size() <= line)
        parts.append(parts.last());
    parts[line] = value;
    return store.setJ1939Setting(key, parts.join(u','));
}

} // namespace

DbcImporter::DbcImporter() = default;

DbcImporter::~DbcImporter()
{
    // Before the members that a run still under way would be using.
    waitForEnd();
}

void DbcImporter::read()
{
    error_.clear();
    TextFile text;
    if (!text.load(filePath_)) {
        error_ = u"it cannot be read"_s;
        return;
    }
    DbcReader reader;
    const std::optional<CANdb::Database> database = reader.read(text.decode(text.bytes()));
    if (!database) {
        error_ = u"it is no DBC file. "_s + reader.errorText();
        return;
    }
    if (!hasNode(*database))
        return;
    DbcConversion conversion(*database, optionsFor(*database), report_);
    const QList<DbcConversion::Message> messages = conversion.messages();
    const TemporaryIndex pgnIndex(store_->statements(), line_, TemporaryIndex::pgnKeys);
    const TemporaryIndex spnIndex(store_->statements(), line_, TemporaryIndex::spnKeys);
    const TemporaryIndex canidIndex(store_->statements(), line_, TemporaryIndex::canidKeys);
    const TemporaryIndex elementIndex(store_->statements(), line_, TemporaryIndex::elementKeys);
    for (const DbcConversion::Message &message : messages)
        write(message);
    writeSettings(conversion);
}

bool DbcImporter::hasNode(const CANdb::Database &database)
{
    QStringList names;
    for (const CANdb::Node &node : database.nodes)
        names.append(node.name);
    if (node_.isEmpty()) {
        if (!names.isEmpty())
            report_.note(0, u"all frames are taken as transmitted; --node tells which node the device is: "_s +
                                names.join(", "_L1));
        return true;
    }
    if (names.contains(node_))
        return true;
    error_ = names.isEmpty() ? u"it names no nodes"_s : u"it has no node %1 (%2)"_s.arg(node_, names.join(", "_L1));
    return false;
}

/// What is replaced keeps its names from nobody.
DbcConversion::Options DbcImporter::optionsFor(const CANdb::Database &database) const
{
    const QSet<quint32> replaced = DbcConversion::numbersOf(database);
    const LineProtocols protocols = LineProtocols::ofLine(*store_, line_);
    DbcConversion::Options options{
        .node = node_, .j1939 = protocols.j1939, .rawCan = protocols.rawCan, .handledPgns = handledPgns_};
    for (const StoreRecords::SPN &spn : store_->getAllSPNs(line_)) {
        if (replaced.contains(spn.pgnnumber))
            continue;
        options.takenSpns.insert(spn.spnnumber);
        options.takenVariables.insert(spn.varname);
    }
    for (const StoreRecords::DataElement &element : store_->getAllDataElements(line_)) {
        if (!replaced.contains(element.pgnnumber))
            options.takenVariables.insert(element.varname);
    }
    return options;
}

/// The signals of a message that is there already would stand on top of the new ones.
void DbcImporter::write(const DbcConversion::Message &message)
{
    const auto [number, direction] = std::pair(message.head.number, message.head.direction);
    const QString name = message.isPgn ? u"PGN %1"_s.arg(number) : u"CAN-ID %1"_s.arg(number);
    bool isWritten = false;
    if (message.isPgn) {
        isWritten = store_->removePGN(line_, number, direction) && store_->addPGN(line_, number, message.head);
    } else {
        const StoreRecords::CANID canId{.name = message.head.name,
                                        .desc = message.head.desc,
                                        .id = number,
                                        .cycletime_ms = message.head.cycletime_ms,
                                        .inhibittime_ms = message.head.inhibittime_ms,
                                        .mappingcount = message.head.mappingcount,
                                        .direction = direction};
        isWritten = store_->removeCANID(line_, number, direction) && store_->addCANID(line_, number, canId);
    }
    if (!report_.wrote(isWritten, name, message.line))
        return;
    ++report_.messages;
    for (StoreRecords::SPN item : message.items) {
        item.direction = direction;
        const quint32 key = item.spnnumber;
        const bool isDone = message.isPgn ? store_->addSPN(line_, number, direction, key, item, Quotes::Kept)
                                          : store_->addDataElement(line_, number, direction, key, item, Quotes::Kept);
        if (report_.wrote(isDone, u"signal %1 of %2"_s.arg(item.name, name), message.line))
            ++report_.signalCount;
    }
}

void DbcImporter::writeSettings(const DbcConversion &conversion)
{
    if (!LineProtocols::ofLine(*store_, line_).j1939)
        return;
    const auto set = [this](const QString &key, const QString &value, const QString &what) {
        if (store_->getJ1939Setting(key, line_) == value)
            return;
        if (report_.wrote(setJ1939Setting(*store_, key, line_, value), what))
            report_.note(0, what);
    };
    if (const std::optional<quint8> address = conversion.sourceAddress())
        set(u"startaddress"_s, QString::number(*address),
            u"the line starts with the source address %1"_s.arg(*address));
    if (conversion.hasOwnDm1())
        set(u"diagsupport_dm1"_s, u"1"_s, u"the line sends DM1"_s);
}
