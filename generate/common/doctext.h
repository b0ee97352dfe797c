#pragma once

#include <QString>
#include <QStringList>

/// Texts of a project on their way into formats that give some characters a meaning of their own.
namespace DocText {

/// The text as one line: a line break, and any other control character but the tab, becomes a blank.
QString oneLine(const QString &text);

/// The text's lines, whichever way they are broken (CR LF, LF, CR), empty ones included.
QStringList lines(const QString &text);

/// The text without what XML 1.0 allows in no form: control characters, halves of surrogate pairs and the two
/// noncharacters become U+FFFD.
QString forXml(const QString &text);

} // namespace DocText
