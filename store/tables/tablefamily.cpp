#include "store/tables/tablefamily.h"

using namespace Qt::StringLiterals;

TableContext::TableContext()
{
    statements.setRowListener([this](QByteArrayView table) {
        if (table.compare("Strings", Qt::CaseInsensitive) == 0)
            strings.rowWritten();
        writes.rowWritten(table);
    });
}

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

QList<quint32> TableFamily::selectNumbers(const QString &text, const QVariantList &values)
{
    return statements_.list({nullptr, text}, values, [](const ResultRow &row) { return row.number<quint32>(0); });
}
