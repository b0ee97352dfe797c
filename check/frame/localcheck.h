#pragma once

#include "check/frame/check.h"

/// What a rule sees and says that looks at one object or message alone, and at the settings of its line. Nothing else
/// that is written to a project changes what it finds, so that its findings stay until that is written to.
class LocalCheck
{
public:
    /// Whether a rule that sees as much asks who uses which variables.
    static constexpr bool seesVariables = false;

    explicit LocalCheck(Check &check)
        : check_(check)
    {
    }

    quint8 lineNumber() const { return check_.line().number(); }
    const LineSettings &settings() const { return check_.line().settings(); }
    bool isSpecialPGN(quint32 pgn) const { return check_.isSpecialPGN(pgn); }
    bool corrects() const { return check_.corrects(); }

    void error(const QString &text) { check_.error(text); }
    void redError(const QString &text) { check_.redError(text); }
    void warning(WarningGroup group, const QString &text) { check_.warning(group, text); }
    void hint(WarningGroup group, const QString &text) { check_.hint(group, text); }
    /// Of the object itself.
    bool correct(quint16 index, quint8 subindex, const StoreRecords::SubIndexData &data, const QString &text)
    {
        return check_.correct(index, subindex, data, text);
    }

protected:
    Check &check() { return check_; }

private:
    Check &check_;
};

/// The same of a rule that asks who else uses a variable.
class VariableCheck : public LocalCheck
{
public:
    static constexpr bool seesVariables = true;

    using LocalCheck::LocalCheck;

    // As those of the line.
    const CheckedSubindex *firstUserOf(const QString &variable) { return check().line().firstUserOf(variable); }
    const CheckedSignal *firstSpnWith(const QString &variable) { return check().line().firstSpnWith(variable); }
    const CheckedSignal *firstSignalWith(const QString &variable) { return check().line().firstSignalWith(variable); }
};
