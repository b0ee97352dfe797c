#pragma once

#include "generate/base/filegenerator.h"
#include "support/processrunner.h"
#include "support/projectbuilder.h"
#include "support/testhome.h"

#include <QDir>

#include <gtest/gtest.h>

namespace TestSupport {

/// A folder that a generator writes into, and whose C sources are compiled against the stack headers of the tests.
class GeneratedC
{
public:
    QString path(const QString &name) const { return folder_.filePath(name); }
    QString text(const QString &name) const { return QString::fromUtf8(readFile(path(name))); }
    void add(const QString &name, const QString &text) const { writeFile(path(name), text.toUtf8()); }

    /// Runs a generator on the project to its end.
    void generate(AbstractGenerator &generator, const ProjectBuilder &project, bool multiLine = false) const
    {
        generator.setDatabase(project.store());
        generator.setOutputFolder(folder_.path());
        generator.setBaseName(QStringLiteral("device"));
        EXPECT_TRUE(project.store()->setMiscSetting(QStringLiteral("generateML"),
                                                    multiLine ? QStringLiteral("true") : QStringLiteral("false")));
        generator.startJob();
        generator.waitForJob();
    }

    /// Compiles and links the sources, which are of this folder or of tests/stack, without a warning.
    ProcessResult build(const QStringList &sources, const QStringList &options = {}) const
    {
        QStringList arguments{QStringLiteral("cc"),      QStringLiteral("-std=c99"), QStringLiteral("-Wall"),
                              QStringLiteral("-Wextra"), QStringLiteral("-Werror"),  QStringLiteral("-I.")};
        arguments += {QStringLiteral("-I"), stackFolder() + QStringLiteral("/include"), QStringLiteral("-o"),
                      QStringLiteral("walker")};
        arguments += options;
        for (const QString &source : sources)
            arguments += QFile::exists(path(source)) ? source : stackFolder() + u'/' + source;
        return ProcessRunner(QStringLiteral("/usr/bin/env")).arguments(arguments).workingFolder(folder_.path()).run();
    }

    ProcessResult run() const { return ProcessRunner(path(QStringLiteral("walker"))).run(); }

private:
    static QString stackFolder() { return QStringLiteral(NCX_SOURCE_DIR "/tests/stack"); }

    QTemporaryDir folder_;
};

} // namespace TestSupport
