#include "support/testhome.h"

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QStandardPaths>

using namespace Qt::StringLiterals;

namespace {

struct Home
{
    Home()
    {
        qputenv("HOME", folder.path().toUtf8());
        qunsetenv("XDG_DATA_HOME");
        qunsetenv("XDG_CONFIG_HOME");
        QCoreApplication::setOrganizationName(u"norvane"_s);
        QCoreApplication::setApplicationName(u"CANopen NodeComposer"_s);
        QCoreApplication::setApplicationVersion(u"4.3.3"_s);
    }
    QTemporaryDir folder;
};

Home &instance()
{
    static Home home;
    return home;
}

} // namespace

const QTemporaryDir &TestSupport::home()
{
    return instance().folder;
}

QString TestSupport::dataFolder()
{
    return QStandardPaths::writableLocation(QStandardPaths::AppLocalDataLocation);
}

QString TestSupport::corpusFolder()
{
    const QString folder = qEnvironmentVariable("NCX_CORPUS", QStringLiteral(NCX_SOURCE_DIR "/../shared/corpus"));
    return QDir(folder).exists() ? QDir::cleanPath(folder) : QString();
}

QByteArray TestSupport::readFile(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

bool TestSupport::writeFile(const QString &path, const QByteArray &content)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(content) == content.size();
}

void TestSupport::expectInFile(const QString &made, const QString &name)
{
    const QString path = QStringLiteral(NCX_SOURCE_DIR "/tests/data/") + name;
    if (qEnvironmentVariableIntValue("NCX_ACCEPT") == 1)
        writeFile(path, made.toUtf8());
    else
        EXPECT_EQ(made.toStdString(), readFile(path).toStdString()) << qPrintable(name);
}

int main(int argc, char **argv)
{
    testing::InitGoogleTest(&argc, argv);
    instance();
    const QCoreApplication application(argc, argv);
    return RUN_ALL_TESTS();
}
