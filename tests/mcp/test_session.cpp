#include "support/mcpdriver.h"
#include "support/testhome.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

using namespace Qt::StringLiterals;
using namespace TestSupport;

namespace {

struct Build
{
    QString program;
    QString name;
    bool knowsCANopen;
};

const QList<Build> builds{
    {u"ncx_cli"_s, u"CANopen NodeComposer"_s, true},
    {u"ncx_cli_j1939"_s, u"J1939 NodeComposer"_s, false},
    {u"ncx_cli_can"_s, u"CAN NodeComposer"_s, true},
};

/// The text projects of the examples.
QStringList exampleProjects()
{
    QStringList projects;
    const QDir examples(QStringLiteral(NCX_SOURCE_DIR "/examples"));
    for (const QString &name : examples.entryList(QDir::Dirs | QDir::NoDotAndDotDot, QDir::Name)) {
        const QDir folder(examples.filePath(name));
        for (const QString &project : folder.entryList({u"*.ncxt"_s, u"*.ncxp"_s}, QDir::Files))
            projects.append(folder.filePath(project));
    }
    return projects;
}

/// Opens, reads, edits, checks, generates and saves a copy of the project.
void playSession(const Build &build, const QString &project)
{
    QTemporaryDir folder;
    ASSERT_TRUE(QDir(folder.path()).mkdir(u"project"_s));
    const QString path = folder.filePath(u"project/device."_s + QFileInfo(project).suffix());
    ASSERT_TRUE(QFile::copy(project, path));
    // The safety devices look for their templates beside their own folder.
    ASSERT_TRUE(QFile::link(QStringLiteral(NCX_SOURCE_DIR "/examples/stack"), folder.filePath(u"stack"_s)));
    ASSERT_TRUE(QDir(folder.path()).mkdir(u"out"_s));
    const QString out = folder.filePath(u"out"_s);

    McpDriver server(build.program);
    ASSERT_EQ(server.ask(u"open_project"_s, {{u"path"_s, path}}), u"Project opened: "_s + path);
    EXPECT_TRUE(server.ask(u"list_lines"_s).startsWith("[{\"line\":0,"_L1));
    EXPECT_TRUE(server.ask(u"get_line"_s, {{u"line"_s, 0}}).startsWith("{\"dcfPath\":"_L1));

    QJsonObject newLine{{u"line"_s, 200}};
    if (build.program == "ncx_cli_can"_L1)
        newLine.insert(u"lineType"_s, u"CANopen"_s);
    EXPECT_TRUE(server.ask(u"add_line"_s, newLine).startsWith("Line 200 added.\n\ncheck_model: "_L1));
    const QString added = server.ask(u"add_index"_s, {{u"line"_s, 200},
                                                      {u"index"_s, 0x2000},
                                                      {u"name"_s, u"New"_s},
                                                      {u"objectType"_s, u"Variable"_s},
                                                      {u"dataType"_s, 5}});
    if (build.knowsCANopen)
        EXPECT_TRUE(added.startsWith("Index 0x2000 added on line 200, with subindex 0.\n\ncheck_model: "_L1));
    else
        EXPECT_EQ(added, u"! This build (%1) does not support CANopen object dictionary tools."_s.arg(build.name));
    EXPECT_TRUE(server.ask(u"delete_line"_s, {{u"line"_s, 200}}).startsWith("Line 200 deleted.\n\ncheck_model: "_L1));

    const QString check = server.ask(u"check_model"_s);
    EXPECT_EQ(check.startsWith("{\"errorCount\":0,"_L1), !check.startsWith(u'!')) << qPrintable(check);
    const QString generated = server.ask(u"generate"_s, {{u"outputPath"_s, out}, {u"disableCheck"_s, true}});
    EXPECT_TRUE(generated.startsWith("Generation completed.\n\nCheck of model consistency started\n"_L1));
    EXPECT_TRUE(generated.contains(u"\nGeneration of gen_indices.h in %1 started\n"_s.arg(out)));
    EXPECT_FALSE(generated.contains(u'<')) << qPrintable(generated);
    EXPECT_TRUE(QFile::exists(out + u"/gen_indices.h"_s));
    EXPECT_FALSE(QFile::exists(folder.filePath(u"project/gen_indices.h"_s)));
    EXPECT_EQ(server.ask(u"save_project"_s), u"Project saved."_s);
    const ProcessResult end = server.close();
    EXPECT_EQ(end.exitCode, 0);
    EXPECT_EQ(end.output + end.errors, QString());
}

TEST(Session, WorksOnEachExampleInEachBuild)
{
    const QStringList projects = exampleProjects();
    EXPECT_FALSE(projects.isEmpty());
    for (const Build &build : builds) {
        for (const QString &project : projects) {
            SCOPED_TRACE(qPrintable(build.program + u" "_s + project));
            playSession(build, project);
        }
    }
}

} // namespace
