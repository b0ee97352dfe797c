#include "generate/pages/messagehtmlgenerator.h"

#include "nodedict/cohelper.h"

#include <QStringBuilder>

using namespace Qt::StringLiterals;
using Code::dec;
using Code::hex0x;

namespace {

constexpr quint32 tableWidth = 600;
constexpr quint32 spnWordWidth = 250;

/// Number and direction together name a message.
QString anchorOf(const LineMessage &message)
{
    return (message.isTransmitted() ? "tx"_L1 : "rx"_L1) % dec(message.head.number).view();
}

QString milliseconds(quint32 time)
{
    return dec(time).view() % " ms"_L1;
}

QString cycleTime(const LineMessage &message)
{
    return message.head.cycletime_ms == 0 ? u"acyclic"_s : milliseconds(message.head.cycletime_ms);
}

QString pgnWithDirection(const LineMessage &pgn)
{
    return hex0x(pgn.head.number, 4).view() % (pgn.isTransmitted() ? "/TX"_L1 : "/RX"_L1);
}

void writeImplementation(HtmlPage &page, const StoreRecords::SPN &signal)
{
    page.row("Implementation Type"_L1, DocumentWords::implementation(signal.implementation));
    page.row("Variable Name"_L1, HtmlPage::escaped(signal.varname));
}

void writePGN(HtmlPage &page, const LineMessage &pgn)
{
    page.out(u"  <p>");
    page.beginTable(tableWidth);
    page.head(anchorOf(pgn), " PGN: "_L1 % pgnWithDirection(pgn));
    page.row("Name "_L1, pgn.head.name);
    page.row("Direction"_L1, pgn.isTransmitted() ? "Transmit (TX)"_L1 : "Receive (RX)"_L1);
    page.row("Cycle Time"_L1, cycleTime(pgn));
    page.row("Inhibit Time"_L1, milliseconds(pgn.head.inhibittime_ms));
    page.description(pgn.head.desc);
    page.endTable();
    for (const StoreRecords::SPN &spn : pgn.items) {
        page.out(u" <br/>");
        page.beginTable(tableWidth);
        page.headRow("SPN "_L1, dec(spn.spnnumber));
        page.row("Name "_L1, spn.name);
        page.rowOfWidth(spnWordWidth, "Data Type"_L1, COHelper::index2DataTypeString(spn.datatype));
        writeImplementation(page, spn);
        page.endTable();
    }
    page.out(u"<hr noshade width=\"600\" align=\"left\"/>");
}

void writeElement(HtmlPage &page, const StoreRecords::DataElement &element)
{
    page.out(u" <br/>");
    page.beginTable(tableWidth);
    page.headRow("Signal "_L1, element.name);
    page.row("Bit Position"_L1, dec(element.bitposition));
    page.row("Bit Length"_L1, dec(LineMessages::bits(element)));
    page.row("Data Type"_L1, COHelper::index2DataTypeString(element.datatype));
    page.row("Default Value"_L1, HtmlPage::escaped(element.defaultvalue));
    page.description(element.desc);
    writeImplementation(page, element);
    page.endTable();
}

void writeCanId(HtmlPage &page, const LineMessage &message)
{
    page.out(u"  <p>");
    page.beginTable(tableWidth);
    page.head(anchorOf(message), " CAN-ID: "_L1 % hex0x(message.canId()).view());
    page.row("Name "_L1, message.head.name);
    page.row("Direction"_L1, message.isTransmitted() ? "Transmit (TX)"_L1 : "Receive (RX)"_L1);
    page.row("Frame Format"_L1, DocumentWords::frameFormat(message.isExtended()));
    page.row(message.isTransmitted() ? "Cycle Time"_L1 : "Exp. Cycle Time"_L1, cycleTime(message));
    page.row("Inhibit Time"_L1, milliseconds(message.head.inhibittime_ms));
    page.description(message.head.desc);
    page.endTable();
    for (const StoreRecords::DataElement &element : message.items)
        writeElement(page, element);
    page.out(u"<hr noshade width=\"600\" align=\"left\"/>");
}

} // namespace

HTMLDocumentGenerator::Titles J1939HTMLGenerator::titles() const
{
    return {u"PGN/SPN Documenation of "_s, u"PGN/SPN Documentation of "_s};
}

QString J1939HTMLGenerator::styles() const
{
    return u"\n    td:first-child:not([colspan]), th:first-child:not([colspan]) { width: %1px; }"_s.arg(spnWordWidth);
}

void J1939HTMLGenerator::collect()
{
    pgns_ = LineMessages::ofDocuments(LineMessages::parameterGroups(*database(), line()), line());
}

void J1939HTMLGenerator::writeLinks(HtmlPage &page)
{
    for (const LineMessage &pgn : pgns_)
        page.link(anchorOf(pgn), pgnWithDirection(pgn), pgn.head.name);
}

void J1939HTMLGenerator::writeContents(HtmlPage &page)
{
    for (const LineMessage &pgn : pgns_) {
        if (!goesOn())
            return;
        writePGN(page, pgn);
    }
}

HTMLDocumentGenerator::Titles RawCANHTMLGenerator::titles() const
{
    return {u"Raw CAN Message Documenation of "_s, u"Raw CAN Message Documentation of "_s};
}

QString RawCANHTMLGenerator::styles() const
{
    return u"\n    .toc { left: 620px; right: auto; }"_s;
}

void RawCANHTMLGenerator::collect()
{
    messages_ = LineMessages::ofDocuments(LineMessages::canIds(*database(), line()), line());
}

void RawCANHTMLGenerator::writeLinks(HtmlPage &page)
{
    for (const LineMessage &message : messages_)
        page.link(anchorOf(message), hex0x(message.canId()).view() % u' ' % message.head.name);
}

void RawCANHTMLGenerator::writeContents(HtmlPage &page)
{
    for (const LineMessage &message : messages_) {
        if (!goesOn())
            return;
        writeCanId(page, message);
    }
}
