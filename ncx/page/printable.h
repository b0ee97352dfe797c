#pragma once

#include <QByteArray>
#include <QString>

/// Texts of a project as parts of other languages, whatever is in them.
namespace Printable {

/// For the content and the attributes of XML; characters that XML has no place for become U+FFFD.
QString xml(const QString &text);
/// A text of JSON for a script element of HTML, which nothing in it can end.
QByteArray scriptJson(QByteArray json);

} // namespace Printable
