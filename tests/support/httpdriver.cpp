#include "support/httpdriver.h"

#include <gtest/gtest.h>

#include <QHostAddress>

using namespace TestSupport;

namespace {

constexpr int patience = 60000; // ms

QByteArray withoutChunks(QByteArray body)
{
    QByteArray whole;
    while (!body.isEmpty()) {
        const qsizetype end = body.indexOf("\r\n");
        const qsizetype size = body.first(std::max<qsizetype>(end, 0)).toLongLong(nullptr, 16);
        if (end < 0 || size == 0)
            break;
        whole += body.sliced(end + 2, size);
        body = body.sliced(end + 2 + size + 2);
    }
    return whole;
}

HttpAnswer answerOf(const QByteArray &bytes)
{
    HttpAnswer answer;
    const qsizetype end = bytes.indexOf("\r\n\r\n");
    if (end < 0)
        return answer;
    for (const QByteArray &line : bytes.first(end).split('\n')) {
        if (line.startsWith("HTTP/1.1 "))
            answer.status = line.sliced(9, 3).toInt();
        else
            answer.headers.insert(line.first(line.indexOf(':')).toLower(),
                                  line.sliced(line.indexOf(':') + 1).trimmed());
    }
    answer.body = bytes.sliced(end + 4);
    if (answer.headers.value("transfer-encoding") == "chunked")
        answer.body = withoutChunks(answer.body);
    return answer;
}

} // namespace

QByteArrayList HttpAnswer::messages() const
{
    if (headers.value("content-type") != "text/event-stream")
        return {body};
    QByteArrayList messages;
    for (const QByteArray &line : body.split('\n')) {
        if (line.startsWith("data: "))
            messages.append(line.sliced(6));
    }
    return messages;
}

HttpDriver::HttpDriver(quint16 port, const QByteArray &token)
    : port_(port)
    , token_(token)
{
}

HttpDriver::Headers HttpDriver::headers() const
{
    Headers headers{{"Host", "127.0.0.1:" + QByteArray::number(port_)},
                    {"Authorization", "Bearer " + token_},
                    {"Content-Type", "application/json"},
                    {"Accept", "application/json, text/event-stream"},
                    {"MCP-Protocol-Version", "2025-11-25"}};
    if (!session.isEmpty())
        headers.append({"Mcp-Session-Id", session});
    return headers;
}

void HttpDriver::write(QTcpSocket &socket, const QByteArray &method, const QByteArray &path, const Headers &headers,
                       const QByteArray &body)
{
    QByteArray bytes = method + ' ' + path + " HTTP/1.1\r\n";
    for (const auto &[name, value] : headers)
        bytes += name + ": " + value + "\r\n";
    if (!body.isEmpty())
        bytes += "Content-Length: " + QByteArray::number(body.size()) + "\r\n";
    socket.write(bytes + "\r\n" + body);
    socket.waitForBytesWritten(patience);
}

HttpAnswer HttpDriver::send(const QByteArray &method, const QByteArray &path, const Headers &headers,
                            const QByteArray &body)
{
    QTcpSocket socket;
    socket.connectToHost(QHostAddress::LocalHost, port_);
    EXPECT_TRUE(socket.waitForConnected(patience));
    write(socket, method, path, headers, body);
    while (socket.state() == QTcpSocket::ConnectedState && socket.waitForReadyRead(patience)) {
    }
    return answerOf(socket.readAll());
}

HttpAnswer HttpDriver::initialize()
{
    session.clear();
    HttpAnswer answer =
        post(R"({"jsonrpc":"2.0","id":0,"method":"initialize","params":{"protocolVersion":"2025-11-25"}})");
    session = answer.headers.value("mcp-session-id");
    return answer;
}

void HttpDriver::postAndVanish(const QByteArray &message, const std::function<void()> &aWhile)
{
    QTcpSocket socket;
    socket.connectToHost(QHostAddress::LocalHost, port_);
    EXPECT_TRUE(socket.waitForConnected(patience));
    write(socket, "POST", "/mcp", headers(), message);
    aWhile();
    socket.abort();
}
