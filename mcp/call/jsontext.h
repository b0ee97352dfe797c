#pragma once

#include <QString>

/// Text of JSON that is written at once, for what would take a value for each of many parts.
namespace JsonText {

/// Appends a text as a JSON string, as QJsonDocument writes it.
void appendQuoted(QString &out, QStringView text);
/// The same in UTF-8.
void appendQuoted(QByteArray &out, QStringView text);

} // namespace JsonText
