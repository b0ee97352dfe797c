#pragma once

#include "candb/dbcscanner.h"

#include <QHash>

/// Reads the text of a DBC file into a database.
///
/// What refers to a frame, signal or node that the file does not have, and statements that the database has no place
/// for, are kept as they stand. Reading ends at the first fault of the syntax.
class DbcReader : private DbcScanner
{
public:
    /// The file's database, or nothing: `errorText` then tells line and fault.
    std::optional<CANdb::Database> read(const QString &text);
    using DbcScanner::errorText;

private:
    // Statements
    using Statement = void (DbcReader::*)();
    static const QHash<QString, Statement> &statements();
    void readVersion();
    void readNewSymbols();
    void readBitTiming();
    void readNodes();
    void readValueTable();
    void readMessage();
    void readSignal();
    void readComment();
    void readDefinition();
    void readDefault();
    void readAttribute();
    void readValues();
    void readValueType();
    void readMultiplexing();
    void keepStatement();

    /// What a comment or an attribute is about: fields of the record, or nothing if there is no such record.
    struct Target
    {
        QString *comment = nullptr;
        CANdb::Attributes *attributes = nullptr;
    };
    /// What a target is wanted for: the text of a comment, or an attribute by its name.
    Target readTarget(const std::optional<QString> &attribute = {});
    CANdb::Message *message(quint32 id, const std::optional<QString> &attribute);
    CANdb::Signal *expectSignal(bool forComment = false);
    QString valueOf(const QString &attribute, const Token &value) const;

    qsizetype statementStart_ = 0;
    CANdb::Database database_;
    /// Places of messages; of one identifier there are two where a device sends and receives it.
    QHash<quint32, QList<qsizetype>> messagesById_;
    QHash<quint32, qsizetype> attributesEnded_; ///< how many of these have all of their attributes
    /// Places of messages and signals, by the identifier of the one and the name of the other.
    QHash<std::pair<quint32, QString>, QList<std::pair<qsizetype, qsizetype>>> signalsByName_;
    QHash<QString, qsizetype> nodeByName_;
};
