#include "stack/generatedsources.h"

#include "generate/recorder.h"
#include "generate/run/generatormainhandler.h"
#include "store/objectdatabase.h"
#include "support/processrunner.h"
#include "support/testhome.h"
#include "texttools/helper.h"

#include <QDir>
#include <QFile>
#include <QMap>
#include <QRegularExpression>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using namespace TestSupport;

namespace {

const QString sanitizers = u"-fsanitize=address,undefined"_s;

const QString stackFolder = QStringLiteral(NCX_SOURCE_DIR "/tests/stack");

/// The 24 bit arrays with a sign have no member in the structure of all arrays. Before version 2 the structure of a UDS
/// line does not refer to its tables. The offsets of string defaults step by the size of their variables, while the
/// table holds the texts alone; the SDO server of a J1939 device has this table, but no function that copies it.
const QRegularExpression &requiredWarnings()
{
    static const QRegularExpression pattern(
        u"warning: "
        u"(.(stringDefaultValues|od_i24|od_const_i24|od_ptr_i24|(sessionTbl|securityLvlTbl|authenticationTable)_\\d+). "
        u"defined "
        u"but "
        "not used|.*memcpy.* reading \\d+ bytes? from a region of size \\d+ |offset .\\d+. outside bounds "
        "of constant string)"_s);
    return pattern;
}

QString cType(quint16 dataType)
{
    static const QMap<quint16, QString> names{
        {1, u"UNSIGNED8"_s},   {2, u"INTEGER8"_s},    {3, u"INTEGER16"_s},   {4, u"INTEGER32"_s},
        {5, u"UNSIGNED8"_s},   {6, u"UNSIGNED16"_s},  {7, u"UNSIGNED32"_s},  {8, u"REAL32"_s},
        {9, u"char"_s},        {10, u"UNSIGNED8"_s},  {12, u"UNSIGNED48"_s}, {16, u"INTEGER24"_s},
        {22, u"UNSIGNED24"_s}, {24, u"UNSIGNED40"_s}, {25, u"UNSIGNED48"_s}, {27, u"UNSIGNED64"_s},
        {100, u"UNSIGNED8"_s}, {101, u"UNSIGNED8"_s}, {102, u"UNSIGNED8"_s}, {103, u"UNSIGNED8"_s},
        {104, u"UNSIGNED8"_s}, {105, u"UNSIGNED8"_s}, {124, u"char"_s},
    };
    // Of what has no array the sources take the address alone.
    return names.value(dataType, u"UNSIGNED64"_s);
}

bool isString(quint16 dataType)
{
    return dataType == 9 || dataType == 10 || dataType == 124;
}

/// A variable of the application; `elements` is 0 for a single value.
struct Variable
{
    QString type;
    quint32 elements = 0;
};

/// The variables that a project names, and their names as the tables have them.
struct Variables
{
    QMap<QString, Variable> declared;
    QMap<QString, bool> names; ///< true for a text

    void add(const QString &name, const ObjectDataBase::SUBINDEX_DATA_T &sub)
    {
        static const QRegularExpression element(u"^([A-Za-z_]\\w*)\\[(\\d+)\\]$"_s);
        static const QRegularExpression plain(u"^[A-Za-z_]\\w*$"_s);
        const QString type = cType(sub.datatype);
        if (type.isEmpty() || name.isEmpty())
            return;
        names.insert(name, isString(sub.datatype));
        if (const auto match = element.match(name); match.hasMatch()) {
            Variable &variable = declared[match.captured(1)];
            variable.type = type;
            variable.elements = std::max(variable.elements, match.captured(2).toUInt() + 1);
        } else if (plain.match(name).hasMatch()) {
            declared.insert(name, {type, isString(sub.datatype) ? std::max(sub.size, 1U) : 0});
        }
    }
};

/// Line, index and subindex, as one number, of the objects whose data belong to the safety module.
QSet<quint32> staticSafetyData(ObjectDataBase &store)
{
    QSet<quint32> keys;
    if (store.getGeneralSetting(u"static_srdo_data"_s).toInt() != 1)
        return keys;
    for (const quint8 line : store.getNodeList()) {
        for (const quint16 index : store.getIndexList(line, 0x1380, 0x13B0)) {
            for (const quint8 subindex : store.getSubIndexList(line, index, 1))
                keys.insert(quint32{line} << 24 |
                            store.getSubIndexDefaultValue(line, index, subindex).toUInt(nullptr, 0) >> 8);
        }
    }
    return keys;
}

Variables variablesOf(ObjectDataBase &store)
{
    Variables variables;
    const QSet<quint32> safetyData = staticSafetyData(store);
    for (const quint8 line : store.getNodeList()) {
        for (const auto &key : store.findSubIndices(line, u"implementation"_s, u"2"_s)) {
            if (key.index < 0x1000 || safetyData.contains(quint32{line} << 24 | quint32{key.index} << 8 | key.subindex))
                continue;
            if (const auto sub = store.getSubIndex(line, key.index, key.subindex))
                variables.add(Helper::substituteVariables(sub->varname, key.index, key.subindex, line), *sub);
        }
    }
    return variables;
}

QString declaration(const QString &name, const Variable &variable)
{
    return variable.type + u' ' + name +
           (variable.elements > 0 ? u'[' + QString::number(variable.elements) + u']' : QString());
}

} // namespace

class GeneratedSources::Private
{
public:
    Recorder output;
    GeneratorMainHandler handler{&output};
    QStringList objects;
};

GeneratedSources::GeneratedSources(bool classic)
    : classic_(classic)
    , folder_(QDir::tempPath() + u"/ncx-stack-XXXXXX"_s)
    , d_(std::make_unique<Private>())
{
}

GeneratedSources::~GeneratedSources()
{
    if (testing::Test::HasFailure())
        folder_.setAutoRemove(false);
}

ObjectDataBase &GeneratedSources::store() const
{
    return *d_->handler.database();
}

bool GeneratedSources::has(const QString &fileName) const
{
    return QFile::exists(folder_.filePath(fileName));
}

bool GeneratedSources::hasDictionary() const
{
    return has(u"gen_objdict.c"_s) || text(u"gen_mp.c"_s).contains(" od_assign[CO_OD_ASSIGN_CNT]");
}

QStringList GeneratedSources::messages() const
{
    return QStringList(d_->output.messages).replaceInStrings(folder_.path(), u"DIR"_s);
}

QByteArray GeneratedSources::text(const QString &fileName) const
{
    return readFile(folder_.filePath(fileName));
}

bool GeneratedSources::openFolder(const QString &folder)
{
    const QDir source(folder);
    for (const QString &name : source.entryList(QDir::Files))
        QFile::copy(source.filePath(name), folder_.filePath(name));
    if (!openProject(folder_.filePath(source.entryList({u"*.ncxt"_s, u"*.ncxp"_s}).value(0))))
        return false;
    const QStringList args = QString::fromUtf8(text(u"args"_s))
                                 .replace(u"${EXAMPLES}"_s, QStringLiteral(NCX_SOURCE_DIR "/examples"))
                                 .split(u'\n', Qt::SkipEmptyParts);
    for (qsizetype i = 0; i + 1 < args.size(); ++i) {
        if (args.at(i) == "-stackpath"_L1)
            d_->handler.setStackPath(args.at(i + 1));
        if (args.at(i) == "-import"_L1 && !importFile(folder_.filePath(args.at(i + 1))))
            return false;
    }
    return true;
}

bool GeneratedSources::openProject(const QString &path)
{
    return d_->handler.openProject(path);
}

bool GeneratedSources::importFile(const QString &path)
{
    return d_->handler.importFile(path);
}

bool GeneratedSources::generate()
{
    if (classic_) {
        EXPECT_TRUE(store().setGeneralSetting(u"use_core_headers"_s, u"classic"_s));
    }
    d_->handler.setOutputFolder(folder_.path());
    bool done = false;
    const auto connection = QObject::connect(&d_->handler, &GeneratorMainHandler::finished,
                                             [&done](GeneratorMainHandler::GeneratorResult result) {
                                                 done = result == GeneratorMainHandler::GenerationDone;
                                             });
    d_->handler.generate(true);
    QObject::disconnect(connection);
    return done;
}

QStringList GeneratedSources::compilerArguments() const
{
    return {u"-Wall"_s,
            u"-Wextra"_s,
            u"-I"_s + stackFolder + u"/include"_s,
            u"-I"_s + stackFolder,
            u"-I"_s + folder_.path(),
            u"-include"_s,
            folder_.filePath(u"application_variables.h"_s)};
}

QString GeneratedSources::compileFile(const QString &path, const QStringList &more)
{
    const bool cpp = path.endsWith(".cpp"_L1);
    const QString object = folder_.filePath(QFileInfo(path).fileName() + u".o"_s);
    QStringList arguments{cpp ? u"c++"_s : u"cc"_s, cpp ? u"-std=c++17"_s : u"-std=c99"_s};
    if (cpp) // the copy has the bytes of string defaults, which a char of C takes
        arguments.append(u"-Wno-narrowing"_s);
    if (sanitized_)
        arguments.append(sanitizers);
    arguments += compilerArguments() + more + QStringList{u"-c"_s, path, u"-o"_s, object};
    const ProcessResult result = ProcessRunner(u"/usr/bin/env"_s).arguments(arguments).run();
    d_->objects.append(object);
    QString complaints;
    for (const QString &line : result.errors.split(u'\n')) {
        const bool complaint = line.contains(": warning:"_L1) || line.contains(": error:"_L1);
        if (complaint && !requiredWarnings().match(line).hasMatch())
            complaints += line + u'\n';
    }
    return result.exitCode != 0 && complaints.isEmpty() ? result.errors : complaints;
}

/// Declares and defines what the application would, unless the project brings its own headers; and tells the walker the
/// names.
void GeneratedSources::writeVariables() const
{
    const Variables variables = variablesOf(store());
    QString header = u"#include <core_datatype.h>\n"_s;
    QString source = u"#include <stddef.h>\n"_s;
    QStringList ownHeaders = store().getGeneralSetting(u"applicationheader"_s).split(u' ', Qt::SkipEmptyParts);
    if (ownHeaders.isEmpty()) {
        for (auto it = variables.declared.cbegin(); it != variables.declared.cend(); ++it) {
            header += u"extern "_s + declaration(it.key(), it.value()) + u";\n"_s;
            source += declaration(it.key(), it.value()) + u";\n"_s;
        }
        // A function that the V4 form of gen_indication.h leaves to the application.
        if (const QString function = store().getGeneralSetting(u"fct_manager"_s); !function.isEmpty() && !classic_)
            header +=
                u"#include <co_canopen.h>\nextern __typeof__(*(CO_EVENT_MANAGER_BOOTUP_T)0) %1;\n"_s.arg(function);
        for (const QString &function : store().getGeneralSetting(u"co_node_id_fct"_s).split(u',', Qt::SkipEmptyParts))
            header += u"UNSIGNED8 "_s + function.trimmed() + u"(STACK_LINE_ONLY);\n"_s;
    }
    for (const QString &own : ownHeaders)
        source += u"#include \""_s + own + u"\"\n"_s;
    source += u"typedef struct { const char *name; const void *pVar; } VARIABLE_T;\n"
              "extern const VARIABLE_T walkerVariables[];\nconst VARIABLE_T walkerVariables[] = {\n"_s;
    for (auto it = variables.names.cbegin(); it != variables.names.cend(); ++it) {
        const QString address = it.value() ? u"&(%1[0])"_s : it.key().contains(u'(') ? u"%1"_s : u"&(%1)"_s;
        source += u"\t{ \""_s + it.key() + u"\", (const void *)"_s + address.arg(it.key()) + u" },\n"_s;
    }
    source += u"\t{ NULL, NULL }\n};\n"_s;
    writeFile(folder_.filePath(u"application_variables.h"_s), header.toUtf8());
    writeFile(folder_.filePath(u"walker_variables.c"_s), source.toUtf8());
}

/// What the dictionary, and the stack that is linked with it, are compiled with.
QStringList GeneratedSources::dictionarySwitches() const
{
    const bool oneLine = text(u"gen_objdict.c"_s).contains("j1939OdInit(void)");
    return oneLine ? QStringList{u"-DSTACK_ONE_DICTIONARY"_s} : QStringList();
}

QString GeneratedSources::compile()
{
    writeVariables();
    d_->objects.clear();
    QString complaints;
    for (const QString &name : QDir(folder_.path()).entryList({u"*.c"_s, u"*.cpp"_s}, QDir::Files)) {
        if (name.startsWith("gen_"_L1))
            complaints +=
                compileFile(folder_.filePath(name), name == "gen_objdict.c"_L1 ? dictionarySwitches() : QStringList());
    }
    return complaints;
}

QString GeneratedSources::link()
{
    const QString source = has(u"gen_objdict.c"_s) ? u"gen_objdict.c"_s : u"gen_mp.c"_s;
    const QByteArray code = text(source);
    const QStringList stackSwitches = dictionarySwitches();
    QStringList switches = stackSwitches;
    if (code.contains("RET_T mpStackInit("))
        switches += u"-DWALK_MP"_s;
    else if (code.contains("j1939OdInit("))
        switches += u"-DWALK_SERVER_MODE"_s;
    if (code.contains("RET_T coCanOpenStackInitPara("))
        switches += u"-DWALK_OPTIONS"_s;
    if (code.contains("RET_T genLoadIndication(") && text(u"gen_define.h"_s).contains("GEN_OVERWRITE_PREDEF_CONN_SET"))
        switches += u"-DWALK_LOAD_INDICATION"_s;
    if (code.contains("RET_T userOverwriteCobIdSettings("))
        switches += u"-DWALK_OVERWRITE_FUNCTION"_s;
    d_->objects = {folder_.filePath(source + u".o"_s)};
    QString complaints =
        compileFile(stackFolder + u"/stack.c"_s, stackSwitches) + compileFile(stackFolder + u"/walker.c"_s, switches);
    for (const QString &name : QDir(folder_.path()).entryList({u"*.c"_s}, QDir::Files)) {
        if (!name.startsWith("gen_"_L1))
            complaints += compileFile(folder_.filePath(name));
    }
    return complaints + linkWalker();
}

QString GeneratedSources::linkWalker()
{
    // The functions of the application are never called here.
    QStringList arguments{u"cc"_s, u"-no-pie"_s, u"-Wl,--unresolved-symbols=ignore-all"_s, u"-o"_s,
                          folder_.filePath(u"walker"_s)};
    if (sanitized_)
        arguments += {sanitizers, u"-fno-sanitize-recover=all"_s};
    const ProcessResult result = ProcessRunner(u"/usr/bin/env"_s).arguments(arguments + d_->objects).run();
    return result.exitCode == 0 ? QString() : result.errors;
}

/// The file with the tables of PGNs and CAN-IDs; empty if there are none.
QString GeneratedSources::messageSource() const
{
    for (const QString &name : {u"gen_mp.c"_s, u"gen_rawcan.c"_s, u"gen_pgn.c"_s}) {
        if (has(name))
            return name;
    }
    return {};
}

/// Tells the walker of messages the variables of the signals.
void GeneratedSources::writeSymbols() const
{
    QSet<QString> names;
    const auto add = [&](const ObjectDataBase::SPN &signal) {
        if (signal.implementation == 2 && !signal.varname.isEmpty())
            names.insert(signal.varname);
    };
    for (const quint8 line : store().getNodeList()) {
        for (const quint8 direction : {ObjectDataBase::receive, ObjectDataBase::transmit}) {
            for (const quint32 number : store().getPGNList(line, direction)) {
                for (const quint32 spn : store().getSPNList(line, number, direction)) {
                    if (const auto signal = store().getSPN(line, number, direction, spn))
                        add(*signal);
                }
            }
            for (const quint32 id : store().getCANIDList(line, direction)) {
                for (const quint32 element : store().getDataElementList(line, id, direction)) {
                    if (const auto signal = store().getDataElement(line, id, direction, element))
                        add(*signal);
                }
            }
        }
    }
    QString text;
    for (const QString &name : std::as_const(names))
        text += u"SYMBOL(%1)\n"_s.arg(name);
    writeFile(folder_.filePath(u"symbols.h"_s), text.toUtf8());
}

QString GeneratedSources::linkMessages()
{
    writeSymbols();
    const QString source = messageSource();
    const QStringList switches = source == "gen_mp.c"_L1       ? QStringList{u"-DWALK_MP"_s}
                                 : source == "gen_rawcan.c"_L1 ? QStringList{u"-DWALK_RAWCAN"_s}
                                                               : QStringList();
    d_->objects = {folder_.filePath(source + u".o"_s)};
    QString complaints = compileFile(folder_.filePath(u"gen_var_decl.c"_s), {u"-DNJX_USE_GENERATED_VARIABLES"_s}) +
                         compileFile(stackFolder + u"/stack.c"_s) +
                         compileFile(stackFolder + u"/pgn_walker.c"_s, switches);
    return complaints + linkWalker();
}

QString GeneratedSources::walk(const QStringList &arguments) const
{
    const ProcessResult result = ProcessRunner(folder_.filePath(u"walker"_s)).arguments(arguments).run();
    return result.exitCode == 0 ? result.output
                                : u"the walker ends with %1\n"_s.arg(result.exitCode) + result.output + result.errors;
}
