#include "store/file/filehash.h"

#include "store/statements/statements.h"

#include <QCryptographicHash>
#include <QStringList>
#include <QVariant>

#include <string>
#include <tuple>

using namespace Qt::StringLiterals;

QString FileHash::compute(Statements &statements)
{
    constexpr std::size_t block = 1 << 14; // of rows that are hashed at once
    QCryptographicHash hash(QCryptographicHash::Sha256);
    const QStringList tables =
        statements.list({nullptr, u"SELECT name FROM sqlite_master WHERE type='table' ORDER BY name"_s}, {},
                        [](const ResultRow &row) { return row.text(0); });
    for (const QString &table : tables) {
        hash.addData(table.toUtf8() + '\n');
        const bool holdsHash = table.compare("MiscSettings"_L1, Qt::CaseInsensitive) == 0;
        const QString own = holdsHash ? u" WHERE item NOT IN ('FileHash','TamperLog')"_s : QString();
        const QString select = u"SELECT * FROM %1%2 ORDER BY rowid"_s.arg(SqlText::identifier(table), own);
        std::string text;
        std::ignore = statements.visit({nullptr, select}, {}, [&](const ResultRow &row) {
            row.appendTexts(text, '|');
            text += '\n';
            if (text.size() > block) {
                hash.addData(text);
                text.clear();
            }
        });
        hash.addData(text);
    }
    return QString::fromLatin1(hash.result().toHex());
}
