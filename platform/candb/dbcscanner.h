#pragma once

#include "candb/candb.h"

#include <QStringView>

/// The words, numbers, texts and symbols of a DBC file, one after the other. Reading ends at the first fault.
class DbcScanner
{
public:
    /// Line and fault; empty as long as there is none.
    const QString &errorText() const { return error_; }

protected:
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

    void advance();
    bool ok() const { return error_.isEmpty(); }
    void fail(const QString &text);
    bool isWord(QLatin1StringView word) const { return token_.kind == Kind::Word && token_.text == word; }
    bool takeSymbol(QChar symbol);
    void expectSymbol(QChar symbol, QLatin1StringView where);
    QString expect(Kind kind, QLatin1StringView fault);
    double expectNumber(QLatin1StringView fault);
    quint32 expectUnsigned(QLatin1StringView fault);
    CANdb::ValueNames expectValueNames(QLatin1StringView where);

    QString text_;
    Token token_;

private:
    Token scan();
    Token scanText();
    void skipSpace();

    qsizetype position_ = 0;
    int line_ = 1;
    QString error_;
};
