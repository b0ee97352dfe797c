#include "ncx_cli/mcp/mcpmainapp.h"

#include "ncx_cli/mcp/mcpstdinreader.h"
#include "ncx_cli/mcp/resources.h"
#include "ncx_cli/mcp/standardstreams.h"
#include "ncx_cli/mcp/toolcatalogue.h"
#include "store/edition.h"

#include <QCoreApplication>
#include <QDir>
#include <QJsonDocument>

#include <cstdio>

using namespace Qt::StringLiterals;

namespace {

constexpr auto protocolVersion = "2024-11-05"_L1;

constexpr auto instructions =
    "CAN NodeComposer MCP server. Send one request at a time and wait for its response before sending the next one: "
    "all tools work on one shared project database, and generate or import_file may run for minutes.\n"
    "Call open_project before any tool that reads or writes project data. Changes stay in memory until save_project "
    "is called.\n"
    "The reference profiles behind list_profiles, list_profile_indices, get_profile_index and import_profile_indices "
    "are read-only internal CANopen profile databases, not projects: they are addressed by a profile id such as "
    "\"402\" or \"454-2\", they cannot be opened, edited or saved, and single objects are taken out of them with "
    "import_profile_indices.\n"_L1;

Reply initializeReply()
{
    return Reply::result(
        {{u"protocolVersion"_s, protocolVersion},
         {u"capabilities"_s, QJsonObject{{u"tools"_s, QJsonObject()}, {u"resources"_s, QJsonObject()}}},
         {u"serverInfo"_s,
          QJsonObject{{u"name"_s, u"ncx-mcp"_s}, {u"version"_s, QCoreApplication::applicationVersion()}}},
         {u"instructions"_s, instructions}});
}

/// The argument behind an option; empty if either is missing.
QString valueOf(const QStringList &arguments, QLatin1StringView option)
{
    const qsizetype place = arguments.indexOf(option);
    return place < 0 ? QString() : arguments.value(place + 1);
}

} // namespace

MCPMainApp::MCPMainApp(QStringList arguments, QString buildId, QObject *parent)
    : QObject(parent)
    , arguments_(std::move(arguments))
    , buildId_(std::move(buildId))
{
}

MCPMainApp::~MCPMainApp()
{
    if (reader_)
        reader_->wait();
}

void MCPMainApp::start()
{
    if (currentEdition() == Edition::EnergyBus) {
        std::fprintf(stderr, "ncx_cli --mcp is not supported for %s (NEAX) builds.\n",
                     qPrintable(QCoreApplication::applicationName()));
        QCoreApplication::exit(1);
        return;
    }
    // The current folder may be another one later: an open or a command behind a generation changes it.
    if (const QString path = valueOf(arguments_, "-codbpath"_L1); !path.isEmpty())
        session_.setProfilePath(QDir(path).absolutePath());
    reader_ = std::make_unique<MCPStdinReader>();
    session_.setReadingEnabled = [this](bool enabled) { reader_->setReadingEnabled(enabled); };
    connect(reader_.get(), &MCPStdinReader::lineReceived, this, &MCPMainApp::onLineReceived);
    connect(reader_.get(), &QThread::finished, this, &MCPMainApp::onInputEnded);
    reader_->start();
}

void MCPMainApp::onLineReceived(const QByteArray &line)
{
    waiting_.enqueue(line);
    // A tool that runs an event loop lets lines in; they wait until it has answered.
    if (serving_)
        return;
    serving_ = true;
    while (!waiting_.isEmpty()) {
        if (const auto reply = answer(waiting_.dequeue()))
            StandardStreams::writeOutput(*reply); // to a client that has gone there is nothing to say
    }
    serving_ = false;
    if (inputEnded_)
        Q_EMIT finished();
}

void MCPMainApp::onInputEnded()
{
    inputEnded_ = true;
    if (!serving_)
        Q_EMIT finished();
}

std::optional<QByteArray> MCPMainApp::answer(const QByteArray &message)
{
    const QJsonDocument document = QJsonDocument::fromJson(message);
    const QJsonObject request = document.object();
    if (!request.contains("id"_L1)) // a notification, or no object at all
        return {};
    const Reply reply = dispatch(request.value("method"_L1).toString(), request.value("params"_L1).toObject());
    return reply.line(request.value("id"_L1).toInt());
}

Reply MCPMainApp::dispatch(const QString &method, const QJsonObject &params)
{
    if (method == "initialize"_L1)
        return initializeReply();
    if (method == "tools/list"_L1)
        return Reply::result({{u"tools"_s, catalogue().descriptors()}});
    if (method == "tools/call"_L1)
        return callTool(params);
    if (method == "resources/list"_L1)
        return Resources::list(session_);
    if (method == "resources/read"_L1)
        return Resources::read(session_, params.value("uri"_L1).toString());
    return Reply::error(Reply::MethodNotFound, u"Method not found: %1"_s.arg(method));
}

Reply MCPMainApp::callTool(const QJsonObject &params)
{
    const QJsonValue arguments = params.value("arguments"_L1);
    if (!arguments.isUndefined() && !arguments.isObject())
        return Reply::invalidParams(u"Invalid params: \"arguments\" must be an object."_s);
    const QString name = params.value("name"_L1).toString();
    const Tool *tool = catalogue().find(name);
    if (!tool)
        return Reply::error(Reply::MethodNotFound, u"Unknown tool: %1"_s.arg(name));
    if (const auto problem = argumentProblem(arguments.toObject(), tool->required, tool->optional))
        return Reply::invalidParams(*problem);
    return tool->run(session_, arguments.toObject());
}

const ToolCatalogue &MCPMainApp::catalogue()
{
    if (!catalogue_)
        catalogue_ = std::make_unique<ToolCatalogue>();
    return *catalogue_;
}
