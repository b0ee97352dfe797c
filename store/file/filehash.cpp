#include "store/file/filehash.h"

#include "store/statements/statements.h"

#include <QCryptographicHash>
#include <QStringList>
#include <QVariant>

#include <future>
#include <string>
#include <tuple>
#include <utility>

using namespace Qt::StringLiterals;

namespace {

/// A hash that is computed while the next text is made: it takes as long as to read the rows.
class BlockHash
{
public:
    void add(std::string text)
    {
        wait();
        text_ = std::move(text);
        // On a thread of its own where there is one to be had.
        added_ = std::async(std::launch::async | std::launch::deferred, [this] { hash_.addData(text_); });
    }
    QByteArray result()
    {
        wait();
        return hash_.result();
    }

private:
    void wait()
    {
        if (added_.valid())
            added_.get();
    }

    QCryptographicHash hash_{QCryptographicHash::Sha256};
    std::string text_;
    std::future<void> added_; ///< the last, so that it ends before what it uses
};

} // namespace

QString FileHash::compute(Statements &statements)
{
    constexpr std::size_t block = 1 << 18; // of rows that are hashed at once
    BlockHash hash;
    std::string text;
    const QStringList tables =
        statements.list({nullptr, u"SELECT name FROM sqlite_master WHERE type='table' ORDER BY name"_s}, {},
                        [](const ResultRow &row) { return row.text(0); });
    for (const QString &table : tables) {
        text += (table.toUtf8() + '\n').toStdString();
        const bool holdsHash = table.compare("MiscSettings"_L1, Qt::CaseInsensitive) == 0;
        const QString own = holdsHash ? u" WHERE item NOT IN ('FileHash','TamperLog')"_s : QString();
        const QString select = u"SELECT * FROM %1%2 ORDER BY rowid"_s.arg(SqlText::identifier(table), own);
        std::ignore = statements.visit({nullptr, select}, {}, [&](const ResultRow &row) {
            row.appendTexts(text, '|');
            text += '\n';
            if (text.size() > block)
                hash.add(std::exchange(text, {}));
        });
    }
    hash.add(std::move(text));
    return QString::fromLatin1(hash.result().toHex());
}
