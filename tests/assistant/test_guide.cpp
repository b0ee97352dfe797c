#include "ncx/guide/prompts.h"
#include "support/mcpdriver.h"
#include "support/testhome.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QJsonDocument>
#include <QRegularExpression>
#include <QTemporaryDir>

using namespace Qt::StringLiterals;
using namespace TestSupport;

// What documents and prompts tell an assistant to call is there, and works.

namespace {

const QString top = QStringLiteral(NCX_SOURCE_DIR);

QString document(const QString &name)
{
    return QString::fromUtf8(readFile(top + u"/docs/"_s + name));
}

class Guides : public testing::Test
{
protected:
    Guides()
    {
        for (const QString &file :
             {u"from_description/valve_terminal.eds"_s, u"can_database/tank.dbc"_s, u"io_module/device.ncxt"_s})
            QFile::copy(top + u"/examples/"_s + file, folder_.filePath(QFileInfo(file).fileName()));
        server_ = std::make_unique<McpDriver>(u"ncx"_s, QStringList(), folder_.path());
    }

    QTemporaryDir folder_;
    std::unique_ptr<McpDriver> server_;
};

class Recipes : public Guides, public testing::WithParamInterface<const char *>
{
};

TEST_P(Recipes, AreCallsThatWork)
{
    static const QRegularExpression block(u"```text calls\\n(.*?)```"_s,
                                          QRegularExpression::DotMatchesEverythingOption);
    int blocks = 0;
    for (const QRegularExpressionMatch &match : block.globalMatch(document(QString::fromLatin1(GetParam())))) {
        for (const QString &line : match.captured(1).split(u'\n', Qt::SkipEmptyParts)) {
            const QString arguments = line.section(u' ', 1);
            const QJsonDocument parsed = QJsonDocument::fromJson(arguments.toUtf8());
            EXPECT_TRUE(arguments.isEmpty() || parsed.isObject()) << qPrintable(line);
            const QString told = server_->ask(line.section(u' ', 0, 0), parsed.object());
            EXPECT_FALSE(told.startsWith("! "_L1) || told.startsWith("-32"_L1)) << qPrintable(line + u'\n' + told);
        }
        ++blocks;
    }
    EXPECT_GT(blocks, 1);
    EXPECT_EQ(server_->close().exitCode, 0);
}

INSTANTIATE_TEST_SUITE_P(Documents, Recipes, testing::Values("from-nothing.md", "assistants.md"), [](const auto &name) {
    return QString::fromLatin1(name.param).chopped(3).remove(u'-').toStdString();
});

/// A prompt with all of its arguments.
QString textOf(const Prompt &prompt)
{
    QJsonObject arguments;
    for (const Prompt::Argument &argument : prompt.arguments)
        arguments.insert(argument.name, argument.highest > 0       ? u"1"_s
                                        : argument.choices.empty() ? u"x"_s
                                                                   : QString(argument.choices.front()));
    EXPECT_EQ(prompt.problem(arguments), std::nullopt) << prompt.name.data();
    return prompt.text(arguments);
}

TEST_F(Guides, NameToolsAndArgumentsThatExist)
{
    server_->sendLine(R"({"id":1,"method":"tools/list"})");
    QMap<QString, QJsonObject> tools;
    for (const QJsonValue tool : server_->reply().value("result"_L1).toObject().value("tools"_L1).toArray())
        tools.insert(tool["name"_L1].toString(), tool["inputSchema"_L1]["properties"_L1].toObject());
    QStringList texts{document(u"assistants.md"_s), document(u"from-nothing.md"_s)};
    for (const Prompt &prompt : Prompt::all()) {
        texts.append(textOf(prompt));
        EXPECT_FALSE(texts.last().contains(QRegularExpression(u"\\{[a-z]"_s))) << qPrintable(texts.last());
        EXPECT_TRUE(document(u"assistants.md"_s).contains(u"| `%1` |"_s.arg(prompt.name)));
    }
    static const QRegularExpression name(
        u"`((?:new|open|save|import|check|diff|list|find|get|add|set|copy|delete)_[a-z_0-9]+)`"_s);
    static const QRegularExpression call(u"`([a-z_0-9]+)` (\\{[^}]*\\})"_s);
    int calls = 0;
    for (const QString &text : texts) {
        for (const QRegularExpressionMatch &match : name.globalMatch(text))
            EXPECT_TRUE(tools.contains(match.captured(1))) << qPrintable(match.captured(1));
        for (const QRegularExpressionMatch &match : call.globalMatch(text)) {
            for (const QString &key : QJsonDocument::fromJson(match.captured(2).toUtf8()).object().keys())
                EXPECT_TRUE(tools.value(match.captured(1)).contains(key)) << qPrintable(match.captured());
            ++calls;
        }
    }
    EXPECT_GT(calls, 15);
}

} // namespace
