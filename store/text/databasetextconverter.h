#pragma once

#include "store/text/tableform.h"

#include <QHash>
#include <QObject>
#include <QString>
#include <QVariant>

#include <optional>

class QIODevice;
class ResultRow;
class ProjectTables;
namespace SettingsText {
class Reader;
class Writer;
} // namespace SettingsText

/// Turns an open project into a text file that can be compared and merged, and back.
///
/// The text (`SettingsText`) has a group per table and in it one per row: "0x1018" for an object, "0x1018/1" for a
/// subindex, the number for a line, PGN or service, "61184/110" for an SPN. A PGN or SPN that stands in the table
/// twice, once in each direction, has "_2" behind the number of its second row; the row's own keys tell its number and
/// direction. Names and the descriptions of objects stand as text, everything else as the row has it.
///
/// The text is no full copy. It leaves out raw CAN, the network tables, the columns of a subindex that only matter to
/// editors, and, where no line of the project speaks a protocol, the tables of that protocol.
///
/// Nobody is notified of what the converter writes. It wants a transaction around it.
class DatabaseTextConverter : public QObject
{
    Q_OBJECT

public:
    explicit DatabaseTextConverter(QObject *parent = nullptr)
        : QObject(parent)
    {
    }

    void setStore(ProjectTables *store) { store_ = store; }
    void setInputFile(const QString &path) { file_ = path; }
    void setOutputFile(const QString &path) { file_ = path; }

    /// Makes every NULL of a number or text column 0 or empty in the database, as it stands in the text.
    void replaceNulls();
    /// Writes the project, replacing the file as a whole or, where that fails, not at all (which is logged). Only in a
    /// folder that takes no new files it is written over. NULLs are replaced in the database first, unless that has
    /// just been done. False only if no file has been set.
    bool convertSqlToText();
    /// True if the last conversion to text could not write its file.
    bool writeFailed() const { return writeFailed_; }
    /// Reads a file into a new project. What cannot be understood or stored is logged and passed over. False if no file
    /// has been set or it holds no group of a table.
    bool convertTextToSql();

private:
    struct TextColumn
    {
        QByteArray key;     ///< escaped, behind that of the row
        QString expression; ///< on the row "t"
        enum
        {
            Plain,
            Pooled, ///< the id of a text
            Bytes
        } kind;
    };

    QStringList tableNames() const;
    void replaceNulls(const QString &table);
    bool writeTables(const QStringList &tables, QIODevice &device);
    void writeTable(const QString &table, const TableForm &form, SettingsText::Writer &writer);
    void writeSettings(const QString &table, SettingsText::Writer &writer);
    void writeRows(const QString &table, const TableForm &form, SettingsText::Writer &writer);
    QLatin1StringView pathOf(const QString &table, const TableForm &form) const;
    QString orderOf(const QString &table, const TableForm &form) const;
    QList<TextColumn> textColumnsOf(const QString &table, const TableForm &form) const;
    void writeCell(const TextColumn &column, const ResultRow &row, int place, SettingsText::Writer &writer);
    QByteArray pooledText(const ResultRow &row, int place);

    [[nodiscard]] bool execute(const char *operation, const QString &text, const QVariantList &values = {});
    void readGroup(const QString &group, const SettingsText::Reader &reader);
    void readLines(const SettingsText::Reader &reader);
    void addLinesOf(const QStringList &groups);
    void readSettings(const QString &group, TableForm::Table kind, const SettingsText::Reader &reader);
    void readObjects(const QString &group, const TableForm &form, const SettingsText::Reader &reader);
    void readRows(const QString &group, const TableForm &form, const SettingsText::Reader &reader);

    bool writeFailed_ = false;
    bool nullsAreReplaced_ = false; ///< since the last conversion
    ProjectTables *store_ = nullptr;
    std::optional<QString> file_;
    QHash<qint64, QByteArray> pool_; ///< the texts of the project as they stand in the file, while it is written
};
