#include "generate/pages/messagehtmlgenerator.h"

#include "nodedict/cohelper.h"

using namespace Qt::StringLiterals;
using Code::dec;
using Code::hex;

namespace {

constexpr int tableWidth = 600;
constexpr int spnWordWidth = 250;

/// Number and direction together name a message.
QString anchorOf(const BusMessage &message)
{
    return (message.isTransmitted() ? u"tx%1"_s : u"rx%1"_s).arg(message.number);
}

QString milliseconds(quint32 time)
{
    return u"%1 ms"_s.arg(time);
}

QString cycleTime(const BusMessage &message)
{
    return message.cycleTimeMs == 0 ? u"acyclic"_s : milliseconds(message.cycleTimeMs);
}

QString pgnWithDirection(const BusMessage &pgn)
{
    return u"0x%1/%2"_s.arg(hex(pgn.number, 4), pgn.isTransmitted() ? u"TX"_s : u"RX"_s);
}

void writeImplementation(HtmlPage &page, const StoreRecords::SPN &signal)
{
    page.row(u"Implementation Type"_s, DocumentWords::implementation(signal.implementation));
    page.row(u"Variable Name"_s, HtmlPage::escaped(signal.varname));
}

void writePGN(HtmlPage &page, const BusMessage &pgn)
{
    page.out(u"  <p>");
    page.beginTable(tableWidth);
    page.head(anchorOf(pgn), u" PGN: "_s + pgnWithDirection(pgn));
    page.row(u"Name "_s, pgn.name);
    page.row(u"Direction"_s, pgn.isTransmitted() ? u"Transmit (TX)"_s : u"Receive (RX)"_s);
    page.row(u"Cycle Time"_s, cycleTime(pgn));
    page.row(u"Inhibit Time"_s, milliseconds(pgn.inhibitTimeMs));
    page.description(pgn.description);
    page.endTable();
    for (const StoreRecords::SPN &spn : pgn.signalList) {
        page.out(u" <br/>");
        page.beginTable(tableWidth);
        page.headRow(u"SPN "_s, dec(spn.spnnumber));
        page.row(u"Name "_s, spn.name);
        page.row(u"Data Type"_s, COHelper::index2DataTypeString(spn.datatype), spnWordWidth);
        writeImplementation(page, spn);
        page.endTable();
    }
    page.out(u"<hr noshade width=\"600\" align=\"left\"/>");
}

void writeElement(HtmlPage &page, const StoreRecords::DataElement &element)
{
    page.out(u" <br/>");
    page.beginTable(tableWidth);
    page.headRow(u"Signal "_s, element.name);
    page.row(u"Bit Position"_s, dec(element.bitposition));
    page.row(u"Bit Length"_s, dec(BusMessage::bitsOf(element)));
    page.row(u"Data Type"_s, COHelper::index2DataTypeString(element.datatype));
    page.row(u"Default Value"_s, HtmlPage::escaped(element.defaultvalue));
    page.description(element.desc);
    writeImplementation(page, element);
    page.endTable();
}

void writeCanId(HtmlPage &page, const BusMessage &message)
{
    page.out(u"  <p>");
    page.beginTable(tableWidth);
    page.head(anchorOf(message), u" CAN-ID: 0x%1"_s.arg(hex(message.canId())));
    page.row(u"Name "_s, message.name);
    page.row(u"Direction"_s, message.isTransmitted() ? u"Transmit (TX)"_s : u"Receive (RX)"_s);
    page.row(u"Frame Format"_s, DocumentWords::frameFormat(message.isExtended()));
    page.row(message.isTransmitted() ? u"Cycle Time"_s : u"Exp. Cycle Time"_s, cycleTime(message));
    page.row(u"Inhibit Time"_s, milliseconds(message.inhibitTimeMs));
    page.description(message.description);
    page.endTable();
    for (const StoreRecords::DataElement &element : message.signalList)
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
    pgns_ = BusMessage::pgns(*database(), line());
}

void J1939HTMLGenerator::writeLinks(HtmlPage &page)
{
    for (const BusMessage &pgn : pgns_)
        page.link(anchorOf(pgn), pgnWithDirection(pgn), pgn.name);
}

void J1939HTMLGenerator::writeContents(HtmlPage &page)
{
    for (const BusMessage &pgn : pgns_) {
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
    messages_ = BusMessage::canIds(*database(), line());
}

void RawCANHTMLGenerator::writeLinks(HtmlPage &page)
{
    for (const BusMessage &message : messages_)
        page.link(anchorOf(message), u"0x%1 %2"_s.arg(hex(message.canId()), message.name));
}

void RawCANHTMLGenerator::writeContents(HtmlPage &page)
{
    for (const BusMessage &message : messages_) {
        if (!goesOn())
            return;
        writeCanId(page, message);
    }
}
