#pragma once

#include "store/objectdatabase.h"

#include <functional>

namespace StoreTests {

/// The rest of a line: words, texts in double quotes and {fields} of a record.
class Arguments
{
public:
    explicit Arguments(const QString &text);

    bool isEmpty() const { return next_ == tokens_.size(); }
    /// The next one without its quotes or braces; empty behind the last.
    QString take();
    quint32 takeNumber();

private:
    QStringList tokens_;
    qsizetype next_ = 0;
};

/// Calls an operation with what the line gives it; the result is what it returned and the records that it filled.
using Operation = std::function<QString(ObjectDataBase &, Arguments &)>;

/// By name; null for one that there is not.
Operation operation(const QString &name);

} // namespace StoreTests
