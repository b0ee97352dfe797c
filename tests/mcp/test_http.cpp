#include "mcp/http/httpserver.h"
#include "mcp/server/serversession.h"
#include "support/httpdriver.h"

#include <gtest/gtest.h>

#include <QEventLoop>
#include <QThread>
#include <QTimer>

#include <atomic>

using namespace Qt::StringLiterals;
using namespace TestSupport;
using namespace std::chrono_literals;

// The transport with a server of a few methods of its own.

namespace {

const QByteArray token = "a-token-of-the-test";

void turnEvents(int ms)
{
    QEventLoop loop;
    QTimer::singleShot(ms, &loop, &QEventLoop::quit);
    loop.exec();
}

std::atomic<bool> isWorking = false; ///< a call of `work` is under way

void waitForWork()
{
    while (!isWorking)
        QThread::msleep(1);
}

/// Adds to the session's number, which stands in for a project: for the next request of it to see.
Reply add(ServerSession &session, const QJsonObject &params)
{
    QObject &project = session.project();
    const int number = project.property("number").toInt() + params.value("number"_L1).toInt();
    project.setProperty("number", number);
    return Reply::ofMethod({{u"number"_s, number}});
}

/// Goes on for a while, tells of it, and lets other messages in meanwhile; what is taken back does not count.
Reply work(ServerSession &session, const QJsonObject &params)
{
    isWorking = true;
    for (int ms = params.value("ms"_L1).toInt(); ms > 0 && !session.project().isCancelled(); ms -= 10) {
        session.project().tellProgress(1, 2, u"working"_s);
        turnEvents(10);
    }
    isWorking = false;
    return session.project().isCancelled() ? Reply::ofMethod({}) : add(session, {{u"number"_s, 1000}});
}

constexpr QLatin1StringView revisions[] = {"2025-11-25"_L1, "2025-06-18"_L1};
constexpr Method methods[] = {{"initialize"_L1, Methods::initialize}, {"add"_L1, add}, {"work"_L1, work}};

QByteArray call(const QByteArray &method, const QByteArray &params = "{}", int id = 1)
{
    return R"({"jsonrpc":"2.0","id":)" + QByteArray::number(id) + R"(,"method":")" + method + R"(","params":)" +
           params + "}";
}

QByteArray number(int number)
{
    return R"({"id":1,"jsonrpc":"2.0","result":{"number":)" + QByteArray::number(number) + "}}";
}

class Http : public testing::Test
{
protected:
    /// Serves while these clients run, each in a thread of its own.
    void serve(const std::vector<std::function<void(HttpDriver &)>> &clients)
    {
        HttpServer server(form_, limits_);
        ASSERT_EQ(server.start(0, token), QString());
        QEventLoop loop;
        QObject::connect(&server, &HttpServer::finished, &loop, &QEventLoop::quit);
        std::vector<std::unique_ptr<QThread>> threads;
        size_t running = clients.size();
        for (const auto &client : clients) {
            threads.emplace_back(QThread::create([&client, port = server.port()] {
                HttpDriver driver(port, token);
                client(driver);
            }));
            QObject::connect(threads.back().get(), &QThread::finished, &server, [&] {
                if (--running == 0)
                    server.end();
            });
            threads.back()->start();
        }
        loop.exec();
        for (const auto &thread : threads)
            thread->wait();
    }

    ServerForm form_{.name = "test"_L1,
                     .instructions = {},
                     .revisions = revisions,
                     .capabilities = {},
                     .methods = methods,
                     .families = {},
                     .answers = AnswerForm::plain,
                     .makeProject = [] { return std::make_unique<ProjectSession>(); },
                     .hearsCancellation = true};
    HttpLimits limits_{.maxBody = 1000, .maxSessions = 3};
};

/// A good request with one thing that is not.
struct Wrong
{
    const char *name;
    int status;
    const char *said; ///< words of the answer
    QByteArray header = {};
    QByteArray value = {}; ///< of the header; null for a header that is left out
    QByteArray method = "POST";
    QByteArray path = "/mcp";
    QByteArray body = call("add");
};

void PrintTo(const Wrong &wrong, std::ostream *out)
{
    *out << wrong.name;
}

const QByteArray port = "PORT";

const Wrong wrongs[] = {
    {"NoToken", 401, "Authorization: Bearer", "Authorization"},
    {"AnotherToken", 401, "not the token", "Authorization", "Bearer a-token-of-the-tesT"},
    {"BeginOfToken", 401, "not the token", "Authorization", "Bearer a-token"},
    {"AnotherScheme", 401, "not the token", "Authorization", "Basic a-token-of-the-test"},
    {"NoHost", 403, "Host has to be", "Host"},
    {"AnotherHost", 403, "Host has to be", "Host", "rebound.example:PORT"},
    {"AnotherPort", 403, "Host has to be", "Host", "localhost:1"},
    {"AnotherOrigin", 403, "Origin", "Origin", "https://page.example"},
    {"OriginThatBeginsWell", 403, "Origin", "Origin", "http://localhost.page.example"},
    {"OriginOfAFile", 403, "Origin", "Origin", "null"},
    {"AnotherPath", 404, "/mcp", {}, {}, "POST", "/"},
    {"Stream", 405, "POST", {}, {}, "GET"},
    {"AnotherMethod", 405, "POST", {}, {}, "PUT"},
    {"AnotherRevision", 400, "2025-11-25, 2025-06-18", "MCP-Protocol-Version", "1999-01-01"},
    {"AnotherType", 415, "application/json", "Content-Type", "text/plain"},
    {"AForm", 415, "application/json", "Content-Type", "multipart/form-data; boundary=x"},
    {"Compressed", 415, "compressed", "Content-Encoding", "gzip"},
    {"NoStreams", 406, "text/event-stream", "Accept", "application/json"},
    {"NoLength", 411, "Content-Length", {}, {}, "POST", "/mcp", ""},
    {"TooLong", 413, "1000 bytes", {}, {}, "POST", "/mcp", QByteArray(1001, ' ')},
    {"NoJson", 400, "no JSON", {}, {}, "POST", "/mcp", "{"},
    {"Batch", 400, "batch", {}, {}, "POST", "/mcp", "[" + call("add") + "]"},
    {"NoMessage", 400, "JSON-RPC", {}, {}, "POST", "/mcp", R"({"jsonrpc":"2.0","id":1})"},
    {"NoId", 400, "JSON-RPC", {}, {}, "POST", "/mcp", R"({"jsonrpc":"2.0","id":null,"method":"add"})"},
    {"NoSession", 400, "Mcp-Session-Id", "Mcp-Session-Id"},
    {"AnotherSession", 404, "initialize", "Mcp-Session-Id", "none"},
    {"SessionTwice", 400, "initialized", {}, {}, "POST", "/mcp", call("initialize")},
    {"EndOfNoSession", 400, "Mcp-Session-Id", "Mcp-Session-Id", {}, "DELETE"},
    {"EndOfAnotherSession", 404, "initialize", "Mcp-Session-Id", "none", "DELETE"},
};

class HttpRefusals : public Http, public testing::WithParamInterface<Wrong>
{
};

TEST_P(HttpRefusals, SayWhatToDoAndChangeNothing)
{
    const Wrong &wrong = GetParam();
    serve({[&](HttpDriver &client) {
        EXPECT_EQ(client.initialize().status, 200);
        HttpDriver::Headers headers = client.headers();
        const QByteArray ownPort = headers.first().second.split(':').last();
        headers.removeIf([&](const auto &header) { return header.first == wrong.header; });
        if (!wrong.value.isNull())
            headers.append({wrong.header, QByteArray(wrong.value).replace(port, ownPort)});
        const HttpAnswer answer = client.send(wrong.method, wrong.path, headers, wrong.body);
        EXPECT_EQ(answer.status, wrong.status);
        EXPECT_TRUE(answer.body.contains(wrong.said)) << answer.body.constData();
        EXPECT_EQ(answer.headers.contains("www-authenticate"), wrong.status == 401);
        EXPECT_EQ(answer.headers.contains("allow"), wrong.status == 405);
        EXPECT_EQ(client.post(call("add")).body, number(0));
    }});
}

INSTANTIATE_TEST_SUITE_P(Requests, HttpRefusals, testing::ValuesIn(wrongs),
                         [](const auto &wrong) { return wrong.param.name; });

TEST_F(Http, TakesWhatClientsOfThisMachineSend)
{
    serve({[](HttpDriver &client) {
        client.initialize();
        HttpDriver::Headers headers = client.headers();
        headers[0].second.replace("127.0.0.1", "LocalHost");
        headers[1].second.replace("Bearer", "bearer");
        headers[2].second = "application/json; charset=utf-8";
        headers[3].second = "text/*;q=0.5, */*;q=0.1";
        headers[4].second = "2025-06-18";
        headers.emplaceBack("Origin", "http://localhost:6274");
        EXPECT_EQ(client.send("POST", "/mcp", headers, call("add")).body, number(0));
        EXPECT_EQ(client.post(R"({"jsonrpc":"2.0","method":"notifications/initialized"})").status, 202);
        EXPECT_EQ(client.post(R"({"jsonrpc":"2.0","id":1,"result":{}})").status, 202);
        EXPECT_EQ(client.post(call("none")).messages().value(0).count("Method not found"), 1);
        EXPECT_EQ(client.endSession().status, 204);
        EXPECT_EQ(client.post(call("add")).status, 404);
    }});
}

TEST_F(Http, ABodyWithoutALengthHasABoundToo)
{
    serve({[](HttpDriver &client) {
        client.initialize();
        HttpDriver::Headers headers = client.headers();
        headers.emplaceBack("Transfer-Encoding", "chunked");
        const auto chunked = [&](int size) {
            const QByteArray body = call("add").leftJustified(size);
            HttpDriver::Headers own = headers;
            // The chunks stand where the body of a request would.
            own.emplaceBack("X", "\r\n\r\n" + QByteArray::number(size, 16) + "\r\n" + body + "\r\n0");
            return client.send("POST", "/mcp", own);
        };
        EXPECT_EQ(chunked(1000).body, number(0));
        EXPECT_EQ(chunked(1001).status, 413);
    }});
}

TEST_F(Http, SessionsAreApartAndBounded)
{
    const auto count = [](HttpDriver &client) {
        client.initialize();
        for (int i = 1; i <= 20; ++i)
            EXPECT_EQ(client.post(call("add", R"({"number":1})")).body, number(i));
    };
    serve({count, count, [](HttpDriver &client) {
               client.initialize();
               std::ignore = client.post(call("work", R"({"ms":50})"));
           }});
    serve({[](HttpDriver &client) {
        for (int i = 0; i < 3; ++i)
            EXPECT_EQ(client.initialize().status, 200);
        const QByteArray last = client.session;
        EXPECT_EQ(client.initialize().status, 503);
        client.session = last;
        EXPECT_EQ(client.endSession().status, 204);
        EXPECT_EQ(client.initialize().status, 200);
    }});
}

TEST_F(Http, IdleSessionsEnd)
{
    limits_.idle = 50ms;
    serve({[](HttpDriver &client) {
        HttpAnswer answer;
        do { // where the machine is busy, one may have ended before its first message comes
            client.initialize();
            answer = client.post(call("work", R"({"ms":150})"));
        } while (answer.status == 404);
        EXPECT_EQ(answer.body, number(1000)) << "a long request is not idle";
        while (client.post(call("add")).status == 200)
            QThread::msleep(80);
        EXPECT_EQ(client.post(call("add")).status, 404);
    }});
}

TEST_F(Http, AnswersThatTakeTimeAreStreams)
{
    limits_.silence = 20ms;
    serve({[](HttpDriver &client) {
        client.initialize();
        HttpAnswer answer;
        int calls = 0;
        do { // the thread that waits may come too late to see the silence
            answer = client.post(call("work", R"({"ms":100})"));
            EXPECT_EQ(answer.messages(), QByteArrayList{number(++calls * 1000)});
        } while (!answer.body.startsWith(":\n\n"));
        answer = client.post(call("work", R"({"ms":20,"_meta":{"progressToken":"t"}})"));
        ASSERT_EQ(answer.messages().size(), 3);
        EXPECT_TRUE(answer.messages().first().contains(R"("progressToken":"t")"));
        EXPECT_EQ(answer.messages().last(), number(++calls * 1000));
        // The next one has asked for nothing of that.
        EXPECT_EQ(client.post(call("work", R"({"ms":1})")).messages().size(), 1);
    }});
}

TEST_F(Http, WhatIsTakenBackGetsNoReply)
{
    QByteArray session;
    std::atomic<bool> waiterIsAnswered = false;
    std::atomic<bool> workerIsAnswered = false;
    serve({[&](HttpDriver &client) {
               client.initialize();
               session = client.session;
               const HttpAnswer answer = client.post(call("work", R"({"ms":600000})"));
               workerIsAnswered = true;
               EXPECT_EQ(answer.status, 200);
               EXPECT_EQ(answer.messages(), QByteArrayList());
               EXPECT_EQ(client.post(call("add")).body, number(0));
           },
           [&](HttpDriver &client) {
               waitForWork();
               client.session = session;
               EXPECT_EQ(client.post(call("add", R"({"number":7})", 2)).messages(), QByteArrayList());
               waiterIsAnswered = true;
           },
           [&](HttpDriver &client) {
               waitForWork();
               client.session = session;
               EXPECT_EQ(client.post(call("add", "{}", 3)).messages().size(), 1) << "nobody has taken this one back";
           },
           [&](HttpDriver &client) {
               waitForWork();
               QThread::msleep(50); // so that the others wait already, unless the machine is busy
               client.session = session;
               const QByteArray cancel =
                   R"({"jsonrpc":"2.0","method":"notifications/cancelled","params":{"requestId":ID}})";
               while (!waiterIsAnswered)
                   EXPECT_EQ(client.post(QByteArray(cancel).replace("ID", "2")).status, 202);
               while (!workerIsAnswered)
                   EXPECT_EQ(client.post(QByteArray(cancel).replace("ID", "1")).status, 202);
           }});
}

TEST_F(Http, WhatIsTakenBackBeforeItComesIsNotDone)
{
    serve({[](HttpDriver &client) {
        client.initialize();
        const auto cancel = [&client](const QByteArray &id) {
            std::ignore = client.post(R"({"jsonrpc":"2.0","method":"notifications/cancelled","params":{"requestId":)" +
                                      id + "}}");
        };
        cancel("2");
        EXPECT_EQ(client.post(call("add", R"({"number":1})", 2)).messages(), QByteArrayList());
        EXPECT_EQ(client.post(call("add", R"({"number":2})")).body, number(2));
        // One that has been answered is not meant to come again, though a plain client may have no other id.
        cancel("1");
        EXPECT_EQ(client.post(call("add", R"({"number":2})")).body, number(4));
    }});
}

TEST_F(Http, AClientThatVanishesTakesNothingBack)
{
    limits_.silence = 10ms;
    serve({[](HttpDriver &client) {
        client.initialize();
        client.postAndVanish(call("work", R"({"ms":100,"_meta":{"progressToken":1}})"), waitForWork);
        while (client.post(call("add")).messages().value(0) != number(1000)) {
        }
    }});
}

TEST_F(Http, TheEndOfASessionEndsWhatIsUnderWay)
{
    QByteArray session;
    serve({[&](HttpDriver &client) {
               client.initialize();
               session = client.session;
               EXPECT_EQ(client.post(call("work", R"({"ms":600000})")).messages(), QByteArrayList());
               EXPECT_EQ(client.post(call("add")).status, 404);
           },
           [&](HttpDriver &client) {
               waitForWork();
               client.session = session;
               EXPECT_EQ(client.endSession().status, 204);
           }});
}

TEST_F(Http, TheEndOfTheServerEndsWhatIsUnderWay)
{
    serve({[](HttpDriver &client) {
        client.initialize();
        client.postAndVanish(call("work", R"({"ms":600000})"), waitForWork);
    }});
    EXPECT_FALSE(isWorking);
}

} // namespace
