#pragma once

#include "ncx/settling/mends.h"

#include <span>

/// A decision about a description.
struct SettlingRow
{
    /// The rules of the check whose findings it settles (check/rules), with a blank between them; empty for what is
    /// asked before the first check.
    QLatin1StringView rules;
    SettlingTopic::Kind kind;
    QLatin1StringView title;
    QLatin1StringView reason;
    QLatin1StringView next;
    bool (*mend)(SettledLine &, const FindingPlace &);
    bool isConfigured = false; ///< for the values of a configured device only

    bool settles(const QString &rule) const;
    SettlingTopic topic() const { return {kind, title, reason, next}; }
};

/// The one table of decisions. Of several rows for one rule the first one counts that has something to do; those that
/// repair are passed over unless that is wanted.
std::span<const SettlingRow> settlingRows();
