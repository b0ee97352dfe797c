#pragma once

#include "support/datacases.h"

#include <QString>
#include <QStringList>
#include <QTemporaryDir>

namespace TestSupport {

/// The folder of a case with the files that it starts with, and the shell in it.
///
/// A case of runs in a shell stands in a file of them:
///
///     == TITLE    what the case is about
///     # ...       a remark
///     $ COMMAND   runs a command of the shell, which finds the programs of this build
///
/// Behind a command stands what it says, on either output, with ${FOLDER} for the folder of the case, ${VERSION} and
/// ${BUILD} for those of the programs, ${TREE} for that of the sources, and [CODE] where it does not end with 0.
class CaseFolder
{
public:
    /// Copies the files of a folder in tests/data.
    explicit CaseFolder(const QString &files);

    QString path(const QString &name) const { return folder_.filePath(name); }
    /// Runs the commands of a case and holds what they say against it.
    void play(const TextCase &textCase) const;

private:
    QStringList said(const QString &command) const;

    QTemporaryDir folder_;
};

} // namespace TestSupport
