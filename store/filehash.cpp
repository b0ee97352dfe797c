// The hash that tells whether a project was changed by anything but this program.

#include "store/objectdatabase.h"

#include "texttools/clock.h"

#include <QCryptographicHash>
#include <QSqlQuery>
#include <QVariant>

using namespace Qt::StringLiterals;

namespace {

/// Any value as text; a blob counts as the text that its bytes are in UTF-8.
QByteArray hashedForm(const QVariant &value)
{
    if (value.isNull())
        return {};
    if (value.metaType().id() == QMetaType::QByteArray)
        return QString::fromUtf8(value.toByteArray()).toUtf8();
    return value.toString().toUtf8();
}

QString quoted(QString name)
{
    return u'"' + name.replace(u'"', R"("")"_L1) + u'"';
}

/// What is read of a table. SQLite joins the values of a row several times faster than they can be fetched one by one;
/// it writes numbers with a fraction and bytes as text in another way than we do, so that these stay alone.
class HashedColumns
{
public:
    void add(const QString &name, const QString &type)
    {
        const QString column = quoted(name);
        all_.append(column);
        const bool isJoined =
            type.compare("integer"_L1, Qt::CaseInsensitive) == 0 || type.compare("text"_L1, Qt::CaseInsensitive) == 0;
        if (!isJoined) {
            parts_.append(column);
            lastIsJoined_ = false;
            return;
        }
        odd_.append(u"typeof(%1) in ('real', 'blob')"_s.arg(column));
        const QString text = u"ifnull(%1, '')"_s.arg(column);
        if (lastIsJoined_)
            parts_.last() += " || '|' || "_L1 + text;
        else
            parts_.append(text);
        lastIsJoined_ = true;
    }

    QStringList joined() const { return parts_; }
    QStringList single() const { return all_; }
    /// Whether a row holds in a joined column what does not belong there.
    QString isOdd() const { return odd_.isEmpty() ? u"0"_s : odd_.join(" or "_L1); }

private:
    QStringList all_;
    QStringList parts_;
    QStringList odd_;
    bool lastIsJoined_ = false;
};

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
        const QString own = table == "MiscSettings"_L1 ? u" WHERE item NOT IN ('FileHash','TamperLog')"_s : QString();
        HashedColumns hashed;
        if (execQuery(query, u"SELECT name, type FROM PRAGMA_TABLE_INFO('%1')"_s.arg(withQuotesDoubled(table)))) {
            while (query.next())
                hashed.add(query.value(0).toString(), query.value(1).toString());
        }
        const bool isOdd = selectsRow(u"SELECT 1 FROM %1 WHERE %2 LIMIT 1"_s.arg(quoted(table), hashed.isOdd()));
        const QStringList columns = isOdd ? hashed.single() : hashed.joined();
        if (!execQuery(query,
                       u"SELECT %1 FROM %2%3 ORDER BY rowid"_s.arg(columns.join(u','), quoted(table), own)))
            continue;
        QByteArray row;
        while (query.next()) {
            row.clear();
            for (int column = 0; column < columns.size(); ++column) {
                row += hashedForm(query.value(column));
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
