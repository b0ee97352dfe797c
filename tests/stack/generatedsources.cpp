#include "stack/generatedsources.h"

#include "generate/recorder.h"
#include "generate/run/generatormainhandler.h"
#include "stack/applicationvariables.h"
#include "store/objectdatabase.h"
#include "support/processrunner.h"
#include "support/testhome.h"

#include <QDir>
#include <QFile>
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

/// What the dictionary, and the stack that is linked with it, are compiled with.
QStringList GeneratedSources::dictionarySwitches() const
{
    const bool oneLine = text(u"gen_objdict.c"_s).contains("j1939OdInit(void)");
    return oneLine ? QStringList{u"-DSTACK_ONE_DICTIONARY"_s} : QStringList();
}

QString GeneratedSources::compile()
{
    ApplicationVariables::write(store(), classic_, folder_.path());
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
    QString complaints = compileFile(stackFolder + u"/stack.c"_s, stackSwitches) +
                         compileFile(stackFolder + u"/walker.c"_s, switches) +
                         compileFile(stackFolder + u"/dictionary_walker.c"_s, stackSwitches);
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
