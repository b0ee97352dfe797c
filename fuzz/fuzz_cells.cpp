// Projects that open but hold what no program of ours writes. The first byte chooses one of the examples; then each
// line of the input is a change of its database: a table, a column, a row, what to do, and a text to do it with.

#include "fuzz/scratch.h"
#include "generate/run/generatormainhandler.h"
#include "store/objectdatabase.h"

#include <QDir>
#include <QFile>
#include <QSqlDatabase>
#include <QSqlQuery>

#include <limits>

using namespace Qt::StringLiterals;

namespace {

/// The examples as databases, in the order of their names.
const QStringList &bases()
{
    static const QStringList paths = [] {
        QStringList made;
        const QDir examples(QStringLiteral(NCX_SOURCE_DIR "/examples"));
        for (const QString &name : examples.entryList(QDir::Dirs | QDir::NoDotAndDotDot, QDir::Name)) {
            const QDir example(examples.filePath(name));
            for (const QString &project : example.entryList({u"*.ncxt"_s}, QDir::Files)) {
                ObjectDataBase store;
                const QString path = Fuzz::scratch().filePath(name + u".ncxp"_s);
                Fuzz::require(store.openTextDatabase(example.filePath(project)) && store.saveDatabase(path));
                made.append(path);
            }
        }
        return made;
    }();
    return paths;
}

QString quoted(const QString &name)
{
    return u'"' + QString(name).replace(u'"', u"\"\""_s) + u'"';
}

QStringList column(QSqlDatabase &database, const QString &statement, int place)
{
    QStringList values;
    QSqlQuery query(statement, database);
    while (query.next())
        values.append(query.value(place).toString());
    return values;
}

enum Deed
{
    SetText,
    SetNumber,
    SetNull,
    SetBytes,
    SetLowest,
    SetHighest,
    SetBeyond32,
    SetReal,
    SetLong,
    DeleteRow,
    RepeatRow,
    DropColumn,
    DropTable,
    DeedCount
};

QVariant valueFor(Deed deed, const QByteArray &text)
{
    switch (deed) {
    case SetNumber:
        return text.toLongLong();
    case SetBytes:
        return text;
    case SetLowest:
        return std::numeric_limits<qint64>::min();
    case SetHighest:
        return std::numeric_limits<qint64>::max();
    case SetBeyond32:
        return qint64{1} << 32;
    case SetReal:
        return text.toDouble() * 1e300;
    case SetLong:
        return QString::fromUtf8(text.isEmpty() ? QByteArray("x") : text).repeated(1000);
    case SetText:
        return QString::fromUtf8(text);
    default:
        return {};
    }
}

void change(QSqlDatabase &database, const QByteArray &line)
{
    constexpr qsizetype fields = 4;
    if (line.size() < fields)
        return;
    const auto field = [&line](qsizetype place) { return static_cast<uchar>(line.at(place)); };
    const QStringList tables =
        column(database, u"select name from sqlite_master where type = 'table' order by name"_s, 0);
    if (tables.isEmpty())
        return;
    const QString table = quoted(tables.at(field(0) % tables.size()));
    const QStringList columns = column(database, u"pragma table_info(%1)"_s.arg(table), 1);
    if (columns.isEmpty())
        return;
    const QString name = quoted(columns.at(field(1) % columns.size()));
    const QString row = u"rowid = (select rowid from %1 limit 1 offset %2)"_s.arg(table).arg(field(2));
    const auto deed = static_cast<Deed>(field(3) % DeedCount);
    QSqlQuery query(database);
    switch (deed) {
    case DeleteRow:
        query.exec(u"delete from %1 where %2"_s.arg(table, row));
        break;
    case RepeatRow:
        query.exec(u"insert into %1 select * from %1 where %2"_s.arg(table, row));
        break;
    case DropColumn:
        query.exec(u"alter table %1 drop column %2"_s.arg(table, name));
        break;
    case DropTable:
        query.exec(u"drop table %1"_s.arg(table));
        break;
    default:
        query.prepare(u"update %1 set %2 = ? where %3"_s.arg(table, name, row));
        query.addBindValue(valueFor(deed, line.sliced(fields)));
        query.exec();
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    if (size == 0)
        return 0;
    const QString path = Fuzz::emptyFolder(u"project"_s) + u"/device.ncxp"_s;
    Fuzz::require(QFile::copy(bases().at(*data % bases().size()), path));
    {
        QSqlDatabase database = QSqlDatabase::addDatabase(u"QSQLITE"_s, u"changes"_s);
        database.setDatabaseName(path);
        Fuzz::require(database.open());
        database.transaction();
        const QByteArray input(reinterpret_cast<const char *>(data + 1), static_cast<qsizetype>(size - 1));
        for (const QByteArray &line : input.split('\n'))
            change(database, line);
        database.commit();
        database.close();
    }
    QSqlDatabase::removeDatabase(u"changes"_s);
    Fuzz::Session session;
    if (session.handler().openProject(path))
        session.live();
    return 0;
}
