#pragma once

#include "support/processrunner.h"

#include <QJsonArray>
#include <QJsonObject>

namespace TestSupport {

/// The other end of a server: starts a program in server mode, sends it lines and reads its replies. No wait is longer
/// than a minute; one that is in vain fails the test.
class McpDriver
{
public:
    /// Starts it in a folder, or in that of the test.
    explicit McpDriver(const QString &program = QStringLiteral("ncx_cli"), const QStringList &arguments = {},
                       const QString &folder = {});
    ~McpDriver();
    Q_DISABLE_COPY_MOVE(McpDriver)

    /// Sends bytes as they are.
    void send(const QByteArray &bytes);
    void sendLine(const QByteArray &line) { send(line + '\n'); }
    /// Sends a request for a tool, with the next number as its id.
    void sendCall(const QString &tool, const QJsonObject &arguments = {});
    /// The next line of the output, without its line feed.
    QByteArray replyLine();
    /// The next line of the output as an object.
    QJsonObject reply();
    /// Sends a request for a tool and takes its reply.
    QJsonObject call(const QString &tool, const QJsonObject &arguments = {});
    /// The text of a tool's result, after "! " where it is marked as a failure; the code, a blank and the message of an
    /// error.
    static QString told(const QJsonObject &reply);
    /// `told` of the reply to a call.
    QString ask(const QString &tool, const QJsonObject &arguments = {}) { return told(call(tool, arguments)); }

    /// The indices of a reference profile, as its resource lists them.
    QJsonArray resourceIndices(const QString &profile);

    /// Resident memory of the server in KiB.
    qint64 memory() const;
    /// Processor time of the server so far in microseconds, whatever else the machine does.
    qint64 processorTime() const;
    /// Ends the input and waits for the end of the program. What comes is what was not read before.
    ProcessResult close();

private:
    QProcess process_;
    int lastId_ = 0;
};

} // namespace TestSupport
