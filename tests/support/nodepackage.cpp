#include "support/nodepackage.h"

#include <QDir>
#include <QStandardPaths>

using namespace Qt::StringLiterals;
using namespace TestSupport;

NodePackage::NodePackage(const QString &name)
    : node_(QStandardPaths::findExecutable(u"node"_s))
{
    const QDir folder(u"%1/tests/%2"_s.arg(QStringLiteral(NCX_SOURCE_DIR), name));
    program_ = folder.filePath(u"read.js"_s);
    if (node_.isEmpty() || !folder.exists(u"node_modules"_s))
        reason_ = u"node.js or the library is missing; scripts/test installs both (npm ci in tests/%1)"_s.arg(name);
}

ProcessResult NodePackage::run(const QString &workingFolder, const QStringList &arguments) const
{
    return ProcessRunner(node_).arguments(QStringList{program_} + arguments).workingFolder(workingFolder).run();
}
