#include "candb/dbcscanner.h"

#include <algorithm>
#include <cmath>
#include <limits>

using namespace Qt::StringLiterals;

namespace {

bool beginsWord(QChar c)
{
    return c == u'_' || (c < u'\x80' && c.isLetter());
}

bool isDigit(QChar c)
{
    return c >= u'0' && c <= u'9';
}

bool isInWord(QChar c)
{
    return beginsWord(c) || isDigit(c);
}

} // namespace

void DbcScanner::fail(const QString &text)
{
    if (ok())
        error_ = u"Line %1: %2"_s.arg(QString::number(token_.line), text);
}

void DbcScanner::advance()
{
    token_ = scan();
}

void DbcScanner::skipSpace()
{
    for (; position_ < text_.size(); ++position_) {
        const QChar c = text_.at(position_);
        if (c == u'\n')
            ++line_;
        else if (!c.isSpace())
            return;
    }
}

DbcScanner::Token DbcScanner::scan()
{
    skipSpace();
    Token token{.start = position_, .end = position_, .line = line_};
    if (position_ >= text_.size())
        return token;
    const auto takeWhile = [this](auto belongs) {
        while (position_ < text_.size() && belongs(text_.at(position_)))
            ++position_;
    };
    const QChar first = text_.at(position_);
    const QChar second = position_ + 1 < text_.size() ? text_.at(position_ + 1) : QChar();
    if (first == u'"')
        return scanText();
    if (beginsWord(first)) {
        token.kind = Kind::Word;
        takeWhile(isInWord);
    } else if (isDigit(first) || ((first == u'-' || first == u'+' || first == u'.') && (isDigit(second)))) {
        token.kind = Kind::Number;
        ++position_;
        takeWhile([](QChar c) { return isDigit(c) || c == u'.'; });
        if (position_ < text_.size() && (text_.at(position_) == u'e' || text_.at(position_) == u'E')) {
            position_ += 2; // with the sign or first digit of the exponent
            takeWhile(isDigit);
        }
        position_ = std::min(position_, text_.size());
    } else {
        token.kind = Kind::Symbol;
        ++position_;
    }
    token.end = position_;
    token.text = text_.sliced(token.start, token.end - token.start);
    return token;
}

DbcScanner::Token DbcScanner::scanText()
{
    Token token{.kind = Kind::Text, .start = position_, .line = line_};
    for (++position_; position_ < text_.size(); ++position_) {
        QChar c = text_.at(position_);
        if (c == u'"') {
            token.end = ++position_;
            return token;
        }
        if (c == u'\\' && position_ + 1 < text_.size() && text_.at(position_ + 1) == u'"')
            c = text_.at(++position_);
        if (c == u'\n')
            ++line_;
        token.text.append(c);
    }
    token.end = position_;
    fail(u"Text without end"_s);
    return token;
}

bool DbcScanner::takeSymbol(QChar symbol)
{
    if (token_.kind != Kind::Symbol || token_.text != symbol)
        return false;
    advance();
    return true;
}

void DbcScanner::expectSymbol(QChar symbol, QLatin1StringView where)
{
    if (!takeSymbol(symbol))
        fail(u"'%1' expected (%2)"_s.arg(symbol).arg(where));
}

QString DbcScanner::expect(Kind kind, QLatin1StringView fault)
{
    if (token_.kind != kind) {
        fail(fault);
        return {};
    }
    QString text = token_.text;
    advance();
    return text;
}

double DbcScanner::expectNumber(QLatin1StringView fault)
{
    bool isNumber = token_.kind == Kind::Number;
    double number = isNumber ? token_.text.toDouble(&isNumber) : 0;
    // The range of a signal of many bytes may be beyond that of the type.
    if (!isNumber && std::isinf(number)) {
        number = std::copysign(std::numeric_limits<double>::max(), number);
        isNumber = true;
    }
    if (isNumber)
        advance();
    else
        fail(fault);
    return number;
}

quint32 DbcScanner::expectUnsigned(QLatin1StringView fault)
{
    bool isNumber = token_.kind == Kind::Number;
    const quint32 number = isNumber ? token_.text.toUInt(&isNumber) : 0;
    if (isNumber)
        advance();
    else
        fail(fault);
    return number;
}

CANdb::ValueNames DbcScanner::expectValueNames(QLatin1StringView where)
{
    CANdb::ValueNames values;
    while (ok() && token_.kind == Kind::Number) {
        const double value = expectNumber("Value expected"_L1);
        values.append({value, expect(Kind::Text, "Name of a value expected"_L1)});
    }
    expectSymbol(u';', where);
    return values;
}
