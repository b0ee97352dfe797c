#include "mcp/server/resources.h"

#include "mcp/session/projectsession.h"
#include "mcp/tools/dictionaryjson.h"
#include "texttools/numbertext.h"

#include <QJsonDocument>

using namespace Qt::StringLiterals;

namespace {

constexpr auto scheme = "codb://"_L1;

Reply contents(const QString &uri, const QString &text)
{
    const QJsonObject entry{{u"uri"_s, uri}, {u"mimeType"_s, u"application/json"_s}, {u"text"_s, text}};
    return Reply::ofMethod({{u"contents"_s, QJsonArray{entry}}});
}

/// The object that the text names, decimal or with "0x".
std::optional<QJsonObject> objectOf(ObjectDataBase &store, const QString &indexText)
{
    const auto index = NumberText::byPrefix<quint16>(indexText);
    return index ? DictionaryJson::object(store, 0, *index) : std::nullopt;
}

} // namespace

Reply Resources::list(ProjectSession &session)
{
    QJsonArray resources;
    if (session.profilePath().isEmpty())
        return Reply::ofMethod({{u"resources"_s, resources}});
    for (const QString &id : session.profiles().ids()) {
        QJsonObject entry{{u"uri"_s, scheme + id}, {u"name"_s, u"DS-"_s + id}, {u"mimeType"_s, u"application/json"_s}};
        if (const QString description = session.profiles().description(id); !description.isEmpty())
            entry.insert(u"description"_s, description);
        resources.append(entry);
    }
    return Reply::ofMethod({{u"resources"_s, resources}});
}

Reply Resources::read(ProjectSession &session, const QString &uri)
{
    if (!uri.startsWith(scheme))
        return Reply::invalidParams(u"Unsupported resource URI (only codb://... is implemented): %1"_s.arg(uri));
    if (session.profilePath().isEmpty()) {
        return Reply::ofError(Reply::NoProfilePath,
                              u"No codb path configured - drop -codbpath to use the built-in reference profiles"_s);
    }
    const QString place = uri.sliced(scheme.size());
    const qsizetype slash = place.indexOf(u'/');
    const QString id = slash < 0 ? place : place.first(slash);
    ProfileDatabases &profiles = session.profiles();
    const auto store = profiles.load(id);
    if (!store && profiles.filePath(id).isEmpty())
        return Reply::invalidParams(u"Unknown codb resource: %1"_s.arg(uri));
    if (!store)
        return Reply::ofError(Reply::InternalError, profiles.lastError());
    if (slash < 0)
        return contents(uri, DictionaryJson::listing(DictionaryJson::names(*store, 0)));
    const QString indexText = place.sliced(slash + 1);
    if (const auto object = objectOf(*store, indexText))
        return contents(uri, QString::fromUtf8(QJsonDocument(*object).toJson(QJsonDocument::Compact)));
    return Reply::invalidParams(u"Index %1 not found in codb profile %2"_s.arg(indexText, id));
}
