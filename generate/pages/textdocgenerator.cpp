#include "generate/pages/textdocgenerator.h"

#include "generate/base/codewriter.h"
#include "generate/model/busmessages.h"
#include "generate/model/objectrecords.h"
#include "nodedict/cohelper.h"
#include "store/objectdatabase.h"
#include "texttools/helper.h"

#include <QCoreApplication>

using namespace Qt::StringLiterals;
using Code::dec;
using Code::hex;

namespace {

constexpr auto textEnding = "_doc.txt"_L1;

void writeSubIndex(CodeWriter &out, const ObjectRecords &object, const ObjectRecords::Sub &record)
{
    const StoreRecords::SubIndexData &sub = record.data;
    out(u"  Sub:          0x${subindex} - ${name}",
        {{"subindex", hex(record.subindex, 2)}, {"name", object.name(record)}});
    out(u"  DataType:     ${type}", {{"type", COHelper::index2DataTypeString(sub.datatype)}});
    if (!sub.defaultvalue.isEmpty())
        out(u"  DefaultValue: ${value}", {{"value", sub.defaultvalue}});
    out(u"  AccessType:   ${access}", {{"access", sub.accesstype}});
    out(u"  PDOMapping:   ${mapping}", {{"mapping", dec(sub.pdomapping.toUInt())}});
    if (!sub.description.isEmpty())
        out(u"  Description:  ${text}",
            {{"text", Helper::substituteVariables(sub.description, object.index, record.subindex, object.line)}});
}

void writeObject(CodeWriter &out, const ObjectRecords &records)
{
    const StoreRecords::IndexData &object = records.object;
    out(uR"(

        Index:       0x${index} - ${name}
        DataType:    ${type}
        ObjectCode:  ${code}
        )",
        {{"index", hex(records.index, 4)},
         {"name", records.name()},
         {"type", COHelper::index2DataTypeString(object.datatype)},
         {"code", COHelper::objectCode2String(object.objecttype)}});
    if (!object.description.isEmpty())
        out(u"Description: ${text}",
            {{"text", Helper::substituteVariables(object.description, records.index, 0, records.line)}});
    for (const ObjectRecords::Sub &sub : records.subs)
        writeSubIndex(out, records, sub);
}

/// The text as one field of a line whose fields tabs separate.
QString field(QString text)
{
    for (QChar &c : text) {
        if (c < u' ' || c == QChar::LineSeparator || c == QChar::ParagraphSeparator)
            c = u' ';
    }
    return text;
}

void writePGN(CodeWriter &out, const BusMessage &pgn)
{
    const QString inhibit = pgn.inhibitTimeMs == 0 ? QString() : u"\tInhibit Time (ms):\t%1"_s.arg(pgn.inhibitTimeMs);
    out(u"PGN:\t0x${hex}/${number}\tName:\t${name}\tDirection:\t${direction}\tCycle Time (ms):\t${cycle}\tPriority:\t"
        u"${priority}${inhibit}",
        {{"hex", hex(pgn.number, 4)},
         {"number", dec(pgn.number)},
         {"name", field(pgn.name)},
         {"direction", pgn.isTransmitted() ? u"TX"_s : u"RX"_s},
         {"cycle", dec(pgn.cycleTimeMs)},
         {"priority", dec(pgn.priority)},
         {"inhibit", inhibit}});
    if (pgn.description.size() > 1)
        out(u"\tDescription:\t${text}", {{"text", field(pgn.description)}});
    for (const StoreRecords::SPN &spn : pgn.signalList) {
        const QString size = spn.bitsize == 0 ? QString() : u"\tSize:\t%1"_s.arg(spn.bitsize);
        const QString variable = spn.implementation == DocumentWords::applicationVariable
                                     ? u"\tVariable:\t"_s + field(spn.varname)
                                     : QString();
        out(u"\tSPN:\t${number}\tName:\t${name}\tData type:\t${type}${size}${variable}",
            {{"number", dec(spn.spnnumber)},
             {"name", field(spn.name)},
             {"type", COHelper::index2DataTypeString(spn.datatype)},
             {"size", size},
             {"variable", variable}});
    }
}

void writeElement(CodeWriter &out, const StoreRecords::DataElement &element)
{
    out(u"[bit ${position}, ${bits} bit]  ${name}  (${type})",
        {{"position", dec(element.bitposition).rightJustified(3)},
         {"bits", dec(BusMessage::bitsOf(element)).rightJustified(3)},
         {"name", element.name},
         {"type", COHelper::index2DataTypeString(element.datatype)}});
    if (!element.defaultvalue.isEmpty())
        out(u"Default: ${value}", {{"value", element.defaultvalue}});
    if (!element.desc.isEmpty())
        out(u"${text}", {{"text", element.desc}});
}

void writeCanId(CodeWriter &out, const BusMessage &message)
{
    out(u"[CAN-ID: 0x${id} ${format}]  ${name}", {{"id", hex(message.canId(), 8)},
                                                  {"format", DocumentWords::frameFormat(message.isExtended())},
                                                  {"name", message.name}});
    if (message.cycleTimeMs == 0)
        out(u"  Cycle time:   acyclic");
    else if (message.isTransmitted())
        out(u"  Cycle time:      ${time} ms", {{"time", dec(message.cycleTimeMs)}});
    else
        out(u"  Exp. cycle time: ${time} ms", {{"time", dec(message.cycleTimeMs)}});
    if (message.inhibitTimeMs != 0)
        out(u"  Inhibit time: ${time} ms", {{"time", dec(message.inhibitTimeMs)}});
    if (!message.description.isEmpty())
        out(u"  Description:  ${text}", {{"text", message.description}});
    out(u"  Signals (${count}):", {{"count", dec(static_cast<quint64>(message.signalList.size()))}});
    for (const StoreRecords::DataElement &element : message.signalList)
        writeElement(out, element);
}

void writeBlockHead(CodeWriter &out, bool transmitted)
{
    out(uR"(
        ================================================================================
        ${title}
        ================================================================================

        )",
        {{"title", transmitted ? u"TRANSMIT MESSAGES (TX)"_s : u"RECEIVE MESSAGES (RX)"_s}});
}

} // namespace

QString TextDocGenerator::fileName() const
{
    return nameWith(textEnding);
}

void TextDocGenerator::write(QTextStream &stream)
{
    CodeWriter out(stream);
    out(uR"(
        CANopen Object Dictionary Documenation for ${project}

        )",
        {{"project", baseName()}});
    const ObjectReader reader(*database(), line(), 0x1000);
    for (const quint16 index : reader.indices()) {
        if (!goesOn())
            return;
        writeObject(out, reader.read(index));
    }
}

QString J1939TextDocGenerator::fileName() const
{
    return nameWith(textEnding);
}

void J1939TextDocGenerator::write(QTextStream &stream)
{
    CodeWriter out(stream);
    out(u"PGN/SPN Documenation for ${project} - generated by ${application} ${version} ",
        {{"project", baseName()}, {"application", QCoreApplication::applicationName()}, {"version", toolVersion()}});
    for (const BusMessage &pgn : BusMessage::pgns(*database(), line())) {
        if (!goesOn())
            return;
        writePGN(out, pgn);
    }
}

QString RawCANTextDocGenerator::fileName() const
{
    return nameWith(textEnding);
}

void RawCANTextDocGenerator::write(QTextStream &stream)
{
    CodeWriter out(stream);
    out(uR"(
        Raw CAN Message Documentation for ${project}
        Generated by CAN NodeComposer

        )",
        {{"project", baseName()}});
    quint8 block = 0;
    for (const BusMessage &message : BusMessage::canIds(*database(), line())) {
        if (!goesOn())
            return;
        if (message.direction != block)
            writeBlockHead(out, message.isTransmitted());
        block = message.direction;
        writeCanId(out, message);
    }
}
