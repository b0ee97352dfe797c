#include "support/nodepackage.h"

#include <QFile>
#include <QStandardPaths>

using namespace Qt::StringLiterals;
using namespace TestSupport;

NodePackage::NodePackage(const QString &name, const QString &folder)
    : node_(QStandardPaths::findExecutable(u"node"_s))
    , folder_(folder)
{
    const QString npm = QStandardPaths::findExecutable(u"npm"_s);
    if (node_.isEmpty() || npm.isEmpty()) {
        reason_ = u"node.js or npm is missing"_s;
        return;
    }
    for (const char *file : {"package.json", "package-lock.json", "read.js"})
        QFile::copy(u"%1/tests/%2/%3"_s.arg(QStringLiteral(NCX_SOURCE_DIR), name, QString::fromLatin1(file)),
                    u"%1/%2"_s.arg(folder, QString::fromLatin1(file)));
    // Scripts of the packages would build what only a bus needs.
    const ProcessResult result = ProcessRunner(npm)
                                     .arguments({u"ci"_s, u"--ignore-scripts"_s, u"--no-audit"_s, u"--no-fund"_s})
                                     .workingFolder(folder)
                                     .run();
    if (result.exitCode != 0)
        reason_ = u"the libraries cannot be installed: "_s + result.errors;
}

ProcessResult NodePackage::run(const QStringList &arguments) const
{
    return ProcessRunner(node_).arguments(QStringList{u"read.js"_s} + arguments).workingFolder(folder_).run();
}
