#pragma once

#include <QByteArray>
#include <QString>

/// Pages of HTML put together of their sources, which are compiled in, and of data. They load nothing.
namespace WebPage {

/// The page of a source in ncx/page/web, with the files that it names and its data, which is JSON.
QByteArray html(const QString &page, const QByteArray &data);

} // namespace WebPage
