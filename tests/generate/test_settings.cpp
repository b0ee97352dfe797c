#include "generate/recorder.h"
#include "generate/run/generatormainhandler.h"
#include "store/settings.h"
#include "support/projectscript.h"
#include "support/testhome.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QMap>
#include <QRegularExpression>

#include <span>

using namespace Qt::StringLiterals;
using namespace TestSupport;

namespace {

struct Key
{
    Settings::Table table = Settings::Table::General;
    QString name;

    bool isList() const { return Settings::form(name, table) == Settings::Form::PerLine; }
    bool isNumber() const { return isList() || Settings::form(name, table) == Settings::Form::OneValue; }
    /// The header has the list as the project has it.
    bool isAsItStands() const { return name == "co_node_id"_L1; }
    /// A bootloader leaves out too much of what the other settings are for.
    QString inBackground(const QString &value) const { return name == "uds_bl_setting"_L1 ? u"0"_s : value; }
    QByteArray text() const { return (table == Settings::Table::J1939 ? u"j1939 "_s + name : name).toUtf8(); }
};

/// The numbers among the keys of tests/data/settings/keys.txt.
QList<Key> numberKeys()
{
    const QByteArray text = readFile(QStringLiteral(NCX_SOURCE_DIR "/tests/data/settings/keys.txt"));
    QList<Key> keys;
    Settings::Table table = Settings::Table::General;
    for (const QString &line : QString::fromUtf8(text).split(u'\n', Qt::SkipEmptyParts)) {
        if (line.startsWith(u'['))
            table = line == "[j1939]"_L1 ? Settings::Table::J1939 : Settings::Table::General;
        if (line.startsWith(u'[') || line.startsWith(u'#'))
            continue;
        for (const QString &name : line.split(u' ')) {
            if (const Key key{table, name}; key.isNumber())
                keys.append(key);
        }
    }
    return keys;
}

/// A project of two lines that is generated again and again.
class Device
{
public:
    Device(const QStringList &commands, bool classic)
    {
        ProjectScript script;
        script.run(commands);
        EXPECT_TRUE(script.store()->saveDatabase(path(u"device.ncxp"_s)));
        EXPECT_TRUE(handler_.openProject(path(u"device.ncxp"_s)));
        handler_.setStackPath(QStringLiteral(NCX_SOURCE_DIR "/examples/stack"));
        if (classic) {
            EXPECT_TRUE(handler_.database()->setGeneralSetting(u"use_core_headers"_s, u"classic"_s));
        }
        handler_.setOutputFolder(output_);
        generated(); // the first check has hints for those who knew an older tool
    }

    void set(const Key &key, const QString &value)
    {
        if (key.table == Settings::Table::General) {
            EXPECT_TRUE(handler_.database()->setGeneralSetting(key.name, value));
        } else {
            EXPECT_TRUE(handler_.database()->setJ1939Setting(key.name, value));
        }
    }

    /// What check and run say, and all files by their names. A number that is written as it was given is made decimal.
    QMap<QString, QString> generated()
    {
        static const QRegularExpression hexadecimalOne(u"\\b0x1(?=u?l?\\b)"_s);
        QDir(output_).removeRecursively();
        QDir().mkpath(output_);
        messages_.messages.clear();
        handler_.generate(true);
        QMap<QString, QString> result{{u"messages"_s, messages_.collectedText()}};
        for (const QString &name : QDir(output_).entryList(QDir::Files))
            result.insert(name, QString::fromUtf8(readFile(output_ + u'/' + name)).replace(hexadecimalOne, u"1"_s));
        return result;
    }

private:
    QString path(const QString &name) const { return folder_.filePath(name); }

    QTemporaryDir folder_;
    QString output_ = path(u"output"_s);
    Recorder messages_;
    GeneratorMainHandler handler_{&messages_};
};

void compare(const QMap<QString, QString> &actual, const QMap<QString, QString> &expected)
{
    EXPECT_EQ(actual.keys(), expected.keys());
    for (const auto &[name, text] : actual.asKeyValueRange()) {
        const QStringList lines = text.split(u'\n');
        const QStringList others = expected.value(name).split(u'\n');
        qsizetype line = 0;
        while (line < lines.size() && lines.at(line) == others.value(line))
            ++line;
        if (text != expected.value(name))
            ADD_FAILURE() << qPrintable(name) << ":" << line + 1 << "\n  " << qPrintable(lines.value(line)) << "\n  "
                          << qPrintable(others.value(line));
    }
}

/// Generates with keys spelled in each way, and compares. Keys of several are named one by one once they differ.
void compareSpellings(Device &device, std::span<const Key> keys, const QString &others)
{
    const auto generatedWith = [&](const QString &value, const QString &listValue) {
        for (const Key &key : keys)
            device.set(key, key.isList() && !key.isAsItStands() ? listValue : value);
        return device.generated();
    };
    const auto expected = generatedWith(u"1"_s, u"1"_s);
    const auto hexadecimal = generatedWith(u"0x1"_s, u"0x1"_s);
    const auto list = generatedWith(u"1"_s, u"1,1"_s);
    for (const Key &key : keys)
        device.set(key, key.inBackground(others));
    if (keys.size() == 1) {
        SCOPED_TRACE(keys.front().text().constData());
        compare(hexadecimal, expected);
        compare(list, expected);
    } else if (hexadecimal != expected || list != expected) {
        ADD_FAILURE() << "spellings differ for one of the keys behind " << keys.front().text().constData();
        for (const Key &key : keys)
            compareSpellings(device, {&key, 1}, others);
    }
}

using Background = std::tuple<const char *, bool, int>;

/// The form of the sources, the device, and what all other settings are.
std::string backgroundName(const testing::TestParamInfo<Background> &info)
{
    const auto [device, classic, others] = info.param;
    return (classic ? "classic_" : "") + std::string(device) + "_among_" + std::to_string(others);
}

class Spellings : public testing::TestWithParam<Background>
{
};

TEST_P(Spellings, OfASettingGiveTheSameFiles)
{
    constexpr std::size_t together = 32;
    qputenv("SOURCE_DATE_EPOCH", "1794733920");
    const auto [name, classic, background] = GetParam();
    const QByteArray text =
        readFile(QStringLiteral(NCX_SOURCE_DIR "/tests/data/settings/devices/%1.txt").arg(QLatin1StringView(name)));
    Device device(QString::fromUtf8(text).split(u'\n', Qt::SkipEmptyParts).mid(1), classic);
    const QList<Key> keys = numberKeys();
    ASSERT_GT(keys.size(), 150);
    const QString others = QString::number(background);
    for (const Key &key : keys)
        device.set(key, key.inBackground(others));
    for (std::span<const Key> rest(keys); !rest.empty(); rest = rest.subspan(std::min(together, rest.size())))
        compareSpellings(device, rest.first(std::min(together, rest.size())), others);
    qunsetenv("SOURCE_DATE_EPOCH");
}

INSTANTIATE_TEST_SUITE_P(Devices, Spellings,
                         testing::Values(Background("canopen", false, 0), Background("canopen", false, 1),
                                         Background("canopen", true, 0), Background("canopen", true, 1),
                                         Background("j1939", false, 0), Background("j1939", false, 1),
                                         Background("mixed", false, 0), Background("mixed", false, 1)),
                         backgroundName);

} // namespace
