#include "generate/base/dialect.h"
#include "generate/define/definegenerator.h"
#include "generate/j1939/pgngenerator.h"
#include "generate/j1939/pgntables.h"
#include "generate/multiprotocol/multiprogenerator.h"
#include "generate/names/externdeclgenerator.h"
#include "generate/objdict/objdictgenerator.h"
#include "generatedc.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <ostream>
#include <random>

using namespace Qt::StringLiterals;
using namespace TestSupport;

namespace {

constexpr quint8 tx = ObjectDataBase::transmit;
constexpr quint8 rx = ObjectDataBase::receive;

/// What the tables say of a signal of a type.
struct TypeRow
{
    quint32 type;
    const char *v4;      ///< the word of the V4 form
    const char *classic; ///< that of the classic form
    quint32 bits;        ///< 0 for those that have a width of their own
    bool isManaged;      ///< the stack may hold the value
};

constexpr TypeRow typeRows[] = {
    {1, "B", "NUMERIC", 1, true},           {2, "I8", "NUMERIC", 8, true},
    {3, "I16", "NUMERIC", 16, true},        {4, "I32", "NUMERIC", 32, true},
    {5, "U8", "NUMERIC", 8, true},          {6, "U16", "NUMERIC", 16, true},
    {7, "U32", "NUMERIC", 32, true},        {8, "R32", "NUMERIC", 32, false},
    {10, "NON_NUMERIC", "NONE", 0, false},  {15, "NON_NUMERIC", "NONE", 0, false},
    {22, "U24", "NUMERIC", 24, true},       {27, "U64", "NUMERIC", 64, true},
    {100, "U2", "NUMERIC", 2, true},        {105, "U7", "NUMERIC", 7, true},
    {109, "U12", "NUMERIC", 12, true},      {118, "U22", "NUMERIC", 22, true},
    {120, "STRING_NULL", "NONE", 0, false}, {121, "STRING_ASTERIKS", "NONE", 0, false},
};

/// Makes a signal of any type and kind, with a variable of that name where it has one.
auto randomSignal(std::mt19937 &random, const QString &variable)
{
    return [&random, variable](StoreRecords::SPN &signal) {
        signal.datatype = typeRows[random() % std::size(typeRows)].type;
        signal.bitposition = static_cast<quint16>(random());
        signal.bitsize = static_cast<quint16>(8 * (1 + random() % 40));
        signal.defaultvalue = QString::number(random() % 2);
        signal.implementation = static_cast<quint8>(random() % 4);
        if (signal.implementation == 2)
            signal.varname = variable;
    };
}

quint8 randomDirection(std::mt19937 &random)
{
    return random() % 2 == 0 ? tx : rx;
}

/// Groups with signals of all types and kinds, on the builder's line.
void addRandomGroups(ProjectBuilder &project, std::mt19937 &random, quint8 line, quint32 count)
{
    for (quint32 i = 0; i < count; ++i) {
        project.pgn(256U * i + line, randomDirection(random), u"Group */ %1"_s.arg(i), [&](auto &pgn) {
            pgn.cycletime_ms = static_cast<quint16>(random());
            pgn.inhibittime_ms = static_cast<quint16>(random());
            pgn.priority = static_cast<quint8>(random() % 8);
            pgn.FD_TrailerFormat = static_cast<quint8>(random() % 6);
            pgn.FD_AssuranceType = static_cast<quint8>(random() % 4);
            pgn.FD_AssuranceDataSize = static_cast<quint8>(random());
        });
        const auto signalCount = static_cast<quint32>(random() % 6);
        for (quint32 spn = 0; spn < signalCount; ++spn)
            project.spn(1000U * i + spn, u"Signal"_s, randomSignal(random, u"v_%1_%2_%3"_s.arg(line).arg(i).arg(spn)));
    }
}

void addRandomCanIds(ProjectBuilder &project, std::mt19937 &random, quint8 line, quint32 count)
{
    for (quint32 i = 0; i < count; ++i) {
        // Some have the number of a group of the line.
        const quint32 id = i % 3 == 0 ? 256U * i + line : 0x80000000U | static_cast<quint32>(random() % 0x20000000U);
        project.canId(id, randomDirection(random), u"Frame %1"_s.arg(i), [&](auto &canId) {
            canId.cycletime_ms = static_cast<quint16>(random());
            canId.inhibittime_ms = static_cast<quint16>(random());
        });
        const auto signalCount = static_cast<quint32>(random() % 5);
        for (quint32 number = 1; number <= signalCount; ++number)
            project.element(number, u"Signal"_s,
                            randomSignal(random, u"v_can_%1_%2_%3"_s.arg(line).arg(i).arg(number)));
    }
}

struct Form
{
    QList<int> lineTypes;
    bool v4;
    bool fd = false;
    bool safety = false;
    bool dynamic = false;
    bool initialised = true;

    bool multiLine() const { return lineTypes.size() > 1; }
    bool has(const QList<int> &types) const
    {
        return std::ranges::any_of(lineTypes, [&types](int type) { return types.contains(type); });
    }
    bool hasCanOpen() const { return has({1, 5, 6}); }
    bool hasJ1939() const { return has({2, 5, 7}); }
    bool hasRawCan() const { return has({4, 6, 7}); }
    bool isMultiProtocol() const { return hasRawCan() || hasCanOpen(); }
};

/// The name of a case: line types, form and switches.
void PrintTo(const Form &form, std::ostream *out)
{
    for (const int type : form.lineTypes)
        *out << type;
    *out << (form.v4 ? "_v4" : "_classic") << (form.fd ? "_fd" : "") << (form.safety ? "_safety" : "")
         << (form.dynamic ? "_dynamic" : "") << (form.initialised ? "" : "_uninitialised");
}

/// What a walk over the stack's tables has to print for a signal.
QString expectedSignal(const StoreRecords::SPN &signal, quint32 number, const Form &form)
{
    const TypeRow &row = *std::ranges::find(typeRows, signal.datatype, &TypeRow::type);
    QString target = u"NULL"_s;
    if (signal.implementation == 2)
        target = signal.varname;
    else if (signal.implementation < 2 && row.isManaged) {
        // Without static values the variables of groups begin with 0.
        const bool isOne = form.initialised && signal.defaultvalue == "1"_L1;
        target =
            signal.datatype == 27 ? u"managed 000000000000000%1"_s.arg(int{isOne}) : u"managed %1"_s.arg(int{isOne});
    }
    return u"  %1 at %2 bits %3 %4 %5"_s.arg(number)
        .arg(signal.bitposition)
        .arg(row.bits > 0 ? row.bits : signal.bitsize)
        .arg(QLatin1StringView(form.v4 ? row.v4 : row.classic), target);
}

QStringList expectedGroup(ObjectDataBase &store, quint8 line, quint32 number, quint8 direction, const Form &form)
{
    const ObjectDataBase::PGN pgn = store.getPGN(line, number, direction).value();
    const QList<quint32> spns = store.getSPNList(line, number, direction);
    const int assurance = pgn.FD_TrailerFormat == 0 ? 3 : pgn.FD_AssuranceType;
    const QString safety =
        form.safety ? u"%1 %2 %3"_s.arg(pgn.FD_TrailerFormat).arg(assurance).arg(pgn.FD_AssuranceDataSize) : u"0 0 0"_s;
    QStringList lines{
        u"%1 %2 cycle %3 inhibit %4 priority %5 count %6 trailer %7"_s.arg(direction == tx ? "TX"_L1 : "RX"_L1)
            .arg(number)
            .arg(pgn.cycletime_ms)
            .arg(pgn.inhibittime_ms)
            .arg(pgn.priority)
            .arg(spns.size())
            .arg(safety)};
    for (const quint32 spn : spns) {
        lines.append(expectedSignal(store.getSPN(line, number, direction, spn).value(), spn, form));
    }
    return lines;
}

QStringList expectedFrame(ObjectDataBase &store, quint8 line, quint32 id, quint8 direction, const Form &form)
{
    const ObjectDataBase::CANID canId = store.getCANID(line, id, direction).value();
    const QList<quint32> elements = store.getDataElementList(line, id, direction);
    const QString times = direction == tx ? u"cycle %1 inhibit %2"_s.arg(canId.cycletime_ms).arg(canId.inhibittime_ms)
                                          : u"monitoring %1"_s.arg(canId.cycletime_ms);
    QStringList lines{
        u"%1 %2 %3 count %4"_s.arg(direction == tx ? "TXID"_L1 : "RXID"_L1).arg(id).arg(times).arg(elements.size())};
    for (const quint32 number : elements) {
        lines.append(expectedSignal(store.getDataElement(line, id, direction, number).value(), number, form));
    }
    return lines;
}

QStringList expectedWalk(ObjectDataBase &store, const Form &form)
{
    QStringList lines;
    for (const quint8 line : store.getNodeList()) {
        for (const quint8 direction : {rx, tx}) {
            for (const quint32 number : store.getPGNList(line, direction))
                lines += expectedGroup(store, line, number, direction, form);
        }
        for (const quint8 direction : {rx, tx}) {
            for (const quint32 id : store.getCANIDList(line, direction))
                lines += expectedFrame(store, line, id, direction, form);
        }
    }
    return lines;
}

ProjectBuilder randomProject(const Form &form)
{
    std::mt19937 random(1939);
    ProjectBuilder project;
    for (quint8 line = 0; line < form.lineTypes.size(); ++line) {
        const int type = form.lineTypes.at(line);
        project.line(line, type);
        if (type == 2 || type == 7)
            addRandomGroups(project, random, line, line == 0 ? 12 : 8);
        if (type == 4 || type == 7)
            addRandomCanIds(project, random, line, 9);
    }
    const auto flag = [](bool on) { return on ? u"1"_s : u"0"_s; };
    project.general(u"new_init_structure"_s, u"1"_s).general(u"canfd_supported"_s, flag(form.fd));
    project.general(u"init_static_variables"_s, flag(form.initialised)).j1939(u"identitynumber"_s, u"4711"_s);
    project.j1939(u"safetysupport"_s, flag(form.safety)).j1939(u"dynsupport"_s, flag(form.dynamic));
    project.j1939(u"startaddress"_s, u"128"_s);
    return project;
}

template <typename Defines, typename Variables, typename Groups, typename Messages>
void generateForm(const GeneratedC &folder, const ProjectBuilder &project, const Form &form)
{
    const MultiProtocols protocols{.canOpen = form.hasCanOpen(), .j1939 = form.hasJ1939(), .rawCan = form.hasRawCan()};
    Defines defines;
    defines.setJ1939Mode(form.hasJ1939());
    defines.setMultiProtocol(form.isMultiProtocol());
    Variables variables;
    Groups groups;
    Messages messages(protocols, false);
    AbstractGenerator &source = form.isMultiProtocol() ? static_cast<AbstractGenerator &>(messages) : groups;
    for (AbstractGenerator *generator :
         {static_cast<AbstractGenerator *>(&defines), static_cast<AbstractGenerator *>(&variables), &source})
        folder.generate(*generator, project, form.multiLine());
}

void generateAll(const GeneratedC &folder, const ProjectBuilder &project, const Form &form)
{
    if (form.v4)
        generateForm<GenDefineGenerator, ExtDeclGeneratorV4, PGNGeneratorV4, MultiProGeneratorV4>(folder, project,
                                                                                                  form);
    else
        generateForm<CoDefineGenerator, ExtDeclGenerator, PGNGenerator, MultiProGenerator>(folder, project, form);
    QStringList symbols;
    for (const QString &row : expectedWalk(*project.store(), form)) {
        if (const QString name = row.section(u' ', -1); name.startsWith("v_"_L1))
            symbols.append(u"SYMBOL(%1)\n"_s.arg(name));
    }
    folder.add(u"symbols.h"_s, symbols.join(QString()));
}

class MessageWalk : public testing::TestWithParam<Form>
{
};

TEST_P(MessageWalk, FindsWhatTheStoreHolds)
{
    const Form &form = GetParam();
    const ProjectBuilder project = randomProject(form);
    const GeneratedC folder;
    generateAll(folder, project, form);
    const bool rawCanOnly = form.isMultiProtocol() && !form.hasJ1939();
    const QString source = !form.isMultiProtocol() ? u"gen_pgn.c"_s : rawCanOnly ? u"gen_rawcan.c"_s : u"gen_mp.c"_s;
    QStringList options{u"-DNJX_USE_GENERATED_VARIABLES"_s};
    if (form.isMultiProtocol())
        options.append(rawCanOnly ? u"-DWALK_RAWCAN"_s : u"-DWALK_MP"_s);
    const ProcessResult build = folder.build({source, u"gen_var_decl.c"_s, u"pgn_walker.c"_s, u"stack.c"_s}, options);
    ASSERT_EQ(build.exitCode, 0) << qPrintable(build.errors);
    const ProcessResult walk = folder.run();
    EXPECT_EQ(walk.exitCode, 0);

    QStringList names;
    QStringList found;
    bool inName = false;
    for (const QString &row : walk.output.split(u'\n', Qt::SkipEmptyParts)) {
        if (!row.startsWith(u' '))
            inName = row.startsWith("NAME"_L1);
        if (inName)
            names.append(row);
        else if (row.startsWith("TX"_L1) || row.startsWith("RX"_L1) || row.startsWith(u' '))
            found.append(row);
    }
    EXPECT_EQ(found, expectedWalk(*project.store(), form));
    if (!form.hasJ1939())
        return;
    const qsizetype fieldCount = form.v4 ? 9 : 10;
    const auto j1939Lines = std::ranges::count_if(form.lineTypes, [](int type) { return type == 2 || type == 7; });
    ASSERT_EQ(names.size(), j1939Lines * (fieldCount + 1));
    EXPECT_EQ(names.first(), u"NAME 60928 cycle 0 inhibit 250 priority 6 count %1 trailer 0 3 0"_s.arg(fieldCount));
    EXPECT_TRUE(names.at(1).endsWith(" managed 4711"_L1)) << qPrintable(names.at(1));
}

INSTANTIATE_TEST_SUITE_P(
    Forms, MessageWalk,
    testing::Values(
        Form{.lineTypes = {2}, .v4 = true},
        Form{.lineTypes = {2, 2}, .v4 = true, .fd = true, .safety = true, .initialised = false},
        Form{.lineTypes = {2}, .v4 = true, .fd = true, .safety = true, .dynamic = true, .initialised = false},
        Form{.lineTypes = {2}, .v4 = false, .dynamic = true},
        Form{.lineTypes = {2, 2}, .v4 = false, .fd = true, .safety = true, .initialised = false},
        Form{.lineTypes = {7}, .v4 = true}, Form{.lineTypes = {7}, .v4 = false, .initialised = false},
        Form{.lineTypes = {2, 4, 7}, .v4 = true, .fd = true, .initialised = false},
        Form{.lineTypes = {7, 2}, .v4 = false}, Form{.lineTypes = {4}, .v4 = true, .fd = true},
        Form{.lineTypes = {4, 4}, .v4 = false}));

TEST(PgnGenerator, WritesTheFormerServiceValues)
{
    ProjectBuilder project;
    project.line(0, 2);
    const GeneratedC folder;
    PGNGenerator generator;
    folder.generate(generator, project);
    const QString text = folder.text(u"gen_pgn.c"_s);
    EXPECT_TRUE(text.contains(u"const J1939_SERVICE_INIT_VAL_T\tserviceInitVars = {\n\t3u,\n"_s)) << qPrintable(text);
    EXPECT_TRUE(text.contains(u"\t0, \n\tJ1939_TRANSMIT_PGN_CNT,\n\t0, \n\tJ1939_RECEIVE_PGN_CNT,\n"_s));
    PGNGenerator fd;
    folder.generate(fd, project.general(u"canfd_supported"_s, u"1"_s));
    EXPECT_TRUE(folder.text(u"gen_pgn.c"_s).contains(u"RET_T retVal;\nUNSIGNED8 i;\n"_s));
}

TEST(ObjDictGenerator, LeavesTheFormerServiceValuesToTheApplication)
{
    ProjectBuilder project;
    project.object(0x1000, u"Device type"_s).general(u"new_init_structure"_s, u"0"_s);
    const GeneratedC folder;
    ObjDictGeneratorV4 generator(false);
    folder.generate(generator, project);
    EXPECT_TRUE(folder.text(u"gen_objdict.c"_s).contains(u"extern CO_SERVICE_INIT_VAL_T\tserviceInitVars;\n"_s));
}

TEST(ExternDeclarations, TakeTheTypesOfTheirStack)
{
    ProjectBuilder project;
    for (const QString &coreHeaders : {u"0"_s, u"1"_s}) {
        const GeneratedC folder;
        ExtDeclGenerator classic;
        folder.generate(classic, project.general(u"use_core_headers"_s, coreHeaders));
        EXPECT_EQ(folder.text(u"gen_extern_decl.h"_s).contains(u"#include <core_datatype.h>\n"_s),
                  coreHeaders == "1"_L1);
    }
}

} // namespace
