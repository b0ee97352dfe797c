#include "mcp/server/resources.h"
#include "mcp/server/serversession.h"

#include <QCoreApplication>

#include <algorithm>

using namespace Qt::StringLiterals;

Reply Methods::initialize(ServerSession &session, const QJsonObject &params)
{
    const ServerForm &form = session.form();
    const QString wanted = params.value("protocolVersion"_L1).toString();
    const auto known = std::ranges::find(form.revisions, wanted);
    QJsonObject capabilities;
    for (const QLatin1StringView capability : form.capabilities)
        capabilities.insert(capability, QJsonObject());
    return Reply::ofMethod(
        {{u"protocolVersion"_s, known == form.revisions.end() ? form.revisions.front() : *known},
         {u"capabilities"_s, capabilities},
         {u"serverInfo"_s, QJsonObject{{u"name"_s, form.name}, {u"version"_s, QCoreApplication::applicationVersion()}}},
         {u"instructions"_s, form.instructions}});
}

Reply Methods::ping(ServerSession & /*session*/, const QJsonObject & /*params*/)
{
    return Reply::ofMethod({});
}

Reply Methods::listTools(ServerSession &session, const QJsonObject & /*params*/)
{
    return Reply::ofMethod({{u"tools"_s, session.catalogue().descriptors()}});
}

Reply Methods::callTool(ServerSession &session, const QJsonObject &params)
{
    const QJsonValue arguments = params.value("arguments"_L1);
    if (!arguments.isUndefined() && !arguments.isObject())
        return Reply::invalidParams(u"Invalid params: \"arguments\" must be an object."_s);
    const QString name = params.value("name"_L1).toString();
    const Tool *tool = session.catalogue().find(name);
    if (!tool)
        return Reply::ofError(Reply::MethodNotFound, u"Unknown tool: %1"_s.arg(name));
    return session.answers().run(session.project(), *tool, arguments.toObject());
}

Reply Methods::listResources(ServerSession &session, const QJsonObject & /*params*/)
{
    return Resources::list(session.project());
}

Reply Methods::readResource(ServerSession &session, const QJsonObject &params)
{
    return Resources::read(session.project(), params.value("uri"_L1).toString());
}
