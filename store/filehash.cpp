// The hash that tells whether a project was changed by anything but this program.

#include "store/objectdatabase.h"

#include "texttools/clock.h"

#include <QCryptographicHash>
#include <QSqlQuery>
#include <QSqlRecord>
#include <QVariant>

using namespace Qt::StringLiterals;

namespace {

/// Appends any value as text; a blob counts as the text that its bytes are in UTF-8.
void appendHashedForm(QByteArray &row, const QVariant &value)
{
    switch (value.typeId()) {
    case QMetaType::LongLong:
        if (!value.isNull())
            row += QByteArray::number(value.toLongLong());
        break;
    case QMetaType::QByteArray:
        row += QString::fromUtf8(value.toByteArray()).toUtf8();
        break;
    default:
        row += value.toString().toUtf8();
    }
}

} // namespace

QString ObjectDataBase::computeFileHash()
{
    QCryptographicHash hash(QCryptographicHash::Sha256);
    QStringList tables;
    QSqlQuery query = newQuery();
    query.setForwardOnly(true);
    if (execQuery(query, u"SELECT name FROM sqlite_master WHERE type='table' ORDER BY name"_s)) {
        while (query.next())
            tables.append(query.value(0).toString());
    }
    for (const QString &table : std::as_const(tables)) {
        hash.addData(table.toUtf8() + '\n');
        const bool holdsHash = table.compare("MiscSettings"_L1, Qt::CaseInsensitive) == 0;
        const QString own = holdsHash ? u" WHERE item NOT IN ('FileHash','TamperLog')"_s : QString();
        if (!execQuery(query, u"SELECT * FROM \"%1\"%2 ORDER BY rowid"_s.arg(table, own)))
            continue;
        const int columns = query.record().count();
        QByteArray row;
        while (query.next()) {
            row.clear();
            for (int column = 0; column < columns; ++column) {
                appendHashedForm(row, query.value(column));
                row += '|';
            }
            row += '\n';
            hash.addData(row);
        }
    }
    return QString::fromLatin1(hash.result().toHex());
}

void ObjectDataBase::verifyFileHash()
{
    tampered_ = false;
    const QString stored = getMiscSetting(u"FileHash"_s);
    if (stored.isEmpty() || stored == computeFileHash())
        return;
    tampered_ = true;
    const QString now = TextTools::currentDateTime().toString(Qt::ISODate);
    const QString log = getMiscSetting(u"TamperLog"_s);
    setMiscSetting(u"TamperLog"_s, log.isEmpty() ? now : log + u';' + now);
}
