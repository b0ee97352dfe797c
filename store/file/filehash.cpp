#include "store/file/filehash.h"

#include "store/statements/statements.h"

#include <QCryptographicHash>
#include <QStringList>
#include <QVariant>

#include <tuple>

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

QString FileHash::compute(Statements &statements)
{
    QCryptographicHash hash(QCryptographicHash::Sha256);
    const QStringList tables =
        statements.list({nullptr, u"SELECT name FROM sqlite_master WHERE type='table' ORDER BY name"_s}, {},
                        [](const ResultRow &row) { return row.text(0); });
    for (const QString &table : tables) {
        hash.addData(table.toUtf8() + '\n');
        const bool holdsHash = table.compare("MiscSettings"_L1, Qt::CaseInsensitive) == 0;
        const QString own = holdsHash ? u" WHERE item NOT IN ('FileHash','TamperLog')"_s : QString();
        int columns = -1;
        QByteArray text;
        std::ignore =
            statements.visit({nullptr, u"SELECT * FROM %1%2 ORDER BY rowid"_s.arg(SqlText::identifier(table), own)}, {},
                             [&](const ResultRow &row) {
                                 columns = columns < 0 ? row.count() : columns;
                                 text.clear();
                                 for (int column = 0; column < columns; ++column) {
                                     appendHashedForm(text, row.value(column));
                                     text += '|';
                                 }
                                 text += '\n';
                                 hash.addData(text);
                             });
    }
    return QString::fromLatin1(hash.result().toHex());
}
