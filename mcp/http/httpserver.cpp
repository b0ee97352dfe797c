#include "mcp/http/httpserver.h"

#include "mcp/server/serversession.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QJsonDocument>
#include <QLibrary>
#include <QRandomGenerator>

#include <algorithm>
#include <array>

using namespace Qt::StringLiterals;

/// A message as a client has sent it, or its wish to end.
struct HttpServer::Message
{
    enum class Kind
    {
        Initialize,
        Request,
        NoRequest, ///< a notification, or a reply to what the server has never asked
        End
    };

    Kind kind = Kind::End;
    QByteArray session; ///< of an initialization the new one
    QByteArray body = {};
};

struct HttpServer::Client
{
    explicit Client(const ServerForm &form)
        : session(form)
    {
        lastMessage.start();
    }

    /// Each message has a connection of its own, so that one may overtake another: false for a request that was taken
    /// back before it came.
    bool isWanted(const Message &message);

    ServerSession session;
    QElapsedTimer lastMessage;

private:
    QList<QJsonValue> recent_; ///< ids of requests
    QList<QJsonValue> early_;  ///< ids that were taken back, of no recent request
};

namespace {

QString modulePath()
{
    return QCoreApplication::applicationDirPath() + u"/ncx_http.so"_s;
}

void keep(QList<QJsonValue> &ids, const QJsonValue &id)
{
    constexpr qsizetype most = 64;
    ids.append(id);
    if (ids.size() > most)
        ids.removeFirst();
}

} // namespace

bool HttpServer::Client::isWanted(const Message &message)
{
    if (const auto cancelled = session.cancelledBy(message.body); cancelled && !recent_.contains(*cancelled))
        keep(early_, *cancelled);
    if (message.kind != Message::Kind::Request)
        return true;
    const QJsonValue id = QJsonDocument::fromJson(message.body).object().value("id"_L1);
    keep(recent_, id);
    return !early_.removeOne(id);
}

HttpServer::HttpServer(const ServerForm &form, const HttpLimits &limits, QObject *parent)
    : QObject(parent)
    , form_(form)
    , limits_(limits)
{
    constexpr int looksPerIdle = 8;
    connect(&idleTimer_, &QTimer::timeout, this, &HttpServer::endIdleSessions);
    idleTimer_.start(limits.idle / looksPerIdle);
}

HttpServer::~HttpServer()
{
    {
        const QMutexLocker locker(&closing_);
        isClosed_ = true;
    }
    // The threads of the listener wait for what is dropped here.
    QCoreApplication::removePostedEvents(this);
    for (const auto &[id, client] : clients_)
        queue_.forget(client->session);
    if (listener_)
        listener_->close();
}

QByteArray HttpServer::secret()
{
    std::array<quint32, 8> words{};
    QRandomGenerator::system()->fillRange(words.data(), words.size());
    return QByteArray(reinterpret_cast<const char *>(words.data()), sizeof words)
        .toBase64(QByteArray::Base64UrlEncoding | QByteArray::OmitTrailingEquals);
}

QString HttpServer::start(quint16 port, const QByteArray &token)
{
    const auto make = reinterpret_cast<MakeHttpListener>(QLibrary::resolve(modulePath(), makeHttpListenerName));
    if (!make)
        return u"This installation has no %1, which HTTP needs: install the package as a whole."_s.arg(modulePath());
    listener_.reset(make());
    const auto taken = listener_->open(port);
    if (!taken) {
        return u"Port %1 of 127.0.0.1 cannot be taken: another program has it, or the system keeps it. Choose another "
               u"one, "
               "or 0 for a free one."_s.arg(port);
    }
    port_ = *taken;
    guard_ = std::make_unique<HttpGuard>(token, port_, form_.revisions, limits_.maxBody);
    listener_->start({.refusal = [this](const HttpRequest &request) { return guard_->refusal(request); },
                      .answer = [this](const HttpRequest &request) { return answer(request); }},
                     limits_.maxBody);
    return {};
}

/// In a thread of the listener.
HttpResponse HttpServer::answer(const HttpRequest &request)
{
    Message message{.session = request.header("mcp-session-id")};
    if (request.method == "DELETE")
        return handOver(message);
    if (auto refusal = guard_->bodyRefusal(request.body))
        return *refusal;
    message.body = request.body;
    const QJsonObject object = QJsonDocument::fromJson(request.body).object();
    const bool isRequest = object.contains("id"_L1) && object.contains("method"_L1);
    message.kind = isRequest ? Message::Kind::Request : Message::Kind::NoRequest;
    if (!isRequest || object.value("method"_L1) != "initialize"_L1)
        return handOver(message);
    if (!message.session.isEmpty()) {
        return HttpGuard::refuse(400, u"This session is initialized; send initialize without Mcp-Session-Id to begin "
                                      "another one."_s);
    }
    message.kind = Message::Kind::Initialize;
    message.session = secret();
    HttpResponse response = handOver(message);
    if (response.status == 200)
        response.headers.insert("Mcp-Session-Id", message.session);
    return response;
}

HttpResponse HttpServer::handOver(const Message &message)
{
    const auto exchange = std::make_shared<Exchange>(limits_.silence);
    auto open = std::make_shared<OpenExchange>(exchange);
    {
        const QMutexLocker locker(&closing_);
        if (isClosed_)
            return HttpGuard::refuse(503, u"The server ends."_s);
        QMetaObject::invokeMethod(
            this, [this, message, open] { receive(message, open); }, Qt::QueuedConnection);
    }
    open.reset();
    return Exchange::answer(exchange,
                            message.kind == Message::Kind::Initialize || message.kind == Message::Kind::Request);
}

void HttpServer::receive(const Message &message, const std::shared_ptr<OpenExchange> &open)
{
    Client *client = clientOf(message, open);
    if (!client)
        return;
    if (message.kind == Message::Kind::End) {
        endSession(message.session);
        (*open)->refuse({.status = 204});
    } else {
        (*open)->accept();
        client->lastMessage.start();
        if (!client->isWanted(message))
            return;
        queue_.serve(
            client->session, message.body,
            [this, open, id = message.session](const QByteArray &reply) {
                (*open)->reply(reply);
                if (const auto own = clients_.find(id); own != clients_.end())
                    own->second->lastMessage.start();
            },
            [exchange = open->shared()](const QByteArray &told) { exchange->notify(told); });
    }
    afterServing();
}

/// The client of a message, which may be a new one. Null for none, and then the exchange has been told why.
HttpServer::Client *HttpServer::clientOf(const Message &message, const std::shared_ptr<OpenExchange> &open)
{
    if (isClosed_) {
        (*open)->refuse(HttpGuard::refuse(503, u"The server ends."_s));
        return nullptr;
    }
    if (message.kind == Message::Kind::Initialize) {
        endIdleSessions();
        if (static_cast<qsizetype>(clients_.size()) >= limits_.maxSessions) {
            (*open)->refuse(HttpGuard::refuse(
                503, u"There are %1 sessions already: end one with DELETE."_s.arg(limits_.maxSessions)));
            return nullptr;
        }
        return clients_.emplace(message.session, std::make_unique<Client>(form_)).first->second.get();
    }
    if (message.session.isEmpty()) {
        (*open)->refuse(HttpGuard::refuse(400, u"Mcp-Session-Id is missing: the answer to initialize has it."_s));
        return nullptr;
    }
    const auto client = clients_.find(message.session);
    if (client != clients_.end())
        return client->second.get();
    (*open)->refuse(HttpGuard::refuse(404, u"There is no such session, or it has ended: begin another one with "
                                           "initialize."_s));
    return nullptr;
}

void HttpServer::endSession(const QByteArray &id)
{
    const auto client = clients_.find(id);
    queue_.forget(client->second->session);
    client->second->session.project().setCancelled(true);
    ended_.push_back(std::move(client->second));
    clients_.erase(client);
}

void HttpServer::endIdleSessions()
{
    // Between requests nothing waits: whoever is silent now wants nothing.
    if (queue_.isServing())
        return;
    QByteArrayList idle;
    for (const auto &[id, client] : clients_) {
        if (client->lastMessage.hasExpired(limits_.idle.count()))
            idle.append(id);
    }
    std::ranges::for_each(idle, [this](const QByteArray &id) { endSession(id); });
    ended_.clear();
}

void HttpServer::end()
{
    {
        const QMutexLocker locker(&closing_);
        isClosed_ = true;
    }
    while (!clients_.empty())
        endSession(clients_.begin()->first);
    afterServing();
}

void HttpServer::afterServing()
{
    if (queue_.isServing())
        return;
    ended_.clear();
    if (isClosed_)
        Q_EMIT finished();
}
