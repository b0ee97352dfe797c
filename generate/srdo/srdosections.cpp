#include "generate/srdo/srdosections.h"

#include "generate/base/codewriter.h"

#include <QMap>

#include <algorithm>

using namespace Qt::StringLiterals;
using Code::dec;
using Code::hex;

namespace {

using Mapped = SrdoTables::Mapped;
using Srdo = SrdoTables::Srdo;

/// A variable of the module: one value, or one for each line.
QString state(const SrdoTables &tables, const QString &declaration, const QString &value)
{
    return tables.multiLine ? u"%1[CO_LINE_ARRAY_DECL] = { %2 };"_s.arg(
                                  declaration, QStringList(tables.lineCount, value).join(", "_L1))
                            : u"%1 = %2;"_s.arg(declaration, value);
}

void writeState(CodeWriter &out, const SrdoTables &tables, const QString &declaration, const QString &value)
{
    out(u"${STATE}", {{"STATE", state(tables, declaration, value)}});
}

void writeSwitch(CodeWriter &out, const QList<Srdo> &srdos, const QString &indent)
{
    out(u"${INDENT}switch (index) {", {{"INDENT", indent}});
    for (const Srdo &srdo : srdos)
        out(uR"(
            ${INDENT}case 0x${INDEX}u:
            ${INDENT}	pSrdo = &${NAME};
            ${INDENT}	break;
            )",
            {{"INDENT", indent}, {"INDEX", hex(srdo.index(), 4)}, {"NAME", srdo.name}});
    out(uR"(
        ${INDENT}default:
        ${INDENT}	break;
        ${INDENT}}
        )",
        {{"INDENT", indent}});
}

void writeCondition(CodeWriter &out, const SrdoTables &tables, const Srdo &srdo)
{
    if (tables.multiLine)
        out(u"\tif ((srdoNr == ${NUMBER}u) && (canLine == ${LINE}u)) {",
            {{"NUMBER", dec(srdo.number)}, {"LINE", dec(srdo.line)}});
    else
        out(u"\tif (srdoNr == ${NUMBER}u) {", {{"NUMBER", dec(srdo.number)}});
}

/// Stops the compiler: safety data must not be left out in silence.
void writeUnsupported(CodeWriter &out, const Mapped &mapped)
{
    out(u"#error not supported: 0x${INDEX}:${SUB}",
        {{"INDEX", hex(mapped.index, 4)}, {"SUB", hex(mapped.subindex, 2)}});
}

/// A byte of a buffer, shifted to its place in a value.
QString shiftedByte(const QString &buffer, quint32 byte, quint32 shift, const QString &type)
{
    const QString value = u"(%1)%2[%3]"_s.arg(type, buffer, dec(byte));
    return shift == 0 ? value : u"(%1)(%2 << %3u)"_s.arg(type, value, dec(shift));
}

/// The unsigned type that has the bytes of a kind.
QString rawType(const SrdoTables::TypeKind &kind)
{
    return u"UNSIGNED%1"_s.arg(kind.bytes * SrdoTables::bitsPerByte);
}

void writeReceived(CodeWriter &out, const SrdoTables &tables, const Mapped &mapped, quint32 firstByte)
{
    QStringList bytes;
    for (quint32 i = 0; i < mapped.bytes; ++i)
        bytes.append(shiftedByte(u"pData"_s, firstByte + i, i * SrdoTables::bitsPerByte, rawType(mapped.kind)));
    const QString value = bytes.join(" | "_L1);
    if (mapped.kind.tag == "R32"_L1)
        out(uR"(
            		${RAW} = ${VALUE};
            		memcpy(&${SHADOW}, &${RAW}, sizeof ${RAW});
            )",
            {{"RAW", tables.scratch}, {"VALUE", value}, {"SHADOW", mapped.shadow}});
    else
        out(u"\t\t${SHADOW} = (${TYPE})(${VALUE});",
            {{"SHADOW", mapped.shadow}, {"TYPE", mapped.kind.cType}, {"VALUE", value}});
}

void writeTransmitted(CodeWriter &out, const SrdoTables &tables, const QString &buffer, const Mapped &mapped,
                      quint32 firstByte)
{
    const bool isReal = mapped.kind.tag == "R32"_L1;
    out(u"\t\t${SHADOW} = ${VARIABLE};", {{"SHADOW", mapped.shadow}, {"VARIABLE", mapped.variable}});
    if (isReal)
        out(u"\t\tmemcpy(&${RAW}, &${SHADOW}, sizeof ${RAW});", {{"RAW", tables.scratch}, {"SHADOW", mapped.shadow}});
    const QString value = isReal ? tables.scratch : mapped.shadow;
    out(u"\t\t${BUFFER}[${BYTE}] = (UNSIGNED8)(${VALUE} & 0xffu);",
        {{"BUFFER", buffer}, {"BYTE", dec(firstByte)}, {"VALUE", value}});
    for (quint32 i = 1; i < mapped.bytes; ++i)
        out(u"\t\t${BUFFER}[${BYTE}] = (UNSIGNED8)((${VALUE} >> ${SHIFT}u) & 0xffu);",
            {{"BUFFER", buffer},
             {"BYTE", dec(firstByte + i)},
             {"VALUE", value},
             {"SHIFT", dec(quint64{i} * SrdoTables::bitsPerByte)}});
}

void writeGap(CodeWriter &out, const QString &buffer, const Mapped &mapped, quint32 firstByte)
{
    for (quint32 i = 0; i < mapped.bytes; ++i)
        out(u"\t\t${BUFFER}[${BYTE}] = 0x00u;", {{"BUFFER", buffer}, {"BYTE", dec(firstByte + i)}});
}

/// Calls `write` for each mapped object with the first byte that it has in its message.
template <typename Write>
void eachMapped(CodeWriter &out, const QList<Mapped> &objects, Write write)
{
    constexpr quint32 messageBytes = 8;
    quint32 byte = 0;
    for (const Mapped &mapped : objects) {
        if (mapped.isSupported && byte + mapped.bytes <= messageBytes)
            write(mapped, byte);
        else
            writeUnsupported(out, mapped);
        byte += mapped.bytes;
    }
}

bool hasReal(const QList<Mapped> &objects)
{
    return std::ranges::any_of(objects,
                               [](const Mapped &mapped) { return mapped.isSupported && mapped.kind.tag == "R32"_L1; });
}

void writeScratch(CodeWriter &out, const SrdoTables &tables)
{
    out(u"\t\tUNSIGNED32 ${RAW};\n", {{"RAW", tables.scratch}});
}

void writeReceivedObjects(CodeWriter &out, const SrdoTables &tables, const QList<Mapped> &objects)
{
    if (hasReal(objects))
        writeScratch(out, tables);
    eachMapped(out, objects, [&](const Mapped &mapped, quint32 byte) {
        if (!mapped.isDummy)
            writeReceived(out, tables, mapped, byte);
    });
}

void writeTaken(CodeWriter &out, const QList<Mapped> &objects)
{
    for (const Mapped &mapped : objects) {
        if (mapped.isSupported && !mapped.isDummy)
            out(u"\t\t${VARIABLE} = ${SHADOW};", {{"VARIABLE", mapped.variable}, {"SHADOW", mapped.shadow}});
    }
}

} // namespace

void SrdoSections::writeConfigurationValid(CodeWriter &out, const SrdoTables &tables)
{
    writeState(out, tables, u"static UNSIGNED8\tconfigurationValid"_s, u"0u"_s);
}

void SrdoSections::writeNmtState(CodeWriter &out, const SrdoTables &tables)
{
    writeState(out, tables, u"static CO_NMT_STATE_T\tsrdoNmtState"_s, u"CO_NMT_STATE_PREOP"_s);
}

void SrdoSections::writeConfigurationReady(CodeWriter &out, const SrdoTables &tables)
{
    writeState(out, tables, u"static UNSIGNED8\tsrdoConfigReady"_s, u"0u"_s);
}

QString SrdoSections::timer(const SrdoTables &tables)
{
    return state(tables, u"static CO_SRDO_TIMER_T  *pSrdoTimer"_s, u"NULL"_s);
}

void SrdoSections::writeDataDefinitions(CodeWriter &out, const SrdoTables &tables)
{
    for (const Srdo &srdo : tables.srdos) {
        out(u"static CO_SRDO_DATA_T\t${NAME};", {{"NAME", srdo.name}});
        if (srdo.mapping.isEmpty())
            continue;
        out(u"static const UNSIGNED32\t${TABLE}[${COUNT}] = {",
            {{"TABLE", srdo.mapTable}, {"COUNT", dec(static_cast<quint64>(srdo.mapping.size()))}});
        for (const quint32 entry : srdo.mapping)
            out(u"\t0x${ENTRY}ul,", {{"ENTRY", hex(entry, 8)}});
        out(u"};");
    }
}

void SrdoSections::writeVariables(CodeWriter &out, const SrdoTables &tables)
{
    for (const QList<SrdoTables::Variable> *variables : {&tables.variables, &tables.shadows}) {
        for (const SrdoTables::Variable &variable : *variables)
            out(u"${STORAGE} ${TYPE}\t${NAME}; /* ${PLACE} */",
                {{"STORAGE", variable.isStatic ? u"static"_s : u"extern"_s},
                 {"TYPE", variable.cType},
                 {"NAME", variable.name},
                 {"PLACE", variable.comment}});
    }
}

void SrdoSections::writeEntries(CodeWriter &out, const SrdoTables &tables)
{
    for (const SrdoTables::TypeKind &kind : SrdoTables::typeKinds()) {
        const auto ofKind = [&kind](const Mapped &mapped) { return mapped.kind.tag == kind.tag; };
        if (std::ranges::none_of(tables.entries, ofKind))
            continue;
        out(u"static const SRDO_OD_ENTRY_${TAG}_T\todEntry_${TAG}[SRDO_OD_ENTRY_${TAG}_CNT] = {", {{"TAG", kind.tag}});
        for (const Mapped &mapped : tables.entries) {
            if (ofKind(mapped))
                out(u"\t{ ${LINE}0x${INDEX}u, 0x${SUB}u, &${VARIABLE} },",
                    {{"LINE", tables.multiLine ? u"0x%1u, "_s.arg(hex(mapped.line, 2)) : QString()},
                     {"INDEX", hex(mapped.index, 4)},
                     {"SUB", hex(mapped.subindex, 2)},
                     {"VARIABLE", mapped.variable}});
        }
        out(u"};");
    }
}

void SrdoSections::writeDataPointers(CodeWriter &out, const SrdoTables &tables)
{
    if (!tables.multiLine) {
        writeSwitch(out, tables.srdos, u"\t"_s);
        return;
    }
    QMap<quint8, QList<Srdo>> lines;
    for (const Srdo &srdo : tables.srdos)
        lines[srdo.line].append(srdo);
    out(u"\tswitch (canLine) {");
    for (auto line = lines.cbegin(); line != lines.cend(); ++line) {
        out(u"\t\tcase ${LINE}u:", {{"LINE", dec(line.key())}});
        writeSwitch(out, line.value(), u"\t\t\t"_s);
        out(u"\t\t\tbreak;");
    }
    out(uR"(
        		default:
        			break;
        	}
        )");
}

void SrdoSections::writeDefaults(CodeWriter &out, const SrdoTables &tables)
{
    for (const Srdo &srdo : tables.srdos) {
        const QString indent = tables.multiLine ? u"\t\t"_s : u"\t"_s;
        if (tables.multiLine)
            out(u"\tif (canLine == ${LINE}u) {", {{"LINE", dec(srdo.line)}});
        out(uR"(
            ${INDENT}${NAME}.direction = ${DIRECTION};
            ${INDENT}${NAME}.refreshTime = ${REFRESH};
            ${INDENT}${NAME}.validationTime = ${VALIDATION};
            ${INDENT}${NAME}.cobIdNormal = ${NORMAL};
            ${INDENT}${NAME}.cobIdInvers = ${INVERTED};
            ${INDENT}${NAME}.pMapTable = ${TABLE};
            ${INDENT}${NAME}.mapCnt = ${COUNT}u;
            ${INDENT}${NAME}.dataValid = CO_SRDO_DATA_UNKNOWN;
            )",
            {{"INDENT", indent},
             {"NAME", srdo.name},
             {"DIRECTION", srdo.direction},
             {"REFRESH", srdo.refreshTime},
             {"VALIDATION", srdo.validationTime},
             {"NORMAL", srdo.normalCobId},
             {"INVERTED", srdo.invertedCobId},
             {"TABLE", srdo.mapTable.isEmpty() ? u"NULL"_s : u"&%1[0]"_s.arg(srdo.mapTable)},
             {"COUNT", dec(static_cast<quint64>(srdo.mapping.size()))}});
        if (tables.multiLine)
            out(u"\t}");
    }
}

void SrdoSections::writeReceiveNormal(CodeWriter &out, const SrdoTables &tables)
{
    for (const Srdo &srdo : tables.srdos) {
        if (!srdo.isReceive)
            continue;
        writeCondition(out, tables, srdo);
        writeReceivedObjects(out, tables, srdo.normal);
        out(u"\t}");
    }
}

void SrdoSections::writeReceiveInverted(CodeWriter &out, const SrdoTables &tables)
{
    for (const Srdo &srdo : tables.srdos) {
        if (!srdo.isReceive)
            continue;
        writeCondition(out, tables, srdo);
        writeReceivedObjects(out, tables, srdo.inverted);
        writeTaken(out, srdo.normal);
        writeTaken(out, srdo.inverted);
        out(u"\t}");
    }
}

void SrdoSections::writeTransmit(CodeWriter &out, const SrdoTables &tables)
{
    for (const Srdo &srdo : tables.srdos) {
        if (!srdo.isTransmit)
            continue;
        writeCondition(out, tables, srdo);
        if (hasReal(srdo.normal) || hasReal(srdo.inverted))
            writeScratch(out, tables);
        const auto copyTo = [&](const QString &buffer) {
            return [&out, &tables, buffer](const Mapped &mapped, quint32 byte) {
                if (mapped.isDummy)
                    writeGap(out, buffer, mapped, byte);
                else
                    writeTransmitted(out, tables, buffer, mapped, byte);
            };
        };
        eachMapped(out, srdo.normal, copyTo(u"pNormal"_s));
        eachMapped(out, srdo.inverted, copyTo(u"pInvers"_s));
        out(u"\t}");
    }
}
