#pragma once

#include <QByteArray>
#include <QJsonArray>
#include <QJsonObject>
#include <QJsonValue>
#include <QString>

#include <optional>

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
        NoProfilePath = -32002,
        ResourceNotFound = -32002 ///< the code that the protocol has for it
    };

    static Reply ofMethod(const QJsonObject &result);
    static Reply ofError(ErrorCode code, const QString &message);
    static Reply invalidParams(const QString &message) { return ofError(InvalidParams, message); }

    /// A tool's result: one text, without white space at its ends. `isError` marks a failure.
    static Reply text(const QString &text, bool isError = false);
    /// A tool's result that says why the project refuses.
    static Reply refusal(const QString &text) { return Reply::text(text, true); }
    /// A tool's result whose text is a compact JSON document.
    static Reply json(const QJsonObject &object, bool isError = false);
    static Reply json(const QJsonArray &array);
    /// A tool's result that says the same as a text and as an object, for servers that send both.
    static Reply both(const QString &text, const QJsonObject &object);

    /// The reply as it goes over the wire: compact JSON with sorted keys and a line feed.
    QByteArray line(qint32 id) const;

    /// What a tool has to say; false for the reply of another method, and for an error.
    bool isOfTool() const { return !result_ && !error_; }
    const QString &text() const { return text_; }
    bool isFailure() const { return isFailure_; }
    /// An object or array, where the text is one.
    const QJsonValue &data() const { return data_; }
    /// Of another method.
    const std::optional<QJsonObject> &result() const { return result_; }
    const std::optional<QJsonObject> &error() const { return error_; }

private:
    Reply() = default;

    QString text_; ///< of a tool; it may be as long as a project is large
    QJsonValue data_;
    bool isFailure_ = false;
    std::optional<QJsonObject> result_;
    std::optional<QJsonObject> error_;
};
