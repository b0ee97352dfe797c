#include "generate/run/postgenprocessor.h"

#include "generate/base/runcontext.h"
#include "generate/common/documentname.h"
#include "generate/run/edscheckerwrapper.h"
#include "generate/run/postgenprogresshandler.h"
#include "store/objectdatabase.h"
#include "store/usersettings.h"
#include "texttools/helper.h"
#include "texttools/numbertext.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>

#include <algorithm>
#include <array>
#include <csignal>
#include <vector>

using namespace Qt::StringLiterals;

namespace {

constexpr int startTimeoutMs = 30000;

constexpr QLatin1StringView convertedFiles[] = {
    "gen_define.h"_L1,          "gen_indication.h"_L1, "gen_indices.h"_L1, "gen_extern_decl.h"_L1,
    "gen_var_decl.h"_L1,        "gen_var_decl.c"_L1,   "gen_srdo.c"_L1,    "gen_sdg.c"_L1,
    "gen_objdict.c"_L1,         "gen_vobjdict.c"_L1,   "gen_pgn.c"_L1,     "gen_mp.c"_L1,
    "gen_rawcan.c"_L1,          "gen_uds.c"_L1,        "gen_user.h"_L1,    "gen_define.props"_L1,
    "Directory.Build.props"_L1,
};

bool isOn(const QString &setting)
{
    return QVariant(setting).toBool();
}

QString generalSetting(const QString &key)
{
    return UserSettings::value(u"General"_s, key);
}

QString checkerSetting(const QString &key)
{
    return UserSettings::value(u"EDSChecker"_s, key);
}

} // namespace

PostGenProcessor::PostGenProcessor(OutputHandlerBase &output, QObject *parent)
    : QObject(parent)
    , output_(output)
{
    connect(this, &PostGenProcessor::proceedGeneration, this, &PostGenProcessor::proceedGenerationSlot);
    connect(this, &PostGenProcessor::edsCheckFinished, this, &PostGenProcessor::proceedGenerationSlot);
}

PostGenProcessor::~PostGenProcessor()
{
    releaseProcess();
}

void PostGenProcessor::setProject(const QString &outputFolder, const QString &baseName)
{
    outputFolder_ = outputFolder;
    projectBaseName_ = baseName;
}

void PostGenProcessor::say(const QString &text)
{
    if (!quiet_)
        output_.message(text);
}

void PostGenProcessor::run()
{
    if (step_ != Step::Idle)
        return;
    step_ = Step::AfterCommand;
    processExitCode_ = 0;
    startCommand();
    while (step_ != Step::Idle)
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
}

void PostGenProcessor::proceedGenerationSlot()
{
    switch (step_) {
    case Step::Idle:
        break;
    case Step::AfterCommand:
        step_ = Step::AfterEdsCheck;
        if (skipEdsCheck_)
            Q_EMIT edsCheckFinished();
        else
            startEdsCheck();
        break;
    case Step::AfterEdsCheck:
        step_ = Step::End;
        if (!skipLineEndings_)
            convertLineEndings();
        Q_EMIT proceedGeneration();
        break;
    case Step::End:
        sendEndMessage();
        step_ = Step::Idle;
        break;
    }
}

PostGenProcessor::Command PostGenProcessor::configuredCommand() const
{
    if (isOn(database_->getMiscSetting(u"postGenEnabled"_s)))
        return {database_->getMiscSetting(u"postgencmd"_s),
                filledArguments(database_->getMiscSetting(u"postgencmdargs"_s)),
                isOn(database_->getMiscSetting(u"postGenWait"_s))};
    if (isOn(generalSetting(u"postGenEnabled"_s)))
        return {generalSetting(u"postgenerationcommand"_s),
                filledArguments(generalSetting(u"postgenerationcommandarguments"_s)),
                isOn(generalSetting(u"waitPostGen"_s))};
    return {};
}

/// The arguments, split before they are filled: the blanks of a folder do not divide an argument.
QStringList PostGenProcessor::filledArguments(const QString &arguments) const
{
    const QString projectFile = projectBaseName_ + ".ncxp"_L1;
    const std::pair<QLatin1StringView, QString> places[] = {
        {"%P"_L1, outputFolder_ + u'/' + projectFile},
        {"%D"_L1, outputFolder_},
        {"%N"_L1, projectFile},
    };
    QStringList filled = arguments.split(u' ', Qt::SkipEmptyParts);
    for (QString &argument : filled) {
        // Onwards from what was put in, which may look like a place itself.
        for (qsizetype position = argument.indexOf(u'%'); position >= 0; position = argument.indexOf(u'%', position)) {
            const auto place = std::ranges::find_if(
                places, [&](const auto &row) { return QStringView(argument).sliced(position).startsWith(row.first); });
            if (place == std::end(places)) {
                ++position;
                continue;
            }
            argument.replace(position, place->first.size(), place->second);
            position += place->second.size();
        }
    }
    return filled;
}

void PostGenProcessor::startCommand()
{
    const Command command = skipCommand_ ? Command() : configuredCommand();
    const bool started = !command.program.isEmpty() && startProcess(command);
    if (!started || !waitForProcess_)
        Q_EMIT proceedGeneration();
}

bool PostGenProcessor::startProcess(const Command &command)
{
    QDir::setCurrent(outputFolder_);
    if (process_ && process_->state() != QProcess::NotRunning) {
        if (progressHandler_)
            progressHandler_->report(u"Post generation process is already running."_s);
        return false;
    }
    process_ = std::make_unique<QProcess>();
    errorStream_.reset();
    outputStream_.reset();
    waitForProcess_ = command.wait;
    connect(process_.get(), &QProcess::readyReadStandardError, this,
            &PostGenProcessor::postGenProcessReadyReadStandardError);
    connect(process_.get(), &QProcess::readyReadStandardOutput, this,
            &PostGenProcessor::postGenProcessReadyReadStandardOutput);
    connect(process_.get(), &QProcess::finished, this, &PostGenProcessor::postGenProcessFinished);
#ifdef Q_OS_UNIX
    // A command that outlives this program finds nobody to read what it writes. That is no reason to die.
    if (!command.wait)
        process_->setChildProcessModifier([] { std::signal(SIGPIPE, SIG_IGN); });
#endif
    process_->setWorkingDirectory(outputFolder_);
    process_->setStandardInputFile(QProcess::nullDevice());
    process_->start(command.program, command.arguments);
    if (!process_->waitForStarted(startTimeoutMs)) {
        const QString text = u"Could not start post gen process. %1"_s.arg(process_->errorString());
        if (progressHandler_)
            progressHandler_->report(text);
        output_.message(text);
        process_.reset();
        return false;
    }
    if (progressHandler_)
        progressHandler_->processStarted();
    say(u"Post generation process running ... "_s);
    return true;
}

void PostGenProcessor::postGenProcessReadyReadStandardError()
{
    forward(errorStream_, process_->readAllStandardError());
}

void PostGenProcessor::postGenProcessReadyReadStandardOutput()
{
    forward(outputStream_, process_->readAllStandardOutput());
}

void PostGenProcessor::forward(ProcessStream &stream, const QByteArray &bytes)
{
    const QString text = stream.text(bytes);
    if (quiet_ || text.isEmpty())
        return;
    if (stream.takeHeader())
        output_.message(stream.header());
    output_.forwardMessage(u'\t' + text);
}

void PostGenProcessor::postGenProcessFinished(int exitCode, QProcess::ExitStatus exitStatus)
{
    postGenProcessReadyReadStandardError();
    postGenProcessReadyReadStandardOutput();
    if (progressHandler_)
        progressHandler_->processEnded();
    if (!waitForProcess_)
        return;
    // A crash is a failure, whatever code the system reports for it.
    processExitCode_ = exitStatus == QProcess::CrashExit && exitCode == 0 ? -1 : exitCode;
    say(u"Post generation process finished with code %1"_s.arg(processExitCode_));
    Q_EMIT proceedGeneration();
}

void PostGenProcessor::cancelPostGenProcess()
{
    edsLines_.clear();
    if (edsChecker_)
        edsChecker_->cancel();
    if (process_ && process_->state() != QProcess::NotRunning)
        process_->kill();
}

/// Lets go of a command that is still running, which the framework would end together with its object.
void PostGenProcessor::releaseProcess()
{
    if (!process_)
        return;
    process_->disconnect(this);
    if (process_->state() == QProcess::NotRunning)
        return;
    static auto *const released = new std::vector<std::unique_ptr<QProcess>>;
    released->push_back(std::move(process_));
}

void PostGenProcessor::startEdsCheck()
{
    edsLines_.clear();
    if (isOn(checkerSetting(u"checkeds"_s))) {
        edsLines_ = RunContext::ofProject(database_).lines;
        isMultiLine_ = edsLines_.size() > 1;
    }
    checkNextEdsFile();
}

void PostGenProcessor::checkNextEdsFile()
{
    while (!edsLines_.isEmpty()) {
        const quint8 line = edsLines_.takeFirst();
        const QString file = u"%1/%2.eds"_s.arg(outputFolder_, documentName(projectBaseName_, line, isMultiLine_));
        if (!QFileInfo::exists(file)) // a line without an object dictionary has none
            continue;
        // Its end is queued, since the next one takes its place.
        edsChecker_ = std::make_unique<EdsCheckerWrapper>(checkerSetting(u"EDSCheckerPath"_s));
        connect(edsChecker_.get(), &EdsCheckerWrapper::finished, this, &PostGenProcessor::edsCheckerFinished,
                Qt::QueuedConnection);
        if (edsChecker_->start(file)) {
            say(isMultiLine_ ? u"EDS Checker started for line %1"_s.arg(line) : u"EDS Checker started"_s);
            return;
        }
        output_.message(u"Start of EDS Checker failed"_s);
    }
    edsChecker_.reset();
    Q_EMIT edsCheckFinished();
}

void PostGenProcessor::edsCheckerFinished()
{
    output_.message(u"EDS Checker result:\n\n"_s);
    output_.forwardMessage(edsChecker_->output());
    say(u"EDS Checker finished.\n"_s);
    checkNextEdsFile();
}

void PostGenProcessor::convertLineEndings() const
{
    constexpr std::array endings{""_L1, "\r\n"_L1, "\n"_L1, "\r"_L1};
    const auto index = NumberText::decimal(generalSetting(u"line_ending_index"_s)).value_or(0);
    if (index == 0 || index >= endings.size())
        return;
    for (const QLatin1StringView file : convertedFiles)
        Helper::modifyLineEnding(QDir(outputFolder_).filePath(file), endings.at(index));
}

void PostGenProcessor::sendEndMessage()
{
    if (processExitCode_ == 0)
        output_.message(u"Generation completed."_s);
    else
        output_.message(
            u"<b>Warning: Generation completed, but post gen process returned %1.</b>"_s.arg(processExitCode_));
}
