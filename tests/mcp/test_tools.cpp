#include "check/modelchecker.h"
#include "mcp/call/answerform.h"
#include "mcp/server/resources.h"
#include "mcp/session/projectsession.h"
#include "ncx_cli/mcp/mcpmainapp.h"
#include "support/mcpdriver.h"
#include "support/projectbuilder.h"
#include "support/testhome.h"

#include <gtest/gtest.h>

#include <QJsonArray>
#include <QJsonDocument>
#include <QTemporaryDir>

using namespace Qt::StringLiterals;
using namespace TestSupport;

namespace {

/// Tools on a project, without the wire and so without the schemas.
class Tools : public testing::Test
{
protected:
    Tools()
    {
        ProjectBuilder project;
        project.object(0x2000, u"List"_s).sub(0, u"Entries"_s, [](auto &sub) { sub.defaultvalue = u"2"_s; });
        project.object(0x2001, u"Other"_s).sub(0, u"Other"_s);
        const QString path = folder_.filePath(u"device.ncxp"_s);
        EXPECT_TRUE(project.save(path));
        EXPECT_EQ(run(u"open_project"_s, {{u"path"_s, path}}), u"Project opened: "_s + path);
    }

    QString run(const QString &tool, const QJsonObject &arguments = {})
    {
        const Reply reply =
            catalogue_.find(tool)->run(ToolCall(session_, *catalogue_.find(tool), arguments, AnswerForm::plain()));
        return McpDriver::told(QJsonDocument::fromJson(reply.line(1)).object());
    }
    QTemporaryDir folder_;
    ProjectSession session_;
    ToolCatalogue catalogue_{MCPMainApp::form().families, AnswerForm::plain()};
};

const QJsonObject object2000{{u"line"_s, 0}, {u"index"_s, 0x2000}};

QJsonObject with(QJsonObject object, const QJsonObject &more)
{
    for (auto it = more.begin(); it != more.end(); ++it)
        object.insert(it.key(), it.value());
    return object;
}

TEST_F(Tools, TellMissingArgumentsByTheirGroup)
{
    for (const auto &[tool, keys] : {std::pair(u"get_line"_s, u"line"_s),
                                     {u"get_index"_s, u"line and/or index"_s},
                                     {u"copy_index"_s, u"srcLine, srcIndex, destLine and/or destIndex"_s}})
        EXPECT_EQ(run(tool), u"-32602 Missing required argument: "_s + keys) << qPrintable(tool);
}

TEST_F(Tools, TellThatTheStoreIsGone)
{
    session_.store().closeDatabase();
    const QString gone = u"! Internal error: no database available."_s;
    const QJsonObject all{{u"line"_s, 9},
                          {u"index"_s, 0x2000},
                          {u"sub"_s, 0},
                          {u"globPattern"_s, u"*"_s},
                          {u"defaultValue"_s, u"1"_s},
                          {u"profile"_s, u"403"_s},
                          {u"indices"_s, QJsonArray{0x6040}},
                          {u"pgn"_s, 1},
                          {u"canId"_s, 1},
                          {u"direction"_s, u"Transmit"_s},
                          {u"name"_s, u"x"_s},
                          {u"spn"_s, 1},
                          {u"number"_s, 1},
                          {u"dataType"_s, 5},
                          {u"group"_s, u"stack"_s},
                          {u"key"_s, u"endian"_s},
                          {u"value"_s, 1}};
    for (const QString &tool :
         {u"list_lines"_s, u"add_line"_s, u"delete_line"_s, u"list_indices"_s, u"find_indices"_s, u"get_index"_s,
          u"delete_index"_s, u"get_subindex"_s, u"delete_subindex"_s, u"set_subindex_value"_s, u"set_index_name"_s,
          u"import_profile_indices"_s, u"get_settings"_s, u"get_setting"_s, u"set_setting"_s})
        EXPECT_EQ(run(tool, all), gone) << qPrintable(tool);
    for (const QString &tool : {u"list_pgns"_s, u"get_pgn"_s, u"add_pgn"_s, u"delete_pgn"_s, u"list_spns"_s,
                                u"get_spn"_s, u"add_spn"_s, u"delete_spn"_s, u"list_can_ids"_s, u"get_can_id"_s,
                                u"add_can_id"_s, u"delete_can_id"_s, u"add_data_element"_s, u"delete_data_element"_s}) {
        EXPECT_EQ(run(tool, all), gone) << qPrintable(tool);
        EXPECT_EQ(run(tool, with(all, {{u"direction"_s, u"x"_s}})),
                  u"-32602 Invalid direction: expected Transmit, Receive or Invalid"_s);
    }
    // What is wrong with the call itself comes before that.
    for (const auto &[tool, key, value, told] :
         {std::tuple(u"get_line"_s, u"line"_s, u"0"_s, u"! Line 0 does not exist."_s),
          {u"find_indices"_s, u"globPattern"_s, u""_s, u"-32602 Argument globPattern must not be empty"_s},
          {u"get_settings"_s, u"group"_s, u"x"_s, u"! Unknown settings group \"x\". Valid groups: general, stack."_s},
          {u"set_setting"_s, u"key"_s, u"udsserver_version"_s, u"! Setting udsserver_version is read-only."_s}})
        EXPECT_EQ(run(tool, with(all, {{key, value}})), told);
}

TEST_F(Tools, TellThatThereAreNoProfiles)
{
    session_.setProfilePath(QString());
    const QString none = u"! No profile path configured - drop -codbpath to use the built-in reference profiles."_s;
    EXPECT_EQ(run(u"list_profiles"_s), none);
    EXPECT_EQ(run(u"list_profile_indices"_s), none);
    EXPECT_EQ(run(u"get_profile_index"_s), none);
    EXPECT_EQ(run(u"import_profile_indices"_s), none);
    const auto resource = [this](const QString &uri) {
        return McpDriver::told(QJsonDocument::fromJson(Resources::read(session_, uri).line(1)).object());
    };
    EXPECT_EQ(resource(u"codb://301"_s),
              u"-32002 No codb path configured - drop -codbpath to use the built-in reference profiles"_s);
    EXPECT_EQ(resource(u"301"_s), u"-32602 Unsupported resource URI (only codb://... is implemented): 301"_s);
    EXPECT_EQ(Resources::list(session_).line(1), "{\"id\":1,\"jsonrpc\":\"2.0\",\"result\":{\"resources\":[]}}\n");
    session_.setProfilePath(folder_.filePath(u"missing"_s));
    EXPECT_EQ(run(u"list_profiles"_s), u"[]"_s);
    EXPECT_EQ(resource(u"codb://301"_s), u"-32602 Unknown codb resource: codb://301"_s);
}

TEST_F(Tools, EndEditsWithWhatTheCheckSays)
{
    session_.handler().setCheckRules({});
    EXPECT_EQ(run(u"set_index_name"_s, with(object2000, {{u"name"_s, u"x"_s}})),
              u"Index 0x2000 on line 0 renamed to \"x\".\n\ncheck_model: OK (0 errors)."_s);

    const ProjectRule two = rule<ProjectCheck>("two"_L1, [](ProjectCheck &check) {
        check.hint(WG_CONFIG, u"<b>An info</b>"_s);
        check.error(u"An %1 error"_s);
    });
    const CheckRules rules{.common = {&two, 1}, .canOpen = {}, .j1939 = {}, .rawCan = {}};
    session_.handler().setCheckRules(rules);
    EXPECT_EQ(
        run(u"set_index_name"_s, with(object2000, {{u"name"_s, u"y"_s}})),
        u"Index 0x2000 on line 0 renamed to \"y\".\n\ncheck_model: 1 error(s):\n<b>An info</b>\n<strong>Error: </strong>An %1 error"_s);
    EXPECT_EQ(run(u"check_model"_s),
              u"! {\"errorCount\":1,\"errors\":[\"<b>An info</b>\",\"<strong>Error: </strong>An %1 error\"]}"_s);
    EXPECT_TRUE(run(u"generate"_s).startsWith("! Generation failed.\n"_L1));
    EXPECT_TRUE(run(u"generate"_s, {{u"disableCheck"_s, true}}).startsWith("Generation completed.\n"_L1));
}

TEST_F(Tools, HoldTheReaderBackDuringAGeneration)
{
    QStringList events;
    session_.setReadingEnabled = [&](bool enabled) { events.append(enabled ? u"on"_s : u"off"_s); };
    QObject::connect(&session_.handler(), &GeneratorMainHandler::finished, &session_, [&] { events.append(u"run"_s); });
    const QString usual = session_.handler().outputFolder();
    run(u"generate"_s, {{u"outputPath"_s, folder_.filePath(u"missing"_s)}});
    EXPECT_EQ(events, (QStringList{u"off"_s, u"run"_s, u"on"_s}));
    EXPECT_EQ(session_.handler().outputFolder(), usual);
}

TEST_F(Tools, SayOnlyWhatTheirOwnOperationSaid)
{
    session_.output().message(u"<i>left</i> over"_s);
    EXPECT_EQ(session_.output().collectedText(), u" over\n"_s);
    EXPECT_EQ(run(u"save_project"_s), u"Project saved."_s);
    EXPECT_EQ(session_.output().takeOutput(), QString());
}

TEST(Arguments, FitTheirSchemas)
{
    const Property number{.name = "n"_L1, .types = Properties::Types::scalar};
    const Property element = Properties::integer({}, 0, 65535, {});
    const Property list = Properties::array("list"_L1, element, {});
    const QList<std::pair<QByteArray, QString>> rows{
        {"{'n':1}", {}},
        {"{'n':1.5}", {}},
        {"{'n':'x'}", {}},
        {"{'n':false}", {}},
        {"{'n':[]}", u"Argument \"n\" must be of type string or number or boolean, got array."_s},
        {"{'list':[]}", {}},
        {"{'list':[0,7.0,65535]}", {}},
        {"{'list':[0,65536,-1]}", u"Argument \"list[1]\" is out of range (maximum 65535, got 65536)."_s},
        {"{'list':[0,1,null]}", u"Argument \"list[2]\" must be of type integer, got null."_s},
        {"{'list':{}}", u"Argument \"list\" must be of type array, got object."_s},
        {"{'list':9223372036854775807}", u"Argument \"list\" must be of type array, got integer."_s},
    };
    const Property optional[]{number, list};
    for (const auto &[json, problem] : rows) {
        const QJsonObject arguments = QJsonDocument::fromJson(QByteArray(json).replace('\'', '"')).object();
        EXPECT_FALSE(arguments.isEmpty());
        EXPECT_EQ(argumentProblem(arguments, {}, optional).value_or(QString()), problem) << json.constData();
    }
}

} // namespace
