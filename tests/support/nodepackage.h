#pragma once

#include "support/processrunner.h"

namespace TestSupport {

/// A program for node.js among the tests (tests/NAME/read.js), with the libraries that its lock file names.
class NodePackage
{
public:
    /// Puts the program and its libraries into a folder.
    NodePackage(const QString &name, const QString &folder);

    bool isInstalled() const { return reason_.isEmpty(); }
    /// Why it cannot be run here.
    QString reason() const { return reason_; }
    ProcessResult run(const QStringList &arguments) const;

private:
    QString node_;
    QString folder_;
    QString reason_;
};

} // namespace TestSupport
