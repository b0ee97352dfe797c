#include "generate/descriptions/edsgenerator.h"
#include "generate/docs/generatorjob.h"
#include "generate/model/linedictionary.h"
#include "import/importproject.h"
#include "nodedict/cohelper.h"
#include "store/objectdatabase.h"
#include "support/nodepackage.h"

#include <QDir>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

using namespace Qt::StringLiterals;

// The descriptions that the program writes are read by a CANopen library for node.js (tests/eds_reader), which finds
// what the project has.

namespace {

using Store = std::shared_ptr<ObjectDataBase>;

/// The description without what the library refuses though files in the field have it: the mapping flag and limits of
/// a DOMAIN, and negative or hexadecimal limits, which it compares as texts.
QString forReader(const QString &eds)
{
    QStringList lines;
    bool isDomain = false;
    for (const QString &line : eds.split(u'\n')) {
        if (line.startsWith(u'['))
            isDomain = false;
        if (line == "ObjectType=2"_L1)
            isDomain = true;
        const bool isLimit = line.startsWith("LowLimit="_L1) || line.startsWith("HighLimit="_L1);
        const bool isCompared = line.contains("=-"_L1) || line.contains("=0x"_L1, Qt::CaseInsensitive);
        const bool isRefused = isDomain ? isLimit || line.startsWith("PDOMapping="_L1) : isLimit && isCompared;
        if (!isRefused)
            lines.append(line);
    }
    return lines.join(u'\n');
}

/// A text that the library's reader of INI files takes as it stands: it knows quotes, escapes and remarks.
bool isPlain(const QString &text)
{
    return std::ranges::none_of(text, [](QChar c) { return u";#\"'\\"_s.contains(c); });
}

QString rowOf(const QJsonArray &row, bool withTexts)
{
    const auto place = u"%1:%2"_s.arg(row.at(0).toInt(), 4, 16, QLatin1Char('0')).arg(row.at(1).toInt());
    const auto attributes =
        u" type %1, %2, mapping %3"_s.arg(row.at(3).toInt()).arg(row.at(4).toString()).arg(row.at(5).toInt());
    return place + attributes +
           (withTexts ? u", '%1' = '%2'"_s.arg(row.at(2).toString(), row.at(6).toString()) : QString());
}

/// What the library must find of a project, by index and subindex. It makes a subindex 0 where a group has none.
class Expectation
{
public:
    explicit Expectation(ObjectDataBase &store)
    {
        const LineDictionary dictionary(store, 0);
        for (const LineObject &object : dictionary.objects) {
            for (const StoreRecords::SubEntry &sub : object.subs)
                add(object, sub);
        }
    }

    void compare(const QJsonArray &found)
    {
        QHash<QString, QString> rows;
        for (const QJsonValue &value : found) {
            const QJsonArray row = value.toArray();
            const QString place = rowOf(row, false).section(u' ', 0, 0);
            rows.insert(place, rowOf(row, plain_.contains(place)));
        }
        for (auto it = rows_.cbegin(); it != rows_.cend(); ++it)
            EXPECT_EQ(rows.value(it.key()), it.value());
    }

private:
    void add(const LineObject &object, const StoreRecords::SubEntry &sub)
    {
        const bool isDomain = object.data.objecttype == CANopen::Domain;
        const bool counts = object.isGroup() && sub.subindex == 0 && object.index >= 0x2000;
        const bool mapped = !isDomain && sub.data.pdomapping.toBinary() != 0;
        const int type = sub.data.datatype < 100 ? sub.data.datatype : 5; // types of the program's own
        const QString name = object.isGroup() ? filledText(sub.data.name, sub) : object.name();
        QString value = counts ? QString::number(object.highestSubindex()) : sub.data.defaultvalue;
        if (value.startsWith("|x"_L1))
            value.remove(0, 2);
        const bool shown =
            sub.data.writedefaulttoeds == 2 || (sub.data.writedefaulttoeds == 1 && sub.data.defaultineds);
        const QJsonArray row{object.index,
                             sub.subindex,
                             name.trimmed(),
                             type,
                             sub.data.accesstype,
                             mapped ? 1 : 0,
                             shown ? value.trimmed() : QString()};
        const QString place = rowOf(row, false).section(u' ', 0, 0);
        const bool plain = isPlain(name) && isPlain(value);
        if (plain)
            plain_.insert(place);
        rows_.insert(place, rowOf(row, plain));
    }

    QHash<QString, QString> rows_;
    QSet<QString> plain_;
};

/// The projects of the examples and goldens whose objects and subindices all have types, and the real device files.
QMap<QString, Store> projects()
{
    QMap<QString, Store> result;
    for (const QString &file : DocsTest::projectFiles()) {
        const auto store = std::make_shared<ObjectDataBase>();
        EXPECT_TRUE(store->openTextDatabase(file));
        const bool hasCodes = std::ranges::none_of(store->getAllIndices(0), [](const auto &entry) {
            return entry.index >= 0x1000 && entry.data.objecttype == 0;
        });
        if (hasCodes && store->findSubIndices(0, u"datatype"_s, u"0"_s).isEmpty())
            result.insert(file.section(u'/', -3).replace(u'/', u'-'), store);
    }
    const QString corpus = TestSupport::corpusFolder();
    for (const QString &file : QDir(corpus).entryList({u"*.eds"_s, u"*.dcf"_s}, QDir::Files)) {
        if (corpus.isEmpty())
            break;
        const Store store = ImportTest::emptyProject();
        EXPECT_TRUE(ImportTest::importEds(store, corpus + u'/' + file));
        result.insert(file, store);
    }
    return result;
}

} // namespace

TEST(EdsReader, AnIndependentLibraryFindsWhatTheProjectHas)
{
    const TestSupport::NodePackage reader(u"eds_reader"_s);
    if (!reader.isInstalled())
        GTEST_SKIP() << reader.reason().toStdString();

    const QTemporaryDir folder;
    const QMap<QString, Store> stores = projects();
    ASSERT_GE(stores.size(), 3);
    QStringList arguments;
    for (auto it = stores.cbegin(); it != stores.cend(); ++it) {
        EDSGenerator generator;
        generator.setVariant({.extended = true});
        const QString eds = forReader(DocsTest::textOf(generator, it.value()));
        ASSERT_TRUE(TestSupport::writeFile(folder.filePath(it.key()), eds.toUtf8()));
        arguments.append(it.key());
    }
    const auto result = reader.run(folder.path(), arguments);
    ASSERT_EQ(result.exitCode, 0) << qPrintable(result.errors);
    const QStringList answers = result.output.split(u'\n', Qt::SkipEmptyParts);
    ASSERT_EQ(answers.size(), stores.size());
    for (const QString &line : answers) {
        const QJsonObject answer = QJsonDocument::fromJson(line.toUtf8()).object();
        const QString file = answer.value("file"_L1).toString();
        SCOPED_TRACE(file.toStdString());
        EXPECT_EQ(answer.value("error"_L1).toString(), QString());
        Expectation(*stores.value(file)).compare(answer.value("rows"_L1).toArray());
    }
}
