#include "support/mcpdriver.h"

#include <gtest/gtest.h>

#include <QDeadlineTimer>
#include <QDir>
#include <QFile>
#include <QJsonDocument>

using namespace Qt::StringLiterals;
using namespace TestSupport;
using namespace std::chrono_literals;

McpDriver::McpDriver(const QString &program, const QStringList &arguments, const QString &folder)
{
    process_.setWorkingDirectory(folder);
    const QString server = program == "ncx"_L1 ? u"mcp"_s : u"--mcp"_s;
    process_.start(QStringLiteral(NCX_BIN_DIR "/") + program, QStringList{server} + arguments);
}

McpDriver::~McpDriver()
{
    if (process_.state() != QProcess::NotRunning) {
        process_.kill();
        process_.waitForFinished();
    }
}

void McpDriver::send(const QByteArray &bytes)
{
    process_.write(bytes);
}

void McpDriver::sendCall(const QString &tool, const QJsonObject &arguments)
{
    const QJsonObject request{{u"jsonrpc"_s, u"2.0"_s},
                              {u"id"_s, ++lastId_},
                              {u"method"_s, u"tools/call"_s},
                              {u"params"_s, QJsonObject{{u"name"_s, tool}, {u"arguments"_s, arguments}}}};
    sendLine(QJsonDocument(request).toJson(QJsonDocument::Compact));
}

QByteArray McpDriver::replyLine()
{
    const QDeadlineTimer deadline(60s);
    while (!process_.canReadLine()) {
        if (deadline.hasExpired() || !process_.waitForReadyRead(static_cast<int>(deadline.remainingTime()))) {
            ADD_FAILURE() << "no reply; the server said: " << process_.readAllStandardError().toStdString();
            return {};
        }
    }
    QByteArray line = process_.readLine();
    line.chop(1);
    return line;
}

QJsonObject McpDriver::reply()
{
    return QJsonDocument::fromJson(replyLine()).object();
}

QJsonObject McpDriver::call(const QString &tool, const QJsonObject &arguments)
{
    sendCall(tool, arguments);
    const QJsonObject object = reply();
    EXPECT_EQ(object.value("id"_L1).toInt(), lastId_);
    return object;
}

QString McpDriver::told(const QJsonObject &reply)
{
    if (const QJsonObject error = reply.value("error"_L1).toObject(); !error.isEmpty())
        return u"%1 %2"_s.arg(QString::number(error.value("code"_L1).toInt()), error.value("message"_L1).toString());
    const QJsonObject result = reply.value("result"_L1).toObject();
    const QString text = result.value("content"_L1).toArray().at(0).toObject().value("text"_L1).toString();
    return result.value("isError"_L1).toBool() ? u"! "_s + text : text;
}

QJsonArray McpDriver::resourceIndices(const QString &profile)
{
    sendLine(u"{\"id\":1,\"method\":\"resources/read\",\"params\":{\"uri\":\"codb://%1\"}}"_s.arg(profile).toUtf8());
    const QJsonArray contents = reply().value("result"_L1).toObject().value("contents"_L1).toArray();
    const QByteArray list = contents.at(0).toObject().value("text"_L1).toString().toUtf8();
    QJsonArray indices;
    for (const QJsonValue summary : QJsonDocument::fromJson(list).array())
        indices.append(summary.toObject().value("indexDec"_L1));
    return indices;
}

qint64 McpDriver::memory() const
{
    QFile file(u"/proc/%1/statm"_s.arg(process_.processId()));
    constexpr qint64 pageKib = 4;
    return file.open(QIODevice::ReadOnly) ? file.readAll().split(' ').value(1).toLongLong() * pageKib : 0;
}

qint64 McpDriver::processorTime() const
{
    constexpr qint64 nanoseconds = 1000;
    const QDir threads(u"/proc/%1/task"_s.arg(process_.processId()));
    qint64 sum = 0;
    for (const QString &thread : threads.entryList(QDir::Dirs | QDir::NoDotAndDotDot)) {
        QFile file(threads.filePath(thread + u"/schedstat"_s));
        if (file.open(QIODevice::ReadOnly))
            sum += file.readAll().split(' ').value(0).toLongLong();
    }
    return sum / nanoseconds;
}

ProcessResult McpDriver::close()
{
    process_.closeWriteChannel();
    const bool ended = process_.waitForFinished(60000) && process_.exitStatus() == QProcess::NormalExit;
    return {ended ? process_.exitCode() : -1, QString::fromUtf8(process_.readAllStandardOutput()),
            QString::fromUtf8(process_.readAllStandardError())};
}
