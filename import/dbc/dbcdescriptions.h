#pragma once

#include "candb/candb.h"

/// The descriptions of signals: their comments, and behind them what a project has no other place for.
class DbcDescriptions
{
public:
    QString of(const CANdb::Signal &signal);
    /// How many have got what; empty if none has.
    QString summary() const;

    static QString numberText(double number);

private:
    int scales_ = 0;
    int valueNames_ = 0;
    int multiplexed_ = 0;
};
