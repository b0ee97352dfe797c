#include "ncx/guide/guide.h"

#include "mcp/server/resources.h"
#include "mcp/server/serversession.h"
#include "ncx/guide/cursor.h"
#include "ncx/guide/documents.h"
#include "ncx/guide/prompts.h"

#include <algorithm>

using namespace Qt::StringLiterals;

Reply Guide::listResources(ServerSession &session, const QJsonObject &params)
{
    QJsonArray entries = Documents::resources();
    const Reply profiles = Resources::list(session.project());
    for (const QJsonValue profile : profiles.result()->value("resources"_L1).toArray())
        entries.append(profile);
    return Cursor::page(entries, u"resources"_s, params);
}

Reply Guide::listResourceTemplates(ServerSession & /*session*/, const QJsonObject &params)
{
    QJsonArray templates = Documents::templates();
    templates.append(QJsonObject{{u"uriTemplate"_s, u"codb://{profile}/{index}"_s},
                                 {u"name"_s, u"profile object"_s},
                                 {u"title"_s, u"An object of a reference profile"_s},
                                 {u"description"_s, u"E.g. codb://402/0x6040"_s},
                                 {u"mimeType"_s, u"application/json"_s}});
    return Cursor::page(templates, u"resourceTemplates"_s, params);
}

Reply Guide::readResource(ServerSession &session, const QJsonObject &params)
{
    const QString uri = params.value("uri"_L1).toString();
    if (uri.startsWith("codb://"_L1))
        return Resources::read(session.project(), uri);
    const auto text = Documents::text(uri);
    if (!text)
        return Reply::ofError(Reply::ResourceNotFound,
                              u"Resource not found: \"%1\". resources/list and resources/templates/list tell which "
                              "there are."_s.arg(uri));
    const QJsonObject entry{{u"uri"_s, uri}, {u"mimeType"_s, u"text/markdown"_s}, {u"text"_s, *text}};
    return Reply::ofMethod({{u"contents"_s, QJsonArray{entry}}});
}

Reply Guide::listPrompts(ServerSession & /*session*/, const QJsonObject &params)
{
    QJsonArray prompts;
    for (const Prompt &prompt : Prompt::all())
        prompts.append(prompt.descriptor());
    return Cursor::page(prompts, u"prompts"_s, params);
}

Reply Guide::getPrompt(ServerSession & /*session*/, const QJsonObject &params)
{
    const QString name = params.value("name"_L1).toString();
    const auto prompts = Prompt::all();
    const auto prompt = std::ranges::find(prompts, name, &Prompt::name);
    if (prompt == prompts.end()) {
        QStringList names;
        for (const Prompt &known : prompts)
            names.append(known.name);
        return Reply::invalidParams(u"Unknown prompt \"%1\", expected one of: %2."_s.arg(name, names.join(", "_L1)));
    }
    const QJsonValue arguments = params.value("arguments"_L1);
    if (!arguments.isUndefined() && !arguments.isObject())
        return Reply::invalidParams(u"Invalid params: \"arguments\" must be an object."_s);
    if (const auto problem = prompt->problem(arguments.toObject()))
        return Reply::invalidParams(*problem);
    const QJsonObject content{{u"type"_s, u"text"_s}, {u"text"_s, prompt->text(arguments.toObject())}};
    return Reply::ofMethod({{u"description"_s, prompt->description},
                            {u"messages"_s, QJsonArray{QJsonObject{{u"role"_s, u"user"_s}, {u"content"_s, content}}}}});
}
