#include "generate/pages/textdocgenerator.h"

#include "generate/base/codewriter.h"
#include "generate/model/linedictionary.h"
#include "generate/model/linemessages.h"
#include "nodedict/cohelper.h"
#include "store/objectdatabase.h"

#include <QCoreApplication>
#include <QStringBuilder>

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;
using Code::dec;
using Code::hex;

namespace {

constexpr auto textEnding = "_doc.txt"_L1;

void writeSubIndex(CodeWriter &out, const StoreRecords::SubEntry &record)
{
    const StoreRecords::SubIndexData &sub = record.data;
    out(uR"(
          Sub:          0x${subindex} - ${name}
          DataType:     ${type}
        )",
        {{"subindex", hex(record.subindex, 2)},
         {"name", filledText(sub.name, record)},
         {"type", COHelper::index2DataTypeString(sub.datatype)}});
    if (!sub.defaultvalue.isEmpty())
        out(u"  DefaultValue: ${value}", {{"value", sub.defaultvalue}});
    out(uR"(
          AccessType:   ${access}
          PDOMapping:   ${mapping}
        )",
        {{"access", sub.accesstype}, {"mapping", dec(sub.pdomapping.toUInt())}});
    if (!sub.description.isEmpty())
        out(u"  Description:  ${text}", {{"text", filledText(sub.description, record)}});
}

void writeObject(CodeWriter &out, const LineObject &object)
{
    out(uR"(

        Index:       0x${index} - ${name}
        DataType:    ${type}
        ObjectCode:  ${code}
        )",
        {{"index", hex(object.index, 4)},
         {"name", object.name()},
         {"type", COHelper::index2DataTypeString(object.data.datatype)},
         {"code", COHelper::objectCode2String(object.data.objecttype)}});
    if (!object.data.description.isEmpty())
        out(u"Description: ${text}", {{"text", object.description()}});
    for (const StoreRecords::SubEntry &sub : object.subs)
        writeSubIndex(out, sub);
}

/// The text as one field of a line whose fields tabs separate.
QString field(QString text)
{
    const auto breaks = [](QChar c) { return c < u' ' || c == QChar::LineSeparator || c == QChar::ParagraphSeparator; };
    // Nearly every text is one already, and goes out without a copy.
    if (std::ranges::any_of(std::as_const(text), breaks))
        std::ranges::replace_if(text, breaks, u' ');
    return text;
}

void writePGN(CodeWriter &out, const LineMessage &pgn)
{
    const QString inhibit =
        pgn.head.inhibittime_ms == 0 ? QString() : "\tInhibit Time (ms):\t"_L1 % dec(pgn.head.inhibittime_ms).view();
    out(u"PGN:\t0x${hex}/${number}\tName:\t${name}\tDirection:\t${direction}\tCycle Time (ms):\t${cycle}\tPriority:\t"
        u"${priority}${inhibit}",
        {{"hex", hex(pgn.head.number, 4)},
         {"number", dec(pgn.head.number)},
         {"name", field(pgn.head.name)},
         {"direction", pgn.isTransmitted() ? "TX"_L1 : "RX"_L1},
         {"cycle", dec(pgn.head.cycletime_ms)},
         {"priority", dec(pgn.head.priority)},
         {"inhibit", inhibit}});
    if (pgn.head.desc.size() > 1)
        out(u"\tDescription:\t${text}", {{"text", field(pgn.head.desc)}});
    for (const StoreRecords::SPN &spn : pgn.items) {
        const QString size = spn.bitsize == 0 ? QString() : "\tSize:\t"_L1 % dec(spn.bitsize).view();
        const QString variable = spn.implementation == CANopen::Implementation::Variable
                                     ? "\tVariable:\t"_L1 % field(spn.varname)
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
        {{"position", QString::number(element.bitposition).rightJustified(3)},
         {"bits", QString::number(LineMessages::bits(element)).rightJustified(3)},
         {"name", element.name},
         {"type", COHelper::index2DataTypeString(element.datatype)}});
    if (!element.defaultvalue.isEmpty())
        out(u"Default: ${value}", {{"value", element.defaultvalue}});
    if (!element.desc.isEmpty())
        out(u"${text}", {{"text", element.desc}});
}

void writeCanId(CodeWriter &out, const LineMessage &message)
{
    out(u"[CAN-ID: 0x${id} ${format}]  ${name}", {{"id", hex(message.canId(), 8)},
                                                  {"format", DocumentWords::frameFormat(message.isExtended())},
                                                  {"name", message.head.name}});
    if (message.head.cycletime_ms == 0)
        out(u"  Cycle time:   acyclic");
    else if (message.isTransmitted())
        out(u"  Cycle time:      ${time} ms", {{"time", dec(message.head.cycletime_ms)}});
    else
        out(u"  Exp. cycle time: ${time} ms", {{"time", dec(message.head.cycletime_ms)}});
    if (message.head.inhibittime_ms != 0)
        out(u"  Inhibit time: ${time} ms", {{"time", dec(message.head.inhibittime_ms)}});
    if (!message.head.desc.isEmpty())
        out(u"  Description:  ${text}", {{"text", message.head.desc}});
    out(u"  Signals (${count}):", {{"count", dec(static_cast<quint64>(message.items.size()))}});
    for (const StoreRecords::DataElement &element : message.items)
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

void TextDocGenerator::write(Utf8Sink &sink)
{
    CodeWriter out(sink);
    out(uR"(
        CANopen Object Dictionary Documenation for ${project}

        )",
        {{"project", baseName()}});
    const LineDictionary dictionary(*database(), line());
    for (const LineObject &object : dictionary.objects) {
        if (!goesOn())
            return;
        writeObject(out, object);
    }
}

QString J1939TextDocGenerator::fileName() const
{
    return nameWith(textEnding);
}

void J1939TextDocGenerator::write(Utf8Sink &sink)
{
    CodeWriter out(sink);
    out(u"PGN/SPN Documenation for ${project} - generated by ${application} ${version} ",
        {{"project", baseName()}, {"application", QCoreApplication::applicationName()}, {"version", toolVersion()}});
    for (const LineMessage &pgn :
         LineMessages::ofDocuments(LineMessages::parameterGroups(*database(), line()), line())) {
        if (!goesOn())
            return;
        writePGN(out, pgn);
    }
}

QString RawCANTextDocGenerator::fileName() const
{
    return nameWith(textEnding);
}

void RawCANTextDocGenerator::write(Utf8Sink &sink)
{
    CodeWriter out(sink);
    out(uR"(
        Raw CAN Message Documentation for ${project}
        Generated by CAN NodeComposer

        )",
        {{"project", baseName()}});
    quint8 block = 0;
    for (const LineMessage &message : LineMessages::ofDocuments(LineMessages::canIds(*database(), line()), line())) {
        if (!goesOn())
            return;
        if (message.head.direction != block)
            writeBlockHead(out, message.isTransmitted());
        block = message.head.direction;
        writeCanId(out, message);
    }
}
