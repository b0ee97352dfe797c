#pragma once

#include "store/tables/tablefamily.h"

#include <QMutex>

/// The rows of a kind of table that are found by a key of numbers, each with a record: `PGNs%1` and the like.
template <class Record>
class KeyedRows
{
public:
    using Columns = std::span<const RecordColumns::Column<Record>>;
    /// The values of the key columns, in their order.
    using Key = std::initializer_list<quint32>;

    struct Form
    {
        QLatin1StringView table;           ///< with %1 for the line
        Columns key;                       ///< which a read fills in, too
        Columns columns;                   ///< what a row holds beside its key
        RecordColumns::Names setOnce = {}; ///< columns that only an insertion writes
    };

    KeyedRows(TableContext &context, const Form &form)
        : context_(context)
        , form_(form)
        , condition_(QStringLiteral(" where ") + RecordColumns::assignments(form.key, {}, QLatin1StringView(" and ")))
        , select_(QStringLiteral("select %1, %2 from ")
                      .arg(RecordColumns::names(form.key), RecordColumns::names(form.columns)) +
                  form.table)
        , insert_(QStringLiteral("insert into ") + form.table +
                  QStringLiteral(" (%1, %2) values(%3)")
                      .arg(RecordColumns::names(form.columns), RecordColumns::names(form.key),
                           SqlText::places(std::ssize(form.columns) + std::ssize(form.key))))
        , update_(QStringLiteral("update ") + form.table + QStringLiteral(" set ") +
                  RecordColumns::assignments(form.columns, form.setOnce) + condition_)
    {
    }

    bool exists(quint8 line, Key key) const
    {
        return context_.statements.hasRow({nullptr, cell(QStringLiteral("1")).arg(line)}, valuesOf(key));
    }

    /// One column of a row; invalid without one.
    QVariant value(quint8 line, Key key, const QString &column) const
    {
        return context_.statements.value({nullptr, cell(column).arg(line)}, valuesOf(key));
    }

    /// The text of the pool that the row's column "name" refers to.
    QString name(quint8 line, Key key) const
    {
        const QVariant id = value(line, key, QStringLiteral("name"));
        return id.isNull() ? QString() : context_.strings.textOf(id.toInt());
    }

    std::optional<Record> get(const char *operation, quint8 line, Key key) const
    {
        return context_.statements.first({operation, textsOf(line).get}, valuesOf(key),
                                         [this](const ResultRow &row) { return recordOf(row); });
    }

    /// All rows of a line, in one scan; `order` as in a select.
    [[nodiscard]] bool visit(const char *operation, quint8 line, const QString &order,
                             const std::function<void(const Record &)> &visitor) const
    {
        context_.strings.loadTexts();
        return context_.statements.visit({operation, select_.arg(line) + order}, {},
                                         [&](const ResultRow &row) { visitor(recordOf(row)); });
    }
    QList<Record> all(const char *operation, quint8 line, const QString &order) const
    {
        QList<Record> records;
        std::ignore = visit(operation, line, order, [&records](const Record &record) { records.append(record); });
        return records;
    }

    /// Those rows of a line that a condition with "?" picks; no scan where an index has its columns.
    QList<Record> some(const char *operation, quint8 line, const QString &condition, const QVariantList &values) const
    {
        return context_.statements.list({operation, select_.arg(line) + condition}, values,
                                        [this](const ResultRow &row) { return recordOf(row); });
    }

    /// The names of all rows of one direction by a column of their key.
    QHash<quint32, QString> names(quint8 line, const QString &column, quint8 direction) const
    {
        QHash<quint32, QString> names;
        const QString text = QStringLiteral("select %1, name from ").arg(column) + form_.table;
        std::ignore = context_.statements.visit(
            {nullptr, text.arg(line) + QStringLiteral(" where direction = ?")}, {direction}, [&](const ResultRow &row) {
                names.insert(row.number<quint32>(0), context_.strings.textOf(row.number<int>(1)));
            });
        return names;
    }

    /// The ids of a record's name and description, which are added where they are new.
    RecordColumns::TextIds intern(const Record &record) const
    {
        return RecordColumns::intern(form_.columns, record, context_.strings,
                                     {QLatin1StringView("name"), QLatin1StringView("desc")});
    }

    /// Adds a row or, where it exists, updates it.
    [[nodiscard]] bool write(const char *operation, quint8 line, Key key, const Record &record,
                             const RecordColumns::TextIds &ids, Quotes quotes) const
    {
        const LineTexts texts = textsOf(line);
        const QVariant found = context_.statements.value({operation, texts.exists}, valuesOf(key));
        if (!found.isValid())
            return false;
        const RecordColumns::Names except = found.toBool() ? form_.setOnce : RecordColumns::Names();
        BoundStatement statement(context_.statements,
                                 {operation, found.toBool() ? texts.update : texts.insert, Statement::Effect::Rows});
        if (!RecordColumns::bindTold<Record>(operation, statement, {form_.columns, record, ids, quotes, except}))
            return false;
        for (const quint32 part : key)
            statement.bind(qint64{part});
        return statement.execute();
    }

    [[nodiscard]] bool remove(const char *operation, quint8 line, Key key) const
    {
        const QString text = QStringLiteral("delete from ") + form_.table + condition_;
        return context_.statements.execute({operation, text.arg(line), Statement::Effect::Rows}, valuesOf(key));
    }

private:
    /// The statements that an import executes for each of its messages.
    struct LineTexts
    {
        quint8 line;
        QString get;
        QString exists;
        QString insert;
        QString update;
    };

    LineTexts textsOf(quint8 line) const
    {
        const QMutexLocker locker(&textsMutex_); // the gate comes with the statement only
        if (!lineTexts_ || lineTexts_->line != line) {
            const QString exists = QStringLiteral("select exists(%1)").arg(cell(QStringLiteral("1")));
            lineTexts_ = {line, (select_ + condition_).arg(line), exists.arg(line), insert_.arg(line),
                          update_.arg(line)};
        }
        return *lineTexts_;
    }

    static QVariantList valuesOf(Key key) { return QVariantList(key.begin(), key.end()); }
    QString cell(const QString &column) const
    {
        return QStringLiteral("select %1 from ").arg(column) + form_.table + condition_;
    }

    Record recordOf(const ResultRow &row) const
    {
        Record record;
        RecordColumns::readRow(form_.key, row, record, context_.strings);
        RecordColumns::readRow(form_.columns, row, record, context_.strings, static_cast<int>(form_.key.size()));
        return record;
    }

    TableContext &context_;
    const Form form_;
    // Statements, with %1 for the line.
    const QString condition_;
    const QString select_;
    const QString insert_;
    const QString update_;
    mutable QMutex textsMutex_;
    mutable std::optional<LineTexts> lineTexts_; ///< of the line asked last
};
