#include "mcp/server/serversession.h"

#include <QJsonDocument>

#include <algorithm>

using namespace Qt::StringLiterals;

ServerSession::ServerSession(const ServerForm &form)
    : form_(form)
    , answers_(form.answers())
    , project_(form.makeProject())
{
}

ServerSession::~ServerSession() = default;

const ToolCatalogue &ServerSession::catalogue()
{
    if (!catalogue_)
        catalogue_ = std::make_unique<ToolCatalogue>(form_.families, answers_);
    return *catalogue_;
}

std::optional<QByteArray> ServerSession::answer(const QByteArray &message)
{
    const QJsonObject request = QJsonDocument::fromJson(message).object();
    if (!request.contains("id"_L1)) // a notification, or no object at all
        return {};
    const Reply reply = dispatch(request.value("method"_L1).toString(), request.value("params"_L1).toObject());
    return answers_.line(reply, request.value("id"_L1));
}

Reply ServerSession::dispatch(const QString &method, const QJsonObject &params)
{
    const auto found = std::ranges::find(form_.methods, method, &Method::name);
    if (found == form_.methods.end())
        return Reply::ofError(Reply::MethodNotFound, u"Method not found: %1"_s.arg(method));
    return found->answer(*this, params);
}
