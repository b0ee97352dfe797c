// The module that listens. Everything that the library of HTTP brings stays in this file.

#include "mcp/http/httplistener.h"

#include <httplib.h>

#include <thread>

namespace {

constexpr size_t threads = 32; ///< as many requests are under way at a time
constexpr time_t readSeconds = 10;
constexpr time_t writeSeconds = 30;
constexpr time_t firstByteSeconds = 2;

HttpRequest requestOf(const httplib::Request &from)
{
    HttpRequest request;
    request.method = QByteArray::fromStdString(from.method);
    request.path = QByteArray::fromStdString(from.path);
    for (const auto &[name, value] : from.headers)
        request.headers.insert(QByteArray::fromStdString(name).toLower(), QByteArray::fromStdString(value));
    return request;
}

void send(const HttpResponse &response, httplib::Response &to)
{
    to.status = response.status;
    for (auto header = response.headers.begin(); header != response.headers.end(); ++header)
        to.set_header(header.key().toStdString(), header.value().toStdString());
    const std::string type = response.headers.value("Content-Type").toStdString();
    to.headers.erase("Content-Type"); // comes back with the contents
    if (!response.nextPart) {
        if (!type.empty())
            to.set_content(response.body.toStdString(), type);
        return;
    }
    to.set_chunked_content_provider(type, [next = response.nextPart](size_t, httplib::DataSink &sink) {
        const auto part = next();
        if (!part) {
            sink.done();
            return true;
        }
        return sink.write(part->constData(), static_cast<size_t>(part->size()));
    });
}

class LibraryListener : public HttpListener
{
public:
    LibraryListener();
    ~LibraryListener() override { end(); }
    Q_DISABLE_COPY_MOVE(LibraryListener)

    std::optional<quint16> open(quint16 port) override;
    void start(Handlers handlers, qsizetype maxBody) override;
    void close() override { end(); }

private:
    void end();
    void post(const httplib::Request &from, httplib::Response &to, const httplib::ContentReader &read) const;

    httplib::Server server_;
    Handlers handlers_;
    size_t maxBody_ = 0;
    std::thread listening_;
};

LibraryListener::LibraryListener()
{
    server_.new_task_queue = [] { return new httplib::ThreadPool(threads); };
    // One request a connection: on one machine a connection costs nothing, an idle one would hold a thread.
    server_.set_keep_alive_max_count(1);
    server_.set_keep_alive_timeout(firstByteSeconds);
    server_.set_read_timeout(readSeconds);
    server_.set_write_timeout(writeSeconds);
    server_.set_tcp_nodelay(true);
    // A port belongs to one process; what a former one has left of its connections does not matter.
    server_.set_socket_options([](socket_t socket) {
        const int yes = 1;
        setsockopt(socket, SOL_SOCKET, SO_REUSEADDR, &yes, sizeof yes);
    });
}

std::optional<quint16> LibraryListener::open(quint16 port)
{
    constexpr auto address = "127.0.0.1";
    if (port != 0)
        return server_.bind_to_port(address, port) ? std::optional(port) : std::nullopt;
    const int taken = server_.bind_to_any_port(address);
    return taken > 0 ? std::optional(static_cast<quint16>(taken)) : std::nullopt;
}

void LibraryListener::start(Handlers handlers, qsizetype maxBody)
{
    handlers_ = std::move(handlers);
    maxBody_ = static_cast<size_t>(maxBody);
    server_.set_payload_max_length(maxBody_);
    server_.Post(".*", [this](const httplib::Request &from, httplib::Response &to, const httplib::ContentReader &read) {
        post(from, to, read);
    });
    server_.set_pre_routing_handler([this](const httplib::Request &from, httplib::Response &to) {
        if (from.method == "POST")
            return httplib::Server::HandlerResponse::Unhandled;
        const HttpRequest request = requestOf(from);
        const auto refusal = handlers_.refusal(request);
        send(refusal ? *refusal : handlers_.answer(request), to);
        return httplib::Server::HandlerResponse::Handled;
    });
    listening_ = std::thread([this] { server_.listen_after_bind(); });
    while (!server_.is_running()) // one that does not listen yet hears no end
        std::this_thread::yield();
}

void LibraryListener::post(const httplib::Request &from, httplib::Response &to,
                           const httplib::ContentReader &read) const
{
    HttpRequest request = requestOf(from);
    if (const auto refusal = handlers_.refusal(request)) {
        // A client that is still sending when its connection ends hears nothing of the reason. Forms are another
        // matter, which the library would take apart.
        if (from.has_header("Content-Length") && !from.is_multipart_form_data())
            read([](const char *, size_t) { return true; });
        send(*refusal, to);
        return;
    }
    const bool isWhole = read([&](const char *bytes, size_t size) {
        request.body.append(bytes, static_cast<qsizetype>(size));
        return static_cast<size_t>(request.body.size()) <= maxBody_;
    });
    // One that is too long says so; what else ends early has nobody who listens any more.
    if (isWhole || static_cast<size_t>(request.body.size()) > maxBody_)
        send(handlers_.answer(request), to);
}

void LibraryListener::end()
{
    if (!listening_.joinable())
        return;
    server_.stop();
    listening_.join();
}

} // namespace

extern "C" Q_DECL_EXPORT HttpListener *ncxMakeHttpListener()
{
    return new LibraryListener;
}
