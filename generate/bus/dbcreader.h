#pragma once

#include "generate/bus/candb.h"

#include <QHash>
#include <QStringView>

/// Reads the text of a DBC file into a database.
///
/// What refers to a frame, signal or node that the file does not have, and statements that the database has no place
/// for, are kept as they stand. Reading ends at the first fault of the syntax.
class DbcReader
{
public:
    /// The file's database, or nothing: `errorText` then tells line and fault.
    std::optional<CANdb::Database> read(const QString &text);
    QString errorText() const { return error_; }

private:
    enum class Kind
    {
        Word,
        Number,
        Text,
        Symbol,
        End
    };
    struct Token
    {
        Kind kind = Kind::End;
        QString text = {}; ///< of a text: without its quotes
        qsizetype start = 0;
        qsizetype end = 0;
        int line = 1;
    };

    // Tokens
    void advance();
    Token scan();
    Token scanText();
    void skipSpace();
    bool ok() const { return error_.isEmpty(); }
    void fail(const QString &text);
    bool isWord(QLatin1StringView word) const { return token_.kind == Kind::Word && token_.text == word; }
    bool takeSymbol(QChar symbol);
    void expectSymbol(QChar symbol, QLatin1StringView where);
    QString expect(Kind kind, QLatin1StringView fault);
    double expectNumber(QLatin1StringView fault);
    quint32 expectUnsigned(QLatin1StringView fault);
    CANdb::ValueNames expectValueNames(QLatin1StringView where);

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
    Target readTarget();
    CANdb::Message *message(quint32 id);
    CANdb::Signal *expectSignal();
    QString valueOf(const QString &attribute, const Token &value) const;

    QString text_;
    qsizetype position_ = 0;
    int line_ = 1;
    Token token_;
    qsizetype statementStart_ = 0;
    QString error_;
    CANdb::Database database_;
    QHash<quint32, qsizetype> messageById_;
    /// Places of message and signal, by the identifier of the one and the name of the other.
    QHash<std::pair<quint32, QString>, std::pair<qsizetype, qsizetype>> signalByName_;
    QHash<QString, qsizetype> nodeByName_;
};
