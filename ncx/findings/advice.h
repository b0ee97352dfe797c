#pragma once

#include "check/frame/finding.h"

#include <QString>

#include <span>

/// A row of the table of docs/checks.md, which is compiled in: it is the only place where these texts stand.
struct AdviceRow
{
    QString rule;
    QString message; ///< with %1 and so on for what it is about
    QString cause;
    QString remedy;
    QString group;
};

/// All rows in the order of the document; a rule with several messages has several.
std::span<const AdviceRow> adviceRows();

/// What to do about a finding, as a sentence. Empty for what the table does not know.
QString adviceOn(const CheckFinding &finding);
