#include "support/mcpdriver.h"
#include "support/testhome.h"

#include <gtest/gtest.h>

#include <QJsonArray>
#include <QJsonDocument>
#include <QTemporaryDir>

using namespace Qt::StringLiterals;
using namespace TestSupport;

namespace {

const QString conversionFailed = u"Value conversion failed with Object "_s;

/// Opens a new project of one CANopen line.
void openNewProject(McpDriver &server, const QString &path)
{
    ASSERT_TRUE(writeFile(path, "[GeneralSettings]\nline0type=1\n[Nodes]\n0\\name=can0\n"));
    ASSERT_EQ(server.ask(u"open_project"_s, {{u"path"_s, path}}), u"Project opened: "_s + path);
}

TEST(Profiles, EnterAProjectWithValuesThatTheCheckUnderstands)
{
    QTemporaryDir folder;
    const QString path = folder.filePath(u"device.ncxt"_s);
    McpDriver server;
    const QJsonArray ids = QJsonDocument::fromJson(server.ask(u"list_profiles"_s).toUtf8()).array();
    EXPECT_EQ(ids.size(), 22);
    for (const QJsonValue id : ids) {
        SCOPED_TRACE(qPrintable(id.toString()));
        openNewProject(server, path);
        const QJsonArray indices = server.resourceIndices(id.toString());
        EXPECT_FALSE(indices.isEmpty());
        const QString told =
            server.ask(u"import_profile_indices"_s, {{u"profile"_s, id}, {u"line"_s, 0}, {u"indices"_s, indices}});
        EXPECT_TRUE(told.startsWith(u"Imported %1 object(s) from profile %2 into line 0: "_s.arg(
            QString::number(indices.size()), id.toString())))
            << qPrintable(told.left(200));
        EXPECT_FALSE(told.contains("\nSkipped "_L1)) << qPrintable(told.left(200));
        EXPECT_TRUE(told.contains("\n\ncheck_model: "_L1));
        EXPECT_FALSE(told.contains(conversionFailed)) << qPrintable(told.sliced(told.indexOf(conversionFailed), 60));
    }
    // The text that must not come does come where a value is bad.
    EXPECT_TRUE(server
                    .ask(u"set_subindex_value"_s,
                         {{u"line"_s, 0}, {u"index"_s, 0x1000}, {u"sub"_s, 0}, {u"defaultValue"_s, u"0xy"_s}})
                    .contains(conversionFailed + u"0x1000-0x00."_s));
    EXPECT_EQ(server.close().exitCode, 0);
}

} // namespace
