#include "mcp/wire/mcpstdinreader.h"
#include "mcp/wire/standardstreams.h"
#include "support/mcpdriver.h"
#include "support/projectbuilder.h"
#include "support/testhome.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QEventLoop>
#include <QTemporaryDir>
#include <QThread>
#include <QTimer>

#include <array>

#include <fcntl.h>
#include <unistd.h>

using namespace Qt::StringLiterals;
using namespace TestSupport;

namespace {

QByteArray ping(int id)
{
    return "{\"id\":" + QByteArray::number(id) + ",\"method\":\"ping\"}";
}

QByteArray pong(int id)
{
    return "{\"error\":{\"code\":-32601,\"message\":\"Method not found: ping\"},\"id\":" + QByteArray::number(id) +
           ",\"jsonrpc\":\"2.0\"}";
}

QByteArray call(int id, const QByteArray &tool, const QByteArray &arguments = "{}")
{
    return "{\"id\":" + QByteArray::number(id) + ",\"method\":\"tools/call\",\"params\":{\"name\":\"" + tool +
           "\",\"arguments\":" + arguments + "}}";
}

void expectQuietEnd(McpDriver &server)
{
    const ProcessResult end = server.close();
    EXPECT_EQ(end.exitCode, 0);
    EXPECT_EQ(end.output, QString());
    EXPECT_EQ(end.errors, QString());
}

class Wire : public testing::Test
{
protected:
    Wire()
    {
        ProjectBuilder project;
        for (quint16 index = 0x2000; index < 0x2200; ++index)
            project.object(index, u"Object %1"_s.arg(index)).sub(0, u"Value"_s);
        project.save(project_);
    }
    ~Wire() override { EXPECT_TRUE(QDir(dataFolder()).isEmpty()) << "a working copy was left behind"; }

    QByteArray openCall(int id) const { return call(id, "open_project", "{\"path\":\"" + project_.toUtf8() + "\"}"); }

    QTemporaryDir folder_;
    QString project_ = folder_.filePath(u"device.ncxp"_s);
};

TEST_F(Wire, TakesLinesHoweverTheyArrive)
{
    McpDriver server;
    for (const char byte : ping(1) + "\r\n")
        server.send(QByteArray(1, byte));
    EXPECT_EQ(server.replyLine(), pong(1));
    server.send("\n\r\n \t\n" + ping(2) + "\n" + ping(3) + "\n" + ping(4).chopped(5));
    EXPECT_EQ(server.replyLine(), pong(2));
    EXPECT_EQ(server.replyLine(), pong(3));
    server.send(ping(4).last(5) + "\n");
    EXPECT_EQ(server.replyLine(), pong(4));
    // The end of the input closes a line, and waits for its reply.
    server.send(openCall(5) + "\n" + ping(6));
    const QStringList rest = server.close().lines();
    EXPECT_EQ(rest.size(), 3);
    EXPECT_EQ(rest.value(1).toUtf8(), pong(6));
}

TEST_F(Wire, SurvivesAHostileClient)
{
    constexpr int million = 1000000;
    const std::array hostile{
        QByteArray(million, '['),
        "{\"id\":1,\"method\":\"ping\",\"params\":" + QByteArray(2000, '[') + QByteArray(2000, ']') + "}",
        "{\"id\":" + QByteArray(million, '9') + ",\"method\":\"ping\"}",
        QByteArray("{\"id\":1,\"method\":\"\xff\xfe\xc0\x80\"}"),
        QByteArray("\xff\xfe\x00{\x00", 5),
        QByteArray("{\"id\":1\0,\"method\":\"ping\"}", 26),
        QByteArray("{\"id\":1,\"method\":\"a\\u12\"}"),
    };
    McpDriver server;
    int id = 0;
    for (const QByteArray &line : hostile) {
        server.sendLine(line);
        server.sendLine(ping(++id));
        EXPECT_EQ(server.replyLine(), pong(id)) << "after " << line.left(60).constData();
    }
    for (int i = 0; i < 20000; ++i)
        server.sendLine("{\"method\":\"notifications/progress\"}");
    server.sendLine(ping(77));
    EXPECT_EQ(server.replyLine(), pong(77));
    expectQuietEnd(server);
}

TEST_F(Wire, TakesAndGivesLinesOfManyMegabytes)
{
    McpDriver server;
    const QByteArray name(12 << 20, 'x');
    server.sendLine("{\"id\":1,\"method\":\"" + name + "\"}");
    EXPECT_TRUE(server.replyLine() == "{\"error\":{\"code\":-32601,\"message\":\"Method not found: " + name +
                                          "\"},\"id\":1,\"jsonrpc\":\"2.0\"}");
    expectQuietEnd(server);
}

TEST_F(Wire, AnswersInOrderWhateverComesDuringALongRun)
{
    const QByteArray checkless = "{\"disableCheck\":true}";
    McpDriver server;
    server.send(openCall(1) + "\n" + call(2, "generate", checkless) + "\n" +
                "{\"method\":\"notifications/cancelled\"}\n" + call(3, "add_line", "{\"line\":1}") + "\n" + ping(4) +
                "\n" + call(5, "generate", checkless) + "\n" + call(6, "list_lines"));
    const QStringList replies = server.close().lines();
    ASSERT_EQ(replies.size(), 7);
    const QStringList beginnings{
        u"Project opened: "_s,      u"Generation completed."_s,
        u"Line 1 added."_s,         {},
        u"Generation completed."_s, uR"([{\"line\":0,\"lineTypeCode\":1},{\"line\":1,\"lineTypeCode\":1}])"_s};
    for (qsizetype i = 0; i < beginnings.size(); ++i) {
        if (i == 3)
            EXPECT_EQ(replies.at(i).toUtf8(), pong(4));
        else
            EXPECT_TRUE(replies.at(i).startsWith(
                u"{\"id\":%1,\"jsonrpc\":\"2.0\",\"result\":{\"content\":[{\"text\":\"%2"_s.arg(QString::number(i + 1),
                                                                                                beginnings.at(i))))
                << qPrintable(replies.at(i));
    }
    EXPECT_TRUE(QFile::exists(folder_.filePath(u"gen_indices.h"_s)));
}

/// Puts one end of a pipe that does not block in the place of a standard stream.
class PipeFor
{
public:
    PipeFor(int stream, int ownEnd)
        : stream_(stream)
        , saved_(dup(stream))
    {
        std::array<int, 2> ends{};
        EXPECT_EQ(pipe2(ends.data(), O_NONBLOCK | O_CLOEXEC), 0);
        dup2(ends.at(static_cast<size_t>(1 - ownEnd)), stream);
        ::close(ends.at(static_cast<size_t>(1 - ownEnd)));
        end_ = ends.at(static_cast<size_t>(ownEnd));
    }
    ~PipeFor()
    {
        dup2(saved_, stream_);
        ::close(saved_);
        closeEnd();
    }
    Q_DISABLE_COPY_MOVE(PipeFor)
    int end() const { return end_; }
    void closeEnd()
    {
        if (end_ >= 0)
            ::close(end_);
        end_ = -1;
    }

private:
    int stream_;
    int saved_;
    int end_ = -1;
};

TEST(StandardStreams, WaitWhereTheClientsStreamsDoNotBlock)
{
    const QByteArray sent(1 << 20, 'x');
    QByteArray received;
    {
        const PipeFor output(STDOUT_FILENO, 0);
        std::unique_ptr<QThread> client(QThread::create([&] {
            QByteArray buffer(4096, '\0');
            while (received.size() < sent.size()) {
                if (const ssize_t size = read(output.end(), buffer.data(), 4096); size > 0)
                    received.append(buffer.constData(), size);
            }
        }));
        client->start();
        EXPECT_TRUE(StandardStreams::writeOutput(sent));
        client->wait();
    }
    EXPECT_TRUE(received == sent);

    const PipeFor input(STDIN_FILENO, 1);
    std::unique_ptr<QThread> client(QThread::create([&] {
        QThread::msleep(50);
        EXPECT_EQ(write(input.end(), "late", 4), 4);
    }));
    client->start();
    EXPECT_EQ(StandardStreams::readInput(), "late");
    client->wait();
}

TEST(StdinReader, ReadsNothingWhileItIsHeldBack)
{
    PipeFor input(STDIN_FILENO, 1);
    EXPECT_EQ(write(input.end(), "one\n two \n", 10), 10);
    MCPStdinReader reader;
    QByteArrayList lines;
    QEventLoop loop;
    QObject::connect(&reader, &MCPStdinReader::lineReceived, &loop, [&](const QByteArray &line) {
        lines.append(line);
        if (lines.size() == 2)
            loop.quit();
    });
    reader.setReadingEnabled(false);
    reader.start();
    QTimer::singleShot(100, &loop, [&] {
        EXPECT_TRUE(lines.isEmpty());
        reader.setReadingEnabled(true);
    });
    loop.exec();
    EXPECT_EQ(lines, (QByteArrayList{"one", "two"}));
    input.closeEnd();
    EXPECT_TRUE(reader.wait(60000)) << "the reader must end with its input";
}

} // namespace
