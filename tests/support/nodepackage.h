#pragma once

#include "support/processrunner.h"

namespace TestSupport {

/// A program for node.js among the tests (tests/NAME/read.js), with the libraries that its lock file names. The set-up
/// of the tests installs these beside it.
class NodePackage
{
public:
    explicit NodePackage(const QString &name);

    bool isInstalled() const { return reason_.isEmpty(); }
    /// Why it cannot be run here.
    QString reason() const { return reason_; }
    ProcessResult run(const QString &workingFolder, const QStringList &arguments) const;

private:
    QString node_;
    QString program_;
    QString reason_;
};

} // namespace TestSupport
