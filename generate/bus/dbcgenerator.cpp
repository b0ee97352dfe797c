#include "generate/bus/dbcgenerator.h"

#include "generate/base/codewriter.h"
#include "generate/base/outputfile.h"
#include "generate/base/runcontext.h"
#include "generate/bus/candbdbc.h"
#include "generate/bus/dbcframes.h"
#include "generate/bus/dbcwriter.h"
#include "store/objectdatabase.h"
#include "store/settings.h"

#include <QDebug>
#include <QDir>
#include <QTemporaryFile>

using namespace Qt::StringLiterals;
using CANdb::AttributeDefinition;
using CANdb::Owner;
using Code::dec;

namespace {

constexpr auto dbcEnding = ".dbc"_L1;

void writeRawMessage(CodeWriter &out, const DbcFrame &frame)
{
    out(u"BO_ ${id} ${name}: ${length} Vector__XXX",
        {{"id", dec(frame.id)}, {"name", frame.name}, {"length", dec(frame.length)}});
    for (const DbcSignal &signal : frame.signalList)
        out(u"SG_ ${name} : ${start}|${size}@1${sign} (1,0) [0|0] \"\" Vector__XXX",
            {{"name", signal.name},
             {"start", dec(signal.startBit)},
             {"size", dec(signal.bits)},
             {"sign", signal.isSigned ? u"-"_s : u"+"_s}});
}

void writeRawComments(CodeWriter &out, const DbcFrame &frame)
{
    if (!frame.comment.isEmpty())
        out(u"CM_ BO_ ${id} \"${text}\";", {{"id", dec(frame.id)}, {"text", dbcText(frame.comment)}});
    for (const DbcSignal &signal : frame.signalList) {
        if (!signal.comment.isEmpty())
            out(u"CM_ SG_ ${id} ${name} \"${text}\";",
                {{"id", dec(frame.id)}, {"name", signal.name}, {"text", dbcText(signal.comment)}});
    }
}

void writeRawAttributes(CodeWriter &out, const DbcFrame &frame)
{
    if (frame.cycleTimeMs != 0)
        out(u"BA_ \"GenMsgCycleTime\" BO_ ${id} ${time};", {{"id", dec(frame.id)}, {"time", dec(frame.cycleTimeMs)}});
    out(u"BA_ \"GenMsgSendType\" BO_ ${id} ${type};",
        {{"id", dec(frame.id)}, {"type", frame.cycleTimeMs != 0 ? u"0"_s : u"1"_s}});
}

/// Places of the words in the enumerations below.
enum class SendType : quint8
{
    Cyclic = 0
};
enum class SignalType : quint8
{
    Ascii = 3
};
enum class FrameFormat : quint8
{
    Standard = 0,
    Extended = 1,
    J1939 = 3
};

template <typename Word>
QString place(Word word)
{
    return QString::number(static_cast<int>(word));
}

QList<AttributeDefinition> attributeDefinitions()
{
    using Type = AttributeDefinition::Type;
    const QStringList sendTypes{u"cyclic"_s,   u"reserved"_s, u"cyclicIfActive"_s, u"reserved"_s,     u"reserved"_s,
                                u"reserved"_s, u"reserved"_s, u"reserved"_s,       u"noMsgSendType"_s};
    const QStringList signalTypes{
        u"Default"_s, u"Range"_s,        u"RangeSigned"_s,     u"ASCII"_s,        u"Discrete"_s,
        u"Control"_s, u"ReferencePGN"_s, u"StringDelimiter"_s, u"StringLength"_s, u"StringLengthControl"_s};
    const QStringList frameFormats{u"StandardCAN"_s, u"ExtendedCAN"_s, u"reserved"_s, u"J1939PG"_s};
    const QStringList implementations{u"Managed"_s, u"Variable"_s};
    return {
        {u"GenMsgCycleTime"_s, Owner::Message, Type::Integer, 0, 100000, {}, u"0"_s},
        {u"GenMsgSendType"_s, Owner::Message, Type::Enumeration, 0, 0, sendTypes, u"noMsgSendType"_s},
        {u"SigType"_s, Owner::Signal, Type::Enumeration, 0, 0, signalTypes, u"Default"_s},
        {u"VFrameFormat"_s, Owner::Message, Type::Enumeration, 0, 0, frameFormats, u"J1939PG"_s},
        {u"ProtocolType"_s, Owner::Database, Type::String, 0, 0, {}, QString()},
        {u"norvane_implementation_type"_s, Owner::Signal, Type::Enumeration, 0, 0, implementations, u"Managed"_s},
        {u"norvane_variable_name"_s, Owner::Signal, Type::String, 0, 0, {}, QString()},
        {u"norvane_bitsize"_s, Owner::Signal, Type::Integer, 0, 65535, {}, u"0"_s},
    };
}

/// A failure of the database costs what it is about and nothing else.
void log(bool done, const char *failure)
{
    if (!done)
        qDebug().noquote() << failure;
}

FrameFormat formatOf(const DbcFrame &frame)
{
    if (frame.isJ1939)
        return FrameFormat::J1939;
    return (frame.id & CANdb::extendedFrame) != 0 ? FrameFormat::Extended : FrameFormat::Standard;
}

void addSignal(CANdbDBC::MessageRef message, const DbcSignal &signal)
{
    CANdbDBC::SignalRef target = message.addSignal();
    log(target.isValid(), "Error kvaDbAddSignal");
    log(target.setName(signal.name), "Error kvaDbSetSignalName");
    log(target.setValueSize(signal.startBit, signal.bits, signal.isSigned), "Error kvaDbSetSignalValueSize");
    target.setValueType(signal.valueType);
    if (!signal.comment.isEmpty())
        log(target.setComment(signal.comment), "Error kvaDbSetSignalComment");
    bool done = true;
    if (signal.isText)
        done &= target.setAttribute(u"SigType"_s, place(SignalType::Ascii));
    if (signal.isApplicationVariable)
        done &= target.setAttribute(u"norvane_implementation_type"_s, u"1"_s);
    if (!signal.variable.isEmpty())
        done &= target.setAttribute(u"norvane_variable_name"_s, signal.variable);
    done &= target.setAttribute(u"norvane_bitsize"_s, QString::number(signal.bits));
    log(done, "Error kvaDbSetAttributeValueInt");
}

void addFrame(CANdbDBC &dbc, const DbcFrame &frame)
{
    CANdbDBC::MessageRef message = dbc.addMessage(frame.id);
    log(message.isValid(), "Error kvaDbAddMsg");
    log(message.setName(frame.name), "Error kvaDbSetMsgName");
    log(message.setLength(frame.length), "Error kvaDbSetMsgDlc");
    if (const QString comment = frame.fullComment(); !comment.isEmpty())
        message.setComment(comment);
    bool done = message.setAttribute(u"VFrameFormat"_s, place(formatOf(frame)));
    if (frame.cycleTimeMs != 0) {
        done &= message.setAttribute(u"GenMsgCycleTime"_s, QString::number(frame.cycleTimeMs));
        done &= message.setAttribute(u"GenMsgSendType"_s, place(SendType::Cyclic));
    }
    log(done, "Error kvaDbSetAttributeValueInt");
    for (const DbcSignal &signal : frame.signalList)
        addSignal(message, signal);
}

/// True if the target now holds what the source does.
bool copyFile(const QString &source, const QString &target)
{
    QFile from(source);
    OutputFile to(target);
    if (!from.open(QIODevice::ReadOnly) || !to.open())
        return false;
    const QByteArray content = from.readAll();
    return to.device()->write(content) == content.size() && to.commit();
}

} // namespace

QString RawCANDBCGenerator::fileName() const
{
    return nameWith(dbcEnding);
}

void RawCANDBCGenerator::write(Utf8Sink &sink)
{
    DbcFrames frames(DbcFrames::Form::AllMessages);
    frames.addCanIds(*database(), line());
    CodeWriter out(sink);
    out(uR"(
        VERSION ""

        NS_ :

        BS_:

        BU_:

        )");
    for (const DbcFrame &frame : frames.frames()) {
        if (!goesOn())
            return;
        writeRawMessage(out, frame);
    }
    out(uR"(

        BA_DEF_ BO_ "GenMsgCycleTime" INT 0 100000;
        BA_DEF_ BO_ "GenMsgSendType" ENUM "Cyclic","NoMsgSendType";
        BA_DEF_DEF_ "GenMsgCycleTime" 0;
        BA_DEF_DEF_ "GenMsgSendType" "NoMsgSendType";

        )");
    for (const DbcFrame &frame : frames.frames())
        writeRawComments(out, frame);
    for (const DbcFrame &frame : frames.frames())
        writeRawAttributes(out, frame);
}

QString DBCGenerator::fileName() const
{
    return nameWith(dbcEnding);
}

void DBCGenerator::build(CANdbDBC &dbc)
{
    for (const AttributeDefinition &definition : attributeDefinitions())
        log(dbc.defineAttribute(definition), "Error kvaDbAddMsgAttribute");
    Q_EMIT progress(25);
    log(dbc.setAttribute(u"ProtocolType"_s, u"J1939"_s), "Error kvaDbSetAttributeValueInt");

    const Settings settings(*database(), Settings::Table::J1939);
    const auto address = static_cast<quint8>(settings.number(u"startaddress"_s, line()));
    const bool withDm1 = settings.isOn(u"diagsupport_dm1"_s, line());
    DbcFrames frames(DbcFrames::Form::OneFrame);
    frames.addPGNs(*database(), line(), address);
    frames.addStackMessages(address, withDm1);
    if (RunContext::protocolsOf(*database(), line()).rawCan)
        frames.addCanIds(*database(), line());
    for (const DbcFrame &frame : frames.frames()) {
        if (!goesOn())
            return;
        addFrame(dbc, frame);
    }
}

void DBCGenerator::writeFile()
{
    if (baseName().isEmpty()) {
        fail(OutputError, u"Empty target file name"_s);
        return;
    }
    CANdbDBC dbc;
    qDebug() << "DBC prprae output";
    build(dbc);
    if (errorCode() != 0)
        return;
    QTemporaryFile file;
    if (!file.open() || !dbc.writeFile(file.fileName())) {
        qDebug() << "Error create dbc file";
        fail(OutputError, u"Could not create output file."_s);
        return;
    }
    if (!copyFile(file.fileName(), filePath())) {
        fail(OutputError, u"Could not copy output file. %1 - %2"_s.arg(file.fileName(), filePath()));
        return;
    }
    qDebug() << "Creating Done";
}

/// For a caller that wants the text alone.
void DBCGenerator::write(Utf8Sink &sink)
{
    CANdbDBC dbc;
    build(dbc);
    writeDbc(sink, dbc.database());
}
