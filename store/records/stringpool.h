#pragma once

#include "store/statements/boundstatement.h"

#include <QHash>
#include <QList>
#include <QString>

#include <optional>

/// The table `Strings`: every name, description, device class and denotation of a project once per distinct text.
///
/// Rows elsewhere refer to a text by its id. A text with a single quote is the exception to "once": it gets a new row
/// each time it is interned, and is answered with the id of the first; the spare rows go at the next save.
class StringPool
{
public:
    explicit StringPool(Statements &statements)
        : statements_(statements)
    {
    }

    /// Id of the text, which is added where it is new; -1 if it could not be added.
    int idOf(const QString &text);
    /// The text of an id; empty for an unknown one.
    QString textOf(int id);
    /// The text whose id stands in a column; null for a NULL.
    QString textOf(const ResultRow &row, int column);
    /// Makes the next question read the whole table anew, unless it is as it was when that was done last.
    void reload();
    /// A row of the table has been written, by whomever.
    void rowWritten() { isAsRead_ = false; }
    /// Makes `textOf` answer without the database, by one scan for the first call after an open.
    void loadTexts();
    /// Deletes the texts that no row of these lines or of the network view refers to.
    [[nodiscard]] bool removeUnused(const QList<quint8> &lines);
    void clear();
    /// How often the texts were let go: rows read before the last time may hold texts of then.
    qint64 clearings() const { return clearings_; }
    /// To be called before the file is closed.
    void releaseStatements() { insertion_.reset(); }

private:
    static bool hasARowPerInterning(const QString &text);
    int insert(const QString &text);
    void readIfStale();

    Statements &statements_;
    std::optional<BoundStatement> insertion_; ///< kept prepared: an import interns thousands of texts one by one
    bool isStale_ = false;
    bool isAsRead_ = false; ///< nothing was written since all was read anew
    QHash<int, QString> texts_;
    bool textsLoaded_ = false;
    qint64 clearings_ = 0;
    QHash<QString, int> ids_;         ///< interned during this session: by the text with its quotes doubled
    QHash<QString, int> firstQuoted_; ///< first row of each text that holds a quote
};
