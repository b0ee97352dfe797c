#include "generate/startup/loadindication.h"

#include "generate/base/codewriter.h"
#include "generate/base/dialect.h"
#include "generate/model/dictionarytables.h"
#include "store/settings.h"

#include <algorithm>

using namespace Qt::StringLiterals;
using CobId = PredefinedSet::CobId;

namespace {

constexpr QLatin1StringView nodeIdMark{"$NODEID+"};
/// All but the default one.
constexpr CANopen::IndexRange furtherSdoServers{0x1201, 0x127F};

std::vector<CobId> sdoCobIds(std::span<const LineObject> objects)
{
    std::vector<CobId> cobIds;
    for (const LineObject &object : objects) {
        for (const quint8 subindex : {quint8{1}, quint8{2}})
            cobIds.push_back({.index = object.index, .subindex = subindex, .offset = {}});
    }
    return cobIds;
}

std::vector<CobId> pdoCobIds(std::span<const LineObject> objects)
{
    std::vector<CobId> cobIds;
    for (const LineObject &object : objects) {
        CobId cobId{.index = object.index, .subindex = 1, .offset = {}};
        const StoreRecords::SubEntry *sub = object.sub(cobId.subindex);
        const QString text = sub == nullptr ? QString() : sub->data.defaultvalue;
        const qsizetype mark = text.indexOf(nodeIdMark, 0, Qt::CaseInsensitive);
        cobId.addsNodeId = mark >= 0;
        if (cobId.addsNodeId) {
            const QString offset = text.sliced(mark + nodeIdMark.size()).trimmed();
            cobId.offset = offset.isEmpty() ? u"0"_s : offset;
        }
        cobIds.push_back(cobId);
    }
    return cobIds;
}

/// Writes the blocks of one line. In a project of several lines each call of the stack has the line.
class SectionWriter
{
public:
    SectionWriter(CodeWriter &out, bool multiLine, quint8 line)
        : out_(out)
        , multiLine_(multiLine)
        , line_(multiLine ? Code::dec(line) + u", "_s : QString())
    {
    }

    void write(const PredefinedSet::Line &line)
    {
        writeSection(multiLine_ ? u"SDO server COB IDs starting at 2nd SDO server"_s : u"SDO server COB IDs"_s,
                     line.sdoServers);
        writeSection(u"SDO client COB IDs"_s, line.sdoClients);
        writeSection(u"RxPDO COB IDs"_s, line.rpdos);
        writeSection(u"TxPDO COB IDs"_s, line.tpdos);
    }

private:
    void writeSection(const QString &title, const std::vector<CobId> &cobIds)
    {
        if (cobIds.empty())
            return;
        out_(u"");
        out_(u"\t\t/* ${TITLE} */", {{"TITLE", title}});
        for (const CobId &cobId : cobIds)
            cobId.addsNodeId ? writeSum(cobId) : writeDefault(cobId);
    }

    void writeDefault(const CobId &cobId)
    {
        out_(uR"(
            		ret = coOdGetDefaultVal_u32(${LINE}0x${INDEX}, ${SUB}, &cobId);
            		if (ret == RET_OK) {
            			ret = coOdSetCobid(${LINE}0x${INDEX}, ${SUB}, cobId);
            		}
            )",
             {{"LINE", line_}, {"INDEX", Code::hex(cobId.index, 4)}, {"SUB", Code::dec(cobId.subindex)}});
    }

    void writeSum(const CobId &cobId)
    {
        out_(uR"(
            		cobId = ${CAST}nodeId + ${CAST}${OFFSET};
            		ret = coOdSetCobid(${LINE}0x${INDEX}, ${SUB}, cobId);
            )",
             {{"CAST", multiLine_ ? u"(UNSIGNED32)"_s : QString()},
              {"OFFSET", cobId.offset},
              {"LINE", line_},
              {"INDEX", Code::hex(cobId.index, 4)},
              {"SUB", Code::dec(cobId.subindex)}});
    }

    CodeWriter &out_;
    bool multiLine_;
    QString line_;
};

bool usesNodeId(const PredefinedSet &set)
{
    return std::ranges::any_of(set.lines, &PredefinedSet::Line::usesNodeId);
}

bool isEmpty(const PredefinedSet &set)
{
    return std::ranges::all_of(set.lines, &PredefinedSet::Line::isEmpty);
}

/// The variables of a function for one or all lines. One that no COB-ID needs is marked, so that nobody warns of it.
void writeVariables(CodeWriter &out, const PredefinedSet &set)
{
    const bool sums = usesNodeId(set);
    out(uR"(
        	RET_T ret = RET_OK;
        	UNSIGNED32 cobId = 0ul;
        )");
    if (set.multiLine)
        out(u"\tUNSIGNED8 nodeId = 0x00;");
    else if (sums)
        out(u"\tUNSIGNED8 nodeId = coNmtGetNodeId();");
    if (isEmpty(set))
        out(u"\t(void)cobId;");
    if (set.multiLine && !sums)
        out(u"\t(void)nodeId;");
}

void writeLineBlocks(CodeWriter &out, const PredefinedSet &set, const QString &condition)
{
    for (const PredefinedSet::Line &line : set.lines) {
        out(u"\tif (${CONDITION} ${LINE})${CLOSE} {", {{"CONDITION", condition},
                                                       {"LINE", Code::dec(line.line)},
                                                       {"CLOSE", condition.startsWith(u'(') ? u")"_s : QString()}});
        out(u"\t\tnodeId = coNmtGetNodeId(${LINE});", {{"LINE", Code::dec(line.line)}});
        SectionWriter(out, true, line.line).write(line);
        out(u"\t}");
    }
}

void writeLoadIndication(CodeWriter &out, const PredefinedSet &set)
{
    out(uR"(

        /* Please be careful - this function overwrite the COB-Ids of the
        * predefined connection set with values setting up by the NCX
        * It can be passed as load indication to the stack initialization.
        */
        #ifdef GEN_OVERWRITE_PREDEF_CONN_SET
        RET_T genLoadIndication(${LINE}UNSIGNED8 subIndex)
        {
        )",
        {{"LINE", set.multiLine ? u"UNSIGNED8 canLine, "_s : QString()}});
    writeVariables(out, set);
    if (set.multiLine) {
        writeLineBlocks(out, set, u"((subIndex == 1) || (subIndex == 2)) && (canLine =="_s);
    } else {
        out(u"\tif ((subIndex == 1) || (subIndex == 2)) {");
        for (const PredefinedSet::Line &line : set.lines)
            SectionWriter(out, false, line.line).write(line);
        out(u"\t}");
    }
    out(uR"(
        	return ret;
        }
        #endif /* GEN_OVERWRITE_PREDEF_CONN_SET */
        )");
}

void writeUserFunctionOfOneLine(CodeWriter &out, const PredefinedSet &set)
{
    out(uR"(
        RET_T userOverwriteCobIdSettings(void)
        {
        )");
    writeVariables(out, set);
    for (const PredefinedSet::Line &line : set.lines)
        SectionWriter(out, false, line.line).write(line);
    out(uR"(
        	return ret;
        }
        )");
}

void writeUserFunctionsOfLines(CodeWriter &out, const PredefinedSet &set)
{
    out(uR"(
        RET_T userOverwriteCobIdSettingsLine(UNSIGNED8 canLine)
        {
        )");
    writeVariables(out, set);
    writeLineBlocks(out, set, u"canLine =="_s);
    out(uR"(
        	return ret;
        }

        RET_T userOverwriteCobIdSettings(void)
        {
        	RET_T retVal = RET_OK;

        )");
    for (const PredefinedSet::Line &line : set.lines)
        out(uR"(
            	retVal = userOverwriteCobIdSettingsLine(${LINE});
            	if (retVal != RET_OK) {
            		return(retVal);
            	}
            )",
            {{"LINE", Code::dec(line.line)}});
    out(uR"(
        	return(retVal);
        }
        )");
}

void writeUserFunctions(CodeWriter &out, const PredefinedSet &set)
{
    out(uR"(

        /* Please be careful - this function overwrite the COB-Ids of the
        * predefined connection set with values setting up by the NCX
        * It has to be called inside the load indication.
        */
        )");
    if (set.multiLine)
        writeUserFunctionsOfLines(out, set);
    else
        writeUserFunctionOfOneLine(out, set);
}

} // namespace

bool PredefinedSet::Line::usesNodeId() const
{
    return std::ranges::any_of(rpdos, &CobId::addsNodeId) || std::ranges::any_of(tpdos, &CobId::addsNodeId);
}

PredefinedSet PredefinedSet::collect(ObjectDataBase &store, const DictionaryTables &tables)
{
    PredefinedSet set;
    set.multiLine = tables.multiLine;
    const Settings settings(store);
    for (const quint8 number : tables.lineList) {
        const DictionaryLine *dictionary = tables.line(number);
        if (settings.isOn(u"overwrite_predef"_s, number) && dictionary != nullptr)
            set.lines.push_back({
                .line = number,
                .sdoServers = sdoCobIds(dictionary->range(furtherSdoServers)),
                .sdoClients = sdoCobIds(dictionary->range(CANopen::Index::sdoClients)),
                .rpdos = pdoCobIds(dictionary->range(CANopen::Index::rpdos)),
                .tpdos = pdoCobIds(dictionary->range(CANopen::Index::tpdos)),
            });
        if (!set.multiLine)
            break;
    }
    return set;
}

void writePredefinedSet(CodeWriter &out, const PredefinedSet &set, const Dialect &dialect)
{
    if (set.lines.empty())
        return;
    if (dialect.has(Point::LoadIndication))
        writeLoadIndication(out, set);
    else
        writeUserFunctions(out, set);
}
