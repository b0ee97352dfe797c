#include "generate/run/generatormainhandler.h"

#include "check/line/specialpgns.h"
#include "check/modelchecker.h"
#include "generate/base/abstractgenerator.h"
#include "generate/base/outputhandlerbase.h"
#include "generate/run/generationrun.h"
#include "generate/run/importdispatch.h"
#include "generate/run/postgenprocessor.h"
#include "nodedict/codes.h"
#include "store/databasemodifier.h"
#include "store/edition.h"
#include "store/objectdatabase.h"
#include "store/projectconverter.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

using namespace Qt::StringLiterals;

namespace {

/// Brings the values of older projects up to date.
void correctProject(const std::shared_ptr<ObjectDataBase> &store)
{
    ProjectConverter converter;
    converter.setDatabase(store);
    converter.doGenericCorrection();
    converter.doCorrection();
    const std::optional<Edition> edition = currentEdition();
    if (edition == Edition::EnergyBus)
        converter.doEnergyBusCorrection();
    if (edition == Edition::J1939)
        converter.doJ1939Correction();
}

CheckFinding untypedLine(quint8 line)
{
    return {.kind = CheckFinding::Kind::Warning, .place = {.line = line}, .text = u"The line has no type."_s};
}

} // namespace

/// How a check speaks about its lines; the run and the check alone differ in that.
struct GeneratorMainHandler::CheckVoice
{
    std::function<void(const QString &)> say;
    std::function<void(quint8)> tellUntyped; ///< of a line without a type
    std::function<void(quint8)> beginLine = [](quint8) {};
    std::function<void()> corrected = [] {};
};

GeneratorMainHandler::GeneratorMainHandler(OutputHandlerBase *output, QObject *parent)
    : QObject(parent)
    , database_(std::make_shared<ObjectDataBase>())
    , output_(output)
{
    database_->keepSubIndices(true);
    // Where there is no place for a working copy, no project is open, and each command tells so.
    if (database_->createNewDataBase())
        std::ignore = database_->addNode(0, ObjectDataBase::NODE_DATA_T());
}

GeneratorMainHandler::~GeneratorMainHandler() = default;

bool GeneratorMainHandler::openProject(const QString &filePath)
{
    const QFileInfo file(filePath);
    if (!file.exists())
        return false;
    const QString path = file.absoluteFilePath();
    isUnreadText_ = false;
    if (path.endsWith("ncxt"_L1)) // an open of the text form cannot fail
        isUnreadText_ = !database_->openTextDatabase(path) && (file.size() > 0 || !file.isFile());
    else if (!database_->openDataBase(path))
        return false;
    if (!database_->isOpen()) // there is no place for a working copy
        return false;
    correctProject(database_);
    outputFolder_ = file.absolutePath();
    projectBaseName_ = file.completeBaseName();
    projectPath_ = path;
    return database_->setGeneralSetting(u"new_init_structure"_s, u"1"_s) &&
           database_->setGeneralSetting(u"use_core_headers"_s, u"V4"_s) && !database_->isDamaged();
}

void GeneratorMainHandler::setStackPath(const QString &path)
{
    if (database_->isOpen())
        std::ignore = database_->setMiscSetting(u"costackpath"_s, path); // a save tells of damage
}

bool GeneratorMainHandler::importFile(const QString &path)
{
    return QFileInfo::exists(path) && ImportDispatch::importFile(database_, path);
}

bool GeneratorMainHandler::applyDbModifier(const QString &path)
{
    DatabaseModifier modifier;
    modifier.setDatabase(database_);
    modifier.setModifierFile(path);
    return modifier.applyModifierFile();
}

void GeneratorMainHandler::saveProject()
{
    if (!database_->isOpen())
        return;
    if (isUnreadText_) {
        output_->message(u"ERROR - %1 is no project and is left as it is."_s.arg(projectPath_));
        return;
    }
    std::ignore = database_->saveDatabase({}); // a text project tells of a failure only below
    if (!database_->lastError().isEmpty())
        output_->message(u"ERROR - %1"_s.arg(database_->lastError()));
}

void GeneratorMainHandler::handleCheckError(const QString &errorString)
{
    output_->message(errorString);
}

qint32 GeneratorMainHandler::checkModel(QStringList &messages)
{
    messages.clear();
    if (!database_->isOpen()) {
        messages.append(u"No project open."_s);
        return 1;
    }
    ModelChecker checker(checkRules_);
    checker.setMemory(&checkMemory_);
    connect(&checker, &ModelChecker::newError, this, [&messages](const QString &text) { messages.append(text); });
    // The memory of the check keeps them.
    database_->keepSubIndices(false);
    const qint32 errors = checkProject(
        checker, RunContext::ofProject(database_).lines,
        {.say = [&messages](const QString &text) { messages.append(text); },
         .tellUntyped =
             [&messages](quint8 line) { messages.append(u"Warning: line type not set for line %1."_s.arg(line)); }});
    database_->keepSubIndices(true);
    return errors;
}

GeneratorMainHandler::ModelFindings GeneratorMainHandler::findInModel()
{
    const RunContext context = RunContext::ofProject(database_);
    removeAddressClaims(context);
    ModelChecker checker(checkRules_);
    return findWith(checker, context.lines);
}

GeneratorMainHandler::ModelFindings GeneratorMainHandler::findAfterEdit()
{
    ModelChecker checker(checkRules_);
    checker.setMemory(&checkMemory_);
    // The memory of the check keeps them.
    database_->keepSubIndices(false);
    ModelFindings model = findWith(checker, RunContext::ofProject(database_).lines);
    database_->keepSubIndices(true);
    return model;
}

GeneratorMainHandler::ModelFindings GeneratorMainHandler::findWith(ModelChecker &checker, const QList<quint8> &lines)
{
    ModelFindings model;
    checker.setKeepsPdos(keepsPdos_);
    connect(&checker, &ModelChecker::found, this,
            [&model](const CheckFinding &finding) { model.findings.append(finding); });
    model.errors = checkProject(checker, lines,
                                {.say = [](const QString &) {},
                                 .tellUntyped = [&model](quint8 line) { model.findings.append(untypedLine(line)); }});
    model.suppressed = checker.suppressedCounts();
    return model;
}

qint32 GeneratorMainHandler::checkProject(ModelChecker &checker, const QList<quint8> &lines, const CheckVoice &voice)
{
    qint32 errors = checker.checkCommon(database_, outputFolder_);
    const QList<quint32> special = specialPGNs(*database_);
    bool corrected = false;
    for (const quint8 line : lines) {
        voice.beginLine(line);
        const LineProtocols protocols = RunContext::protocolsOf(*database_, line);
        if (protocols.canOpen)
            errors += checker.checkCANopenLine(line, database_, corrected);
        if (protocols.j1939)
            errors += checker.checkJ1939Line(static_cast<int>(lines.size()), line, database_, special);
        if (protocols.rawCan)
            errors += checker.checkRawCANLine(line, database_);
        if (!protocols.any())
            voice.tellUntyped(line);
    }
    if (corrected)
        voice.corrected();
    if (const QString closing = checker.suppressedSummary(); !closing.isEmpty())
        voice.say(closing);
    return errors;
}

void GeneratorMainHandler::generate(bool ignoreCheckErrors)
{
    const GeneratorResult result = runStages(ignoreCheckErrors);
    database_->clearSubCache();
    Q_EMIT finished(result);
}

GeneratorMainHandler::GeneratorResult GeneratorMainHandler::runStages(bool ignoreCheckErrors)
{
    // What the checks of single edits remember takes the room that the run needs for the same objects.
    checkMemory_.clear();
    RunContext context = RunContext::ofProject(database_);
    context.outputFolder = outputFolder_;
    context.baseName = projectBaseName_;
    removeAddressClaims(context);
    database_->cacheStrings();
    for (const quint8 line : context.lines)
        database_->cacheAllSubs(line, 0);

    if (!passesCheck(context, ignoreCheckErrors))
        return CheckFailed;
    if (const QFileInfo folder(outputFolder_); !folder.isDir() || !folder.isWritable()) {
        output_->message(u"ABORT - The output folder %1 is not writeable."_s.arg(outputFolder_));
        return OutputFolderNotWritable;
    }

    context.bootloaderMode = context.isOn(u"uds_bl_setting"_s) && !context.multiLine;
    switch (GenerationRun(context, *output_, *this).walk(runRows_)) {
    case RunFlow::Continue:
        break;
    case RunFlow::EndWithTemplateFailure:
        return TemplateFailure;
    case RunFlow::EndAsWanted:
        return GenerationEnded;
    }

    database_->clearSubCache();
    output_->message(u"Generation finished."_s);
    runPostGenProcess();
    return GenerationDone;
}

/// The stack claims its address by itself, so that a PGN of the project would stand in its way.
void GeneratorMainHandler::removeAddressClaims(const RunContext &context)
{
    for (const quint8 line : context.lines) {
        if (line < firstLineWithoutProtocol && context.protocols(line).j1939)
            std::ignore = database_->removePGN(line, J1939::addressClaim, ObjectDataBase::transmit);
    }
}

bool GeneratorMainHandler::passesCheck(const RunContext &context, bool ignoreCheckErrors)
{
    output_->message(u"\nCheck of model consistency started"_s);
    ModelChecker checker(checkRules_);
    checker.setKeepsPdos(keepsPdos_);
    ModelFindings model;
    connect(&checker, &ModelChecker::newError, this, &GeneratorMainHandler::handleCheckError);
    connect(&checker, &ModelChecker::found, this,
            [&model](const CheckFinding &finding) { model.findings.append(finding); });
    CheckVoice voice{.say = [this](const QString &text) { output_->message(text); },
                     .tellUntyped =
                         [this, &model](quint8 line) {
                             output_->message(u"Warning line type not set for line %1."_s.arg(line));
                             model.findings.append(untypedLine(line));
                         },
                     .corrected = [this] { Q_EMIT doneCorrection(); }};
    if (context.multiLine) {
        voice.beginLine = [this](quint8 line) {
            output_->forwardMessage(QString());
            output_->forwardMessage(u"<strong>________________________________________ Checking line %1 "
                                    "________________________________________</strong>"_s.arg(line));
        };
    }
    const qint32 errors = checkProject(checker, context.lines, voice);
    model.errors = errors;
    model.suppressed = checker.suppressedCounts();
    Q_EMIT checked(model);

    writeErrorLog();
    if (errors > 0 && !ignoreCheckErrors) {
        output_->message(u"ABORT - Check of model consistency finished: failed (%1 errors)"_s.arg(errors));
        return false;
    }
    retireErrorLog();
    output_->message(u"\nCheck of model consistency finished.\n"_s);
    return true;
}

QString GeneratorMainHandler::errorLogPath() const
{
    return QDir(outputFolder_).filePath(u"__ncxerrorlog.txt"_s);
}

void GeneratorMainHandler::writeErrorLog() const
{
    QFile log(errorLogPath());
    if (log.open(QIODevice::WriteOnly | QIODevice::Truncate))
        log.write(output_->collectedText().toUtf8());
}

/// An older log that was put aside stays as it is; the new one is then given up.
void GeneratorMainHandler::retireErrorLog() const
{
    const QString path = errorLogPath();
    QFile::copy(path, path + ".bak"_L1);
    QFile::remove(path);
}

void GeneratorMainHandler::generatorProgress(quint8 progress)
{
    if (progress != 100)
        return;
    const auto *generator = qobject_cast<AbstractGenerator *>(sender());
    const QString name = generator && !generator->objectName().isEmpty() ? generator->objectName() : u"output"_s;
    if (generator && generator->errorCode() != 0) {
        output_->message(u"<b>ERROR - Generation of %1 failed. %2</b>"_s.arg(name, generator->errorText()));
        return;
    }
    const QString info =
        generator && name.startsWith("gen_sdg.c"_L1) ? u"(%1)"_s.arg(generator->infoText()) : QString();
    output_->message(u"Generation of %1 completed. %2"_s.arg(name, info));
}

void GeneratorMainHandler::runPostGenProcess()
{
    if (!postGenProcessor_) {
        postGenProcessor_ = std::make_shared<PostGenProcessor>(*output_);
        postGenProcessor_->setDatabase(database_);
    }
    postGenProcessor_->setProject(outputFolder_, projectBaseName_);
    postGenProcessor_->setSkipCommand(!postGenSteps_.command);
    postGenProcessor_->setSkipEdsCheck(!postGenSteps_.edsCheck);
    postGenProcessor_->setSkipLineEndings(!postGenSteps_.lineEndings);
    postGenProcessor_->run();
}
