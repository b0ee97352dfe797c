#include "ncx/page/webpage.h"

#include "ncx/page/printable.h"

#include <QFile>

using namespace Qt::StringLiterals;

// The linker would leave out of a static library what nothing refers to.
static void keepSources()
{
    Q_INIT_RESOURCE(page);
}

namespace {

QByteArray source(const QString &name)
{
    keepSources();
    QFile file(u":/page/"_s + name);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

} // namespace

QByteArray WebPage::html(const QString &page, const QByteArray &data)
{
    const QByteArray frame = source(page);
    QByteArray html;
    // Each "<!--NAME-->" of the source stands for a file, or for the data; nothing in these is looked into again.
    for (qsizetype place = 0; place < frame.size();) {
        const qsizetype begin = frame.indexOf("<!--", place);
        const qsizetype end = frame.indexOf("-->", begin);
        if (begin < 0 || end < 0) {
            html += frame.sliced(place);
            break;
        }
        html += frame.sliced(place, begin - place);
        const QByteArray name = frame.sliced(begin + 4, end - begin - 4);
        html += name == "data" ? Printable::scriptJson(data) : source(QString::fromUtf8(name));
        place = end + 3;
    }
    return html;
}
