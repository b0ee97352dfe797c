#pragma once

#include <QByteArray>
#include <QJsonDocument>
#include <QLatin1StringView>
#include <QString>

/// Writes JSON as QJsonDocument does, without a value of its own for each part. Keys have to come in ascending order,
/// which is that of a QJsonObject.
class JsonText
{
public:
    /// `depth` is how many objects and arrays there are around what is written.
    explicit JsonText(QJsonDocument::JsonFormat format, int depth = 0)
        : isIndented_(format == QJsonDocument::Indented)
        , depth_(depth)
    {
    }

    void beginObject() { begin('{'); }
    void endObject() { end('}'); }
    void beginArray() { begin('['); }
    void endArray() { end(']'); }
    void key(QLatin1StringView key);
    void value(const QString &text);
    void value(qint64 number);
    /// A key and its text, unless that is empty.
    void add(QLatin1StringView name, const QString &text);

    const QByteArray &text() const { return text_; }

private:
    void begin(char bracket);
    void end(char bracket);
    void beginElement();
    void beginLine();

    QByteArray text_;
    bool isIndented_;
    int depth_;
    bool isFirst_ = true; ///< of its object or array
    bool isValue_ = true; ///< of a key, or the whole
};
