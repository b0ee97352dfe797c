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
    beginRequest(request);
    const Reply reply = dispatch(request.value("method"_L1).toString(), request.value("params"_L1).toObject());
    underWay_ = QJsonValue::Undefined;
    // To a client that has taken it back nothing is said.
    if (form_.hearsCancellation && project_->isCancelled())
        return {};
    return answers_.line(reply, request.value("id"_L1));
}

void ServerSession::beginRequest(const QJsonObject &request)
{
    underWay_ = request.value("id"_L1);
    project_->setCancelled(false);
    const QJsonValue token =
        request.value("params"_L1).toObject().value("_meta"_L1).toObject().value("progressToken"_L1);
    if (token.isUndefined()) {
        project_->tellProgress = [](int, int, const QString &) {};
        return;
    }
    project_->tellProgress = [this, token](int done, int total, const QString &message) {
        QJsonObject params{{u"progressToken"_s, token}, {u"progress"_s, done}, {u"message"_s, message}};
        if (total > 0)
            params.insert(u"total"_s, total);
        notify_(QJsonDocument(QJsonObject{{u"jsonrpc"_s, u"2.0"_s},
                                          {u"method"_s, u"notifications/progress"_s},
                                          {u"params"_s, params}})
                    .toJson(QJsonDocument::Compact) +
                '\n');
    };
}

std::optional<QJsonValue> ServerSession::cancelledBy(const QByteArray &message) const
{
    if (!form_.hearsCancellation || !message.contains("notifications/cancelled"))
        return {};
    const QJsonObject object = QJsonDocument::fromJson(message).object();
    if (object.value("method"_L1) != "notifications/cancelled"_L1)
        return {};
    return object.value("params"_L1).toObject().value("requestId"_L1);
}

void ServerSession::cancel(const QJsonValue &id)
{
    if (!underWay_.isUndefined() && underWay_ == id)
        project_->setCancelled(true);
}

bool ServerSession::isRequest(const QByteArray &message, const QJsonValue &id)
{
    const QJsonObject object = QJsonDocument::fromJson(message).object();
    return object.contains("id"_L1) && object.value("id"_L1) == id;
}

Reply ServerSession::dispatch(const QString &method, const QJsonObject &params)
{
    const auto found = std::ranges::find(form_.methods, method, &Method::name);
    if (found == form_.methods.end())
        return Reply::ofError(Reply::MethodNotFound, u"Method not found: %1"_s.arg(method));
    return found->answer(*this, params);
}
