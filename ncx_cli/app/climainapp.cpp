#include "ncx_cli/app/climainapp.h"

#include "ncx_cli/app/clioutputhandler.h"

#include <QCoreApplication>
#include <QDir>

using namespace Qt::StringLiterals;

namespace {

enum ExitCode : qint32
{
    Success = 0,
    NoProject = 2,
    OpenFailed = 3,
    ParameterError = 4,
    ImportFailed = 5,
    CheckFailed = 7,
    FolderNotWritable = 8,
    TemplateNotFound = 9
};

} // namespace

CLIMainApp::CLIMainApp(QStringList arguments, CLIOutputHandler *output, QObject *parent)
    : QObject(parent)
    , arguments_(std::move(arguments))
    , output_(output)
    , handler_(output)
    , options_{
          {u"-dbmod"_s, u"Apply a db modification. Only for internal use."_s},
          {u"-import"_s, u"Sets an importfile. This argument is optional."_s},
          {u"-project"_s, u"Sets the project file to use. This argument is mandatory."_s},
          {u"-s"_s, u"Saves the project file. Could be helpful in combination with import option."_s},
          {u"-save"_s, u"Saves the project file. Could be helpful in combination with import option."_s},
          {u"-stackpath"_s,
           u"Sets the path to the stack. It is required for SRDO generation; otherwise optional."_s},
      }
    , errorTexts_{
          {Success, u"No error"_s},
          {NoProject, u"No project specified."_s},
          {OpenFailed, u"Open project failed."_s},
          {ParameterError, u"Parameter error."_s},
          {ImportFailed, u"Import error."_s},
          {CheckFailed, u"Check of model consistency returns error."_s},
          {FolderNotWritable, u"The output folder is not writeable"_s},
          {TemplateNotFound, u"SRDO template not found."_s},
      }
{
    connect(&handler_, &GeneratorMainHandler::finished, this, &CLIMainApp::generatorFinished, Qt::DirectConnection);
}

void CLIMainApp::start()
{
    if (arguments_.size() < 2) {
        printHelp();
        return endWith(ParameterError);
    }
    if (arguments_.contains("-help"_L1)) {
        printHelp();
        return endWith(Success);
    }
    const QString project = valueOf(u"-project"_s);
    if (project.isNull()) {
        output_->message(u"Project not given."_s);
        printHelp();
        return endWith(NoProject);
    }
    // An open may change the current folder, which the paths of the command line are relative to.
    const QDir folder = QDir::current();
    if (!handler_.openProject(project))
        return endWith(OpenFailed);
    if (const QString path = valueOf(u"-stackpath"_s); !path.isNull())
        handler_.setStackPath(path);
    for (const QString &file : valuesOf(u"-import"_s)) {
        if (!handler_.importFile(folder.absoluteFilePath(file))) {
            output_->message(u"Import failed: %1"_s.arg(file));
            return endWith(ImportFailed);
        }
    }
    if (const QString path = valueOf(u"-dbmod"_s); !path.isNull())
        handler_.applyDbModifier(folder.absoluteFilePath(path));
    handler_.generate(false);
    if (arguments_.contains("-save"_L1) || arguments_.contains("-s"_L1))
        handler_.saveProject();
}

void CLIMainApp::generatorFinished(GeneratorMainHandler::GeneratorResult result)
{
    static const QMap<GeneratorMainHandler::GeneratorResult, qint32> exitCodes{
        {GeneratorMainHandler::GenerationDone, Success},
        {GeneratorMainHandler::CheckFailed, CheckFailed},
        {GeneratorMainHandler::OutputFolderNotWritable, FolderNotWritable},
        {GeneratorMainHandler::TemplateFailure, TemplateNotFound},
    };
    endWith(exitCodes.value(result, exitCode_));
}

void CLIMainApp::endWith(qint32 exitCode)
{
    exitCode_ = exitCode;
    Q_EMIT finished();
}

qint32 CLIMainApp::exitCodeWithMessage()
{
    if (exitCode_ != Success)
        output_->message(u"Error - %1"_s.arg(errorTexts_.value(exitCode_)));
    return exitCode_;
}

void CLIMainApp::printHelp()
{
    output_->printValue(u"--- "_s)
        .printValueAndBlank(QCoreApplication::applicationName())
        .printValueAndBlank(QCoreApplication::applicationVersion())
        .printValue(u" Help ---"_s);
    output_->message(QString());
    for (auto option = options_.cbegin(); option != options_.cend(); ++option)
        output_->printOption(option.key(), option.value());
}

QString CLIMainApp::valueOf(const QString &option) const
{
    const qsizetype position = arguments_.indexOf(option);
    return position < 0 ? QString() : arguments_.value(position + 1);
}

QStringList CLIMainApp::valuesOf(const QString &option) const
{
    QStringList values;
    for (qsizetype position = 0; position + 1 < arguments_.size(); ++position) {
        if (arguments_.at(position) == option)
            values.append(arguments_.at(position + 1));
    }
    return values;
}
