#pragma once

#include "check/frame/finding.h"

#include <QString>

/// What to do about a finding, as a sentence. The table of docs/checks.md is the only place where it stands; it is
/// compiled in. Empty for what the table does not know.
QString adviceOn(const CheckFinding &finding);
