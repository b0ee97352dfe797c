#include "support/mcpdriver.h"
#include "support/testhome.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QJsonDocument>
#include <QRegularExpression>
#include <QTemporaryDir>

#include <random>

using namespace Qt::StringLiterals;
using namespace TestSupport;

// Random calls of every tool, valid and not, on each kind of line.

namespace {

int calls()
{
    constexpr int fewCalls = 400;
    const int wanted = qEnvironmentVariableIntValue("NCX_CALLS");
    return wanted > 0 ? wanted : fewCalls;
}

/// Draws arguments that fit the schema of a tool, mostly.
class Arguments
{
public:
    explicit Arguments(unsigned seed)
        : random_(seed)
    {
    }

    int below(int end) { return static_cast<int>(random_() % static_cast<unsigned>(end)); }

    QJsonObject of(const QJsonObject &schema)
    {
        QJsonObject arguments;
        const QJsonObject properties = schema.value("properties"_L1).toObject();
        const QJsonArray required = schema.value("required"_L1).toArray();
        for (auto property = properties.begin(); property != properties.end(); ++property) {
            if ((required.contains(property.key()) && below(40) > 0) || below(3) == 0)
                arguments.insert(property.key(), value(property.key(), property.value().toObject()));
        }
        if (below(60) == 0)
            arguments.insert(u"none"_s, 1);
        return arguments;
    }

private:
    QJsonValue value(const QString &name, const QJsonObject &schema)
    {
        if (below(50) == 0)
            return QJsonValue::Null;
        const QJsonArray choices = schema.value("enum"_L1).toArray();
        if (!choices.isEmpty())
            return choices.at(below(static_cast<int>(choices.size())));
        const QString type = schema.value("type"_L1).toString();
        if (type == "boolean"_L1)
            return below(2) == 1;
        if (type == "integer"_L1)
            return integer(name, schema);
        if (type == "array"_L1)
            return QJsonArray{value({}, schema.value("items"_L1).toObject()),
                              value({}, schema.value("items"_L1).toObject())};
        if (type == "object"_L1)
            return of(schema);
        return text(name);
    }

    QJsonValue integer(const QString &name, const QJsonObject &schema)
    {
        static const QMap<QString, QList<int>> usual{
            {u"line"_s, {0, 0, 0, 0, 0, 1, 250}},
            {u"index"_s, {0x1000, 0x1018, 0x1800, 0x1a00, 0x2000, 0x2001, 0x2002, 0x2003}},
            {u"sub"_s, {0, 1, 2, 3}},
            {u"dataType"_s, {2, 3, 5, 6, 7, 8, 9, 0x20, 0x21}},
            {u"pgn"_s, {65262, 65280, 61444}},
            {u"spn"_s, {110, 175, 190}},
            {u"canId"_s, {0x100, 0x101, 0x18ff50e5}},
            {u"number"_s, {1, 2, 3}},
            {u"steps"_s, {1, 2, 5}},
        };
        const QList<int> &list = usual.value(name);
        if (!list.isEmpty() && below(20) > 0)
            return list.at(below(static_cast<int>(list.size())));
        const double lowest = schema.value("minimum"_L1).toDouble();
        const double highest = schema.value("maximum"_L1).toDouble(1000);
        return std::floor(lowest + (highest - lowest + 2) * below(1000) / 1000.0);
    }

    QJsonValue text(const QString &name)
    {
        static const QStringList keys{u"co_node_id"_s, u"limit_check"_s, u"VendorName"_s, u"startaddress"_s, u"none"_s};
        static const QStringList texts{u"Value"_s,         u"0"_s,    u"1"_s,           u"0x20000110"_s,
                                       u"$NODEID+0x180"_s, u"it's"_s, u"température"_s, u"401"_s,
                                       u"*e*"_s,           u""_s,     u"a,b\nc\"d"_s};
        return name == "key"_L1 ? keys.at(below(static_cast<int>(keys.size())))
                                : texts.at(below(static_cast<int>(texts.size())));
    }

    std::mt19937 random_;
};

/// Whether a refusal tells which argument to change, or which tool to call.
bool tellsNextStep(const QString &told, const QJsonObject &schema)
{
    QStringList words = schema.value("properties"_L1).toObject().keys();
    words += {u"save_project"_s, u"open_project"_s, u"an edit"_s, u"no arguments"_s};
    return std::ranges::any_of(
        words, [&told](const QString &word) { return told.contains(QRegularExpression(u"\\b%1\\b"_s.arg(word))); });
}

bool isReading(const QString &tool)
{
    return tool.startsWith("list_"_L1) || tool.startsWith("get_"_L1) || tool.startsWith("find_"_L1) ||
           tool == "show"_L1 || tool == "check_model"_L1;
}

constexpr int objects = 100;

/// A description with as many objects.
QByteArray descriptionOfObjects()
{
    QByteArray eds = "[DeviceInfo]\n[ManufacturerObjects]\nSupportedObjects=" + QByteArray::number(objects) + '\n';
    for (int i = 0; i < objects; ++i)
        eds += QByteArray::number(i + 1) + "=0x" + QByteArray::number(0x2000 + i, 16) + '\n';
    for (int i = 0; i < objects; ++i) {
        eds += '[' + QByteArray::number(0x2000 + i, 16) + "]\nParameterName=Object " + QByteArray::number(i) +
               "\nDataType=7\nAccessType=rw\nDefaultValue=1\n";
    }
    return eds;
}

/// A CAN database with as many frames of each protocol that the line has.
QByteArray databaseOfFrames(const QByteArray &lineType)
{
    constexpr quint32 extended = 0x80000000;
    constexpr quint32 firstProprietary = 0x18ff0000;
    QByteArray dbc = "VERSION \"\"\nBU_: Device Other\n";
    const auto add = [&dbc](quint32 id) {
        dbc += "BO_ " + QByteArray::number(id) + " M" + QByteArray::number(id) + ": 8 Device\n SG_ S" +
               QByteArray::number(id) + " : 0|16@1+ (1,0) [0|0] \"\" Other\n";
    };
    for (quint32 i = 0; i < objects; ++i) {
        if (lineType.contains("J1939"))
            add(extended | firstProprietary | (i << 8));
        if (lineType.contains("RawCAN"))
            add(0x100 + i);
    }
    return dbc;
}

class Endurance : public testing::TestWithParam<const char *>
{
protected:
    Endurance()
        : server_(u"ncx"_s, {}, folder_.path())
        , draw_(static_cast<unsigned>(std::hash<std::string>()(GetParam())))
    {
        server_.sendLine(R"({"jsonrpc":"2.0","id":0,"method":"tools/list"})");
        for (const QJsonValue tool : server_.reply().value("result"_L1).toObject().value("tools"_L1).toArray()) {
            const QString name = tool.toObject().value("name"_L1).toString();
            // These leave the project, or write files of any name.
            if (name != "open_project"_L1 && name != "new_project"_L1 && name != "generate"_L1 &&
                name != "save_project"_L1 && name != "import_file"_L1 && name != "diff_project"_L1)
                tools_.append({name, tool.toObject().value("inputSchema"_L1).toObject()});
        }
        const QString made =
            server_.ask(u"new_project"_s,
                        {{u"path"_s, u"device.ncxp"_s}, {u"lineTypes"_s, QJsonArray{QString::fromLatin1(GetParam())}}});
        EXPECT_TRUE(made.startsWith("Project made"_L1)) << qPrintable(made);
    }

    /// All that there is to see of the project.
    QString seen()
    {
        return server_.ask(u"show"_s, {{u"objects"_s, true}, {u"limit"_s, 1000}}) + server_.ask(u"list_lines"_s) +
               server_.ask(u"get_settings"_s, {{u"group"_s, u"general"_s}});
    }

    /// Fills the line with as much as a usual device has, and saves that.
    void fill()
    {
        const QByteArray lineType = GetParam();
        const auto import = [this](const QString &name, const QByteArray &text, const QJsonObject &further) {
            QFile file(folder_.filePath(name));
            ASSERT_TRUE(file.open(QIODevice::WriteOnly) && file.write(text) == text.size());
            file.close();
            QJsonObject arguments = further;
            arguments.insert(u"path"_s, name);
            const QString told = server_.ask(u"import_file"_s, arguments);
            ASSERT_FALSE(told.startsWith("! "_L1)) << qPrintable(told);
        };
        if (lineType.contains("CANopen"))
            import(u"device.eds"_s, descriptionOfObjects(), {});
        if (lineType != "CANopen")
            import(u"device.dbc"_s, databaseOfFrames(lineType), {{ u"node"_s, u"Device"_s }});
        ASSERT_TRUE(server_.ask(u"save_project"_s).startsWith("Project saved"_L1));
        EXPECT_GE(seen().count("bject "_L1) + seen().count("\"M"_L1), objects);
    }

    /// Opens what `fill` has saved.
    void beginAnew()
    {
        const QString told = server_.ask(u"open_project"_s, {{u"path"_s, u"device.ncxp"_s}, {u"discard"_s, true}});
        ASSERT_TRUE(told.startsWith("Project opened"_L1)) << qPrintable(told);
    }

    QTemporaryDir folder_;
    McpDriver server_;
    Arguments draw_;
    QList<std::pair<QString, QJsonObject>> tools_;
};

TEST_P(Endurance, EachCallIsAnsweredAndNoErrorChangesAnything)
{
    constexpr qint64 mostTime = 200000; // microseconds
    constexpr qint64 mostGrowthKib = 8 * 1024;
    constexpr int callsOfAProject = 200; // then it has its size again
    ASSERT_NO_FATAL_FAILURE(fill());
    qint64 slowest = 0;
    QString slowestTool;
    qint64 memory = 0;
    int failed = 0;
    const int wanted = calls();
    for (int i = 0; i < wanted; ++i) {
        const auto &[tool, schema] = tools_.at(draw_.below(static_cast<int>(tools_.size())));
        const QJsonObject arguments = draw_.of(schema);
        const bool isLooked = !isReading(tool) && draw_.below(20) == 0;
        const QString before = isLooked ? seen() : QString();
        const qint64 begin = server_.processorTime();
        const QString told = McpDriver::told(server_.call(tool, arguments));
        if (const qint64 time = server_.processorTime() - begin; time > slowest) {
            slowest = time;
            slowestTool = tool;
        }
        ASSERT_FALSE(told.isEmpty() || told.startsWith("-32"_L1)) << qPrintable(tool) << qPrintable(told);
        const bool isRefused = told.startsWith("! "_L1);
        failed += isRefused ? 1 : 0;
        EXPECT_TRUE(!isRefused || tellsNextStep(told, schema)) << qPrintable(tool) << qPrintable(told);
        if (isLooked && isRefused) {
            ASSERT_EQ(before, seen()) << qPrintable(tool) << QJsonDocument(arguments).toJson().toStdString();
        }
        if (i % callsOfAProject == callsOfAProject - 1 || (tool == "delete_line"_L1 && !isRefused)) {
            ASSERT_NO_FATAL_FAILURE(beginAnew());
        }
        if (i == wanted / 2)
            memory = server_.memory();
    }
    EXPECT_GT(failed, wanted / 10);
    EXPECT_LT(failed, wanted);
    EXPECT_LT(slowest, mostTime) << qPrintable(slowestTool);
    // Caches fill at first, and a sanitizer keeps what is freed: this is for the long run.
    if (wanted > 10000) {
        EXPECT_LT(server_.memory() - memory, mostGrowthKib);
    }
    RecordProperty("slowest", qPrintable(u"%1 us: %2"_s.arg(slowest).arg(slowestTool)));
    RecordProperty("growth", qPrintable(u"%1 KiB of %2"_s.arg(server_.memory() - memory).arg(memory)));
    RecordProperty("valid", wanted - failed);

    // What is shown is what a save writes.
    const QString shown = seen();
    ASSERT_TRUE(server_.ask(u"save_project"_s).startsWith("Project saved"_L1));
    ASSERT_TRUE(server_.ask(u"open_project"_s, {{u"path"_s, u"device.ncxp"_s}}).startsWith("Project opened"_L1));
    EXPECT_EQ(shown, seen());
    EXPECT_EQ(server_.close().exitCode, 0);
}

TEST_P(Endurance, AllEditsCanBeTakenBackAndMadeAgain)
{
    constexpr int fewEdits = 150;
    const QString first = seen();
    int edits = 0;
    for (int i = 0; i < 4000 && edits < fewEdits; ++i) {
        const auto &[tool, schema] = tools_.at(draw_.below(static_cast<int>(tools_.size())));
        if (isReading(tool) || tool == "undo"_L1 || tool == "redo"_L1)
            continue;
        edits += server_.ask(tool, draw_.of(schema)).startsWith("! "_L1) ? 0 : 1;
    }
    const QString last = seen();
    EXPECT_NE(first, last);
    std::ignore = server_.ask(u"undo"_s, {{u"steps"_s, 200}});
    EXPECT_EQ(seen(), first);
    std::ignore = server_.ask(u"redo"_s, {{u"steps"_s, 200}});
    EXPECT_EQ(seen(), last);
    EXPECT_EQ(server_.close().exitCode, 0);
}

INSTANTIATE_TEST_SUITE_P(Lines, Endurance,
                         testing::Values("CANopen", "J1939", "RawCAN", "CANopen+J1939", "CANopen+RawCAN",
                                         "J1939+RawCAN"),
                         [](const auto &lines) { return QString::fromLatin1(lines.param).remove(u'+').toStdString(); });

TEST(Servers, OfOneProjectTellOfEachOther)
{
    QTemporaryDir folder;
    McpDriver one(u"ncx"_s, {}, folder.path());
    McpDriver two(u"ncx"_s, {}, folder.path());
    std::ignore = one.ask(u"new_project"_s, {{u"path"_s, u"device.ncxt"_s}});
    std::ignore = two.ask(u"open_project"_s, {{u"path"_s, u"device.ncxt"_s}});
    for (McpDriver *server : {&one, &two})
        std::ignore = server->ask(u"set_line"_s, {{u"line"_s, 0}, {u"name"_s, u"bus"_s}});
    EXPECT_EQ(one.ask(u"save_project"_s), u"Project saved: device.ncxt"_s);
    EXPECT_TRUE(two.ask(u"save_project"_s).startsWith("! Not saved: somebody else has changed"_L1));
    EXPECT_TRUE(two.ask(u"save_project"_s, {{u"path"_s, u"mine.ncxt"_s}}).startsWith("Project saved"_L1));
    for (McpDriver *server : {&one, &two})
        EXPECT_EQ(server->close().exitCode, 0);
}

TEST(Servers, LeaveNothingBehindWhenTheirClientVanishes)
{
    QTemporaryDir folder;
    {
        McpDriver server(u"ncx"_s, {}, folder.path());
        std::ignore = server.ask(u"new_project"_s, {{u"path"_s, u"device.ncxt"_s}});
        server.sendCall(u"generate"_s);
        EXPECT_EQ(server.close().exitCode, 0);
    }
    EXPECT_TRUE(QDir(dataFolder()).entryList({u"qvxdatatemp_*"_s}, QDir::Files).isEmpty());
}

} // namespace
