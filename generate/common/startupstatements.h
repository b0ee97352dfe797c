#pragma once

#include <QString>
#include <QStringList>

#include <functional>

class CodeWriter;
struct Dialect;

/// Statements of the start-up functions. An `indent` stands before each line of a statement.
class StartUpStatements
{
public:
    StartUpStatements(CodeWriter &out, const Dialect &dialect)
        : out_(out)
        , dialect_(dialect)
    {
    }

    /// Calls a function of the stack, and ends the function under way where that fails.
    void call(const QString &indent, const QString &call) const;
    /// Ends the function if `retVal` is not RET_OK.
    void check(const QString &indent) const;
    /// What `write` prints, for a stack that has the macro.
    void guarded(const QString &macro, const std::function<void()> &write) const;
    /// Copies the CAN FD modes of the caller, if there are any, into the structures of the start-up. `step` is the
    /// further indentation of what depends on a condition, `lines` the expressions of the lines.
    void modes(const QString &indent, const QString &step, const QStringList &structures,
               const QStringList &lines) const;

private:
    CodeWriter &out_;
    const Dialect &dialect_;
};
