#include "store/tables/tablefamily.h"

#include <QDebug>

using namespace Qt::StringLiterals;

void TableContext::notify(StoreRecords::Change type, StoreRecords::ChangeSet change) const
{
    if (silent_ || !listener_)
        return;
    change.type = static_cast<quint32>(type);
    listener_(change);
}

bool TableFamily::run(const char *operation, const QString &text, const QVariantList &values)
{
    return statements_.execute({operation, text, Statement::Effect::Rows}, values);
}

bool TableFamily::runSchema(const char *operation, const QString &text)
{
    return statements_.execute({operation, text, Statement::Effect::Schema});
}

bool TableFamily::writeRow(const char *operation, const Row &row, const QString &insert, const QString &update,
                           QVariantList values)
{
    const QVariant found = statements_.value({operation, u"select exists(%1)"_s.arg(row.select(u"1"_s))}, row.key());
    if (!found.isValid())
        return false;
    values.append(row.key());
    return run(operation, found.toBool() ? update : insert, values);
}

std::optional<QVariantList> TableFamily::textsOf(const char *operation, std::optional<QVariantList> values)
{
    if (!values)
        qDebug().noquote() << operation << "failed: a single quote in a text";
    return values;
}

QString TableFamily::nameOf(const Row &row)
{
    const QVariant id = valueOf(row, u"name"_s);
    return id.isNull() ? QString() : strings_.textOf(id.toInt());
}

QList<quint32> TableFamily::selectNumbers(const QString &text, const QVariantList &values)
{
    return statements_.list({nullptr, text}, values, [](const ResultRow &row) { return row.number<quint32>(0); });
}

QHash<quint32, QString> TableFamily::selectNames(const QString &text, const QVariantList &values)
{
    QHash<quint32, QString> names;
    std::ignore = statements_.visit({nullptr, text}, values, [&](const ResultRow &row) {
        names.insert(row.number<quint32>(0), strings_.textOf(row.number<int>(1)));
    });
    return names;
}
