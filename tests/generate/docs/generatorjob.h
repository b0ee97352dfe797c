#pragma once

#include "generate/base/filegenerator.h"
#include "support/testhome.h"

#include <gtest/gtest.h>

#include <QDirIterator>
#include <QTemporaryDir>

namespace DocsTest {

/// Where a generator writes its file.
struct Target
{
    quint8 line = 0;
    bool multiLine = false;
    QString baseName = QStringLiteral("device");
};

/// Sets a generator up for a folder and runs its job; its file's path.
inline QString runJob(FileGenerator &generator, const std::shared_ptr<ObjectDataBase> &store, const QString &folder,
                      const Target &target = {})
{
    generator.setDatabase(store);
    generator.setOutputFolder(folder);
    generator.setBaseName(target.baseName);
    generator.setLine(target.line);
    generator.setMultiLine(target.multiLine);
    EXPECT_EQ(generator.startJob(), AbstractGenerator::Success);
    generator.waitForJob();
    EXPECT_EQ(generator.errorText(), QString());
    return folder + u'/' + generator.fileName();
}

/// The text that a generator writes.
inline QString textOf(FileGenerator &generator, const std::shared_ptr<ObjectDataBase> &store, const Target &target = {})
{
    const QTemporaryDir folder;
    return QString::fromUtf8(TestSupport::readFile(runJob(generator, store, folder.path(), target)));
}

/// The projects of the examples and goldens.
inline QStringList projectFiles()
{
    QStringList files;
    for (const char *root : {NCX_SOURCE_DIR "/examples", NCX_SOURCE_DIR "/tests/data/golden"}) {
        QDirIterator it(QString::fromUtf8(root), {QStringLiteral("*.ncxt")}, QDir::Files, QDirIterator::Subdirectories);
        while (it.hasNext())
            files.append(it.next());
    }
    return files;
}

} // namespace DocsTest
