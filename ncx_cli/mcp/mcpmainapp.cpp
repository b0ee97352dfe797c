#include "ncx_cli/mcp/mcpmainapp.h"

#include "mcp/tools/toolfamilies.h"
#include "store/edition.h"

#include <QCoreApplication>
#include <QDir>

#include <cstdio>

using namespace Qt::StringLiterals;

namespace {

constexpr auto instructions =
    "CAN NodeComposer MCP server. Send one request at a time and wait for its response before sending the next one: "
    "all tools work on one shared project database, and generate or import_file may run for minutes.\n"
    "Call open_project before any tool that reads or writes project data. Changes stay in memory until save_project "
    "is called.\n"
    "The reference profiles behind list_profiles, list_profile_indices, get_profile_index and import_profile_indices "
    "are read-only internal CANopen profile databases, not projects: they are addressed by a profile id such as "
    "\"402\" or \"454-2\", they cannot be opened, edited or saved, and single objects are taken out of them with "
    "import_profile_indices.\n"_L1;

constexpr QLatin1StringView revisions[] = {"2024-11-05"_L1};
constexpr QLatin1StringView capabilities[] = {"tools"_L1, "resources"_L1};

constexpr Method methods[] = {
    {"initialize"_L1, Methods::initialize},       {"tools/list"_L1, Methods::listTools},
    {"tools/call"_L1, Methods::callTool},         {"resources/list"_L1, Methods::listResources},
    {"resources/read"_L1, Methods::readResource},
};

constexpr ToolFamily families[] = {
    ToolFamilies::project,   ToolFamilies::lines,           ToolFamilies::dictionary,
    ToolFamilies::lineEdits, ToolFamilies::dictionaryEdits, ToolFamilies::profiles,
    ToolFamilies::j1939,     ToolFamilies::rawCan,          ToolFamilies::settings,
};

const ServerForm serverForm{
    .name = "ncx-mcp"_L1,
    .instructions = instructions,
    .revisions = revisions,
    .capabilities = capabilities,
    .methods = methods,
    .families = families,
    .answers = AnswerForm::plain,
    .makeProject =
        [] {
            auto project = std::make_unique<ProjectSession>();
            project->handler();
            return project;
        },
};

/// The argument behind an option; empty if either is missing.
QString valueOf(const QStringList &arguments, QLatin1StringView option)
{
    const qsizetype place = arguments.indexOf(option);
    return place < 0 ? QString() : arguments.value(place + 1);
}

} // namespace

const ServerForm &MCPMainApp::form()
{
    return serverForm;
}

MCPMainApp::MCPMainApp(QStringList arguments, QString buildId, QObject *parent)
    : QObject(parent)
    , arguments_(std::move(arguments))
    , buildId_(std::move(buildId))
    , server_(serverForm)
{
    connect(&server_, &StreamServer::finished, this, &MCPMainApp::finished);
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
        session().setProfilePath(QDir(path).absolutePath());
    server_.start();
}
