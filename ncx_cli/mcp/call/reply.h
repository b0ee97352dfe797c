#pragma once

#include <QByteArray>
#include <QJsonArray>
#include <QJsonObject>
#include <QString>

/// The answer to one request: a result, or an error of JSON-RPC 2.0.
///
/// The dividing line for tools: a request that does not fit the tool's schema gets an error; one that fits and that the
/// project refuses gets a result that is marked as a failure, for the assistant to read.
class Reply
{
public:
    enum ErrorCode : int
    {
        MethodNotFound = -32601, ///< of an unknown tool, too
        InvalidParams = -32602,
        InternalError = -32603,
        AccessThrottled = -32000,
        NoProfilePath = -32002
    };

    static Reply result(const QJsonObject &result);
    static Reply error(ErrorCode code, const QString &message);
    static Reply invalidParams(const QString &message) { return error(InvalidParams, message); }

    /// A tool's result: one text, without white space at its ends. `isError` marks a failure.
    static Reply text(const QString &text, bool isError = false);
    /// A tool's result that says why the project refuses.
    static Reply refusal(const QString &text) { return Reply::text(text, true); }
    /// A tool's result whose text is a compact JSON document.
    static Reply json(const QJsonObject &object, bool isError = false);
    static Reply json(const QJsonArray &array);

    /// The reply as it goes over the wire: compact JSON with sorted keys and a line feed.
    QByteArray line(qint32 id) const;

private:
    Reply() = default;

    QString text_; ///< of a tool; it may be as long as a project is large
    bool isFailure_ = false;
    QJsonObject result_; ///< of another method
    QJsonObject error_;
};
