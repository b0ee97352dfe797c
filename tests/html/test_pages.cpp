#include "support/processrunner.h"
#include "support/testhome.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QRegularExpression>
#include <QStandardPaths>
#include <QUrl>

using namespace Qt::StringLiterals;
using TestSupport::ProcessResult;
using TestSupport::ProcessRunner;

namespace {

QString browser()
{
    for (const char *name : {"chromium", "chromium-browser", "google-chrome"}) {
        const QString path = QStandardPaths::findExecutable(QString::fromLatin1(name));
        if (!path.isEmpty())
            return path;
    }
    return {};
}

/// Generates from the project of an example.
void generate(const QString &example, const QTemporaryDir &folder)
{
    const QDir source(QStringLiteral(NCX_SOURCE_DIR "/examples/") + example);
    for (const QString &name : source.entryList(QDir::Files))
        QFile::copy(source.filePath(name), folder.filePath(name));
    const QString project = source.entryList({u"*.ncxt"_s}).value(0);
    QStringList arguments{u"-project"_s, folder.filePath(project)};
    arguments += QString::fromUtf8(TestSupport::readFile(source.filePath(u"args"_s))).split(u'\n', Qt::SkipEmptyParts);
    const ProcessResult result = ProcessRunner(u"ncx_cli"_s).arguments(arguments).workingFolder(folder.path()).run();
    EXPECT_EQ(result.exitCode, 0) << qPrintable(result.output);
}

/// The visitor's page after it has been to the page, as the browser prints it when it has come to rest.
ProcessResult visit(const QString &program, const QString &page)
{
    const QTemporaryDir profile;
    const QString visitor = QUrl::fromLocalFile(QStringLiteral(NCX_SOURCE_DIR "/tests/html/visitor.html")).toString();
    const QByteArray query = QUrl::toPercentEncoding(QUrl::fromLocalFile(page).toString());
    // Messages of the page's console go to the error output.
    return ProcessRunner(program)
        .arguments({u"--headless"_s, u"--no-sandbox"_s, u"--disable-gpu"_s, u"--disable-dev-shm-usage"_s,
                    u"--no-first-run"_s, u"--disable-extensions"_s, u"--disable-background-networking"_s,
                    u"--allow-file-access-from-files"_s, u"--enable-logging=stderr"_s, u"--virtual-time-budget=10000"_s,
                    u"--user-data-dir="_s + profile.path(), u"--dump-dom"_s,
                    visitor + u'?' + QString::fromLatin1(query)})
        .run();
}

} // namespace

TEST(Pages, LinksLeadToWhatTheyName)
{
    const QString program = browser();
    if (program.isEmpty())
        GTEST_SKIP() << "Chromium is missing";
    for (const QString &example : {u"fd_device"_s, u"j1939_sensor"_s}) {
        SCOPED_TRACE(example.toStdString());
        const QTemporaryDir folder;
        generate(example, folder);
        const QStringList pages = QDir(folder.path()).entryList({u"*.html"_s});
        ASSERT_EQ(pages.size(), 1);
        const ProcessResult result = visit(program, folder.filePath(pages.first()));
        ASSERT_EQ(result.exitCode, 0) << qPrintable(result.errors);
        EXPECT_FALSE(result.errors.contains(u"CONSOLE"_s)) << qPrintable(result.errors);
        static const QRegularExpression findings(u"<pre id=\"result\">(\\d+) links(.*?)</pre>"_s,
                                                 QRegularExpression::DotMatchesEverythingOption);
        const QRegularExpressionMatch match = findings.match(result.output);
        ASSERT_TRUE(match.hasMatch()) << qPrintable(result.output);
        EXPECT_GE(match.captured(1).toInt(), 4);
        EXPECT_EQ(match.captured(2), QString());
    }
}
