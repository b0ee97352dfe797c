#include "generate/docs/csvgenerator.h"
#include "generate/docs/generatorjob.h"
#include "generate/docs/icsvgenerator.h"
#include "generate/docs/tablefields.h"
#include "import/csvimporter.h"
#include "import/importproject.h"
#include "nodedict/canopendatatype.h"
#include "nodedict/cohelper.h"
#include "store/objectdatabase.h"
#include "support/projectbuilder.h"

#include <QRandomGenerator>

#include <array>

using namespace Qt::StringLiterals;
using TestSupport::ProjectBuilder;
using Store = std::shared_ptr<ObjectDataBase>;
using Sub = ObjectDataBase::SUBINDEX_DATA_T;

namespace {

template <typename Generator>
QStringList linesOf(const Store &store, bool withDocumentation = true)
{
    Generator generator;
    if constexpr (std::is_same_v<Generator, ICSVGenerator>)
        generator.setDocumentation(withDocumentation);
    return DocsTest::textOf(generator, store).split(u'\n');
}

void setObject(ProjectBuilder &project, quint16 index, quint32 code, const QString &description = {})
{
    ObjectDataBase::INDEX_DATA_T object;
    project.store()->getIndex(0, index, object);
    object.objecttype = code;
    object.description = description;
    project.store()->addIndex(0, index, object);
}

/// A variable and a list, with all that the tables ask for.
ProjectBuilder sampleProject()
{
    ProjectBuilder project;
    project.object(0x1017, u"Heartbeat, \"producer\""_s).sub(0, u"ignored"_s, [](Sub &sub) {
        sub.datatype = CAN::Unsigned16;
        sub.accesstype = u"rw"_s;
        sub.defaultvalue = u"0x3E8"_s;
        sub.varname = u"beat"_s;
        sub.implementation = 2;
        sub.nvstorage = sub.limitineds = sub.refusewrite = true;
        sub.uplimit = u"60000"_s;
        sub.description = u"in ms\n\nor off,\r\nif 0"_s;
    });
    project.object(0x2000, u"List ${index:x}"_s).sub(0, u"Count"_s, [](Sub &sub) {
        sub.defaultvalue = u"1"_s;
        sub.implementation = 1;
    });
    project.sub(0x1a, u"Item ${subindex}"_s, [](Sub &sub) {
        sub.datatype = CAN::VisibleString;
        sub.size = 12;
        sub.pdomapping = PDOMapping::Default;
        sub.defaultvalue = u"a,b"_s;
        sub.refuseread = true;
        sub.defaultineds = false;
        sub.writedefaulttoeds = 0;
        sub.implementation = 9;
    });
    setObject(project, 0x2000, CANopen::Array, u"All items"_s);
    return project;
}

} // namespace

TEST(Tables, ValuesHaveTheFormOfTheirType)
{
    struct Case
    {
        quint16 type;
        const char *text;
        const char *value;
    };
    for (const Case &c : {Case{CAN::Integer8, "-5", "-5"},
                          {CAN::Integer8, "0x7f", "127"},
                          {CAN::Integer8, "0xff", "-1"},
                          {CAN::Integer16, "-0x10", "-16"},
                          {CAN::Integer32, "0x80000000", "-2147483648"},
                          {CAN::Integer32, "2147483648", ""},
                          {CAN::Integer24, "0xFFFFFF", "-1"},
                          {CAN::Integer40, "0xffff", "65535"},
                          {CAN::Integer40, "-1", ""},
                          {CAN::Integer40, "65536", ""},
                          {CAN::Integer48, "0x123456789", "4886718345"},
                          {CAN::Integer64, "-9223372036854775808", "-9223372036854775808"},
                          {CAN::Unsigned8, " 0x10 ", "16"},
                          {CAN::Unsigned8, "010", "8"},
                          {CAN::Unsigned8, "08", "8"},
                          {CAN::Unsigned8, "-1", ""},
                          {CAN::Unsigned8, "70000", ""},
                          {CAN::Unsigned7, "0x7F", "127"},
                          {CAN::Unsigned24, "0xFFFFFF", "16777215"},
                          {CAN::Unsigned32, "0xFFFFFFFF", "4294967295"},
                          {CAN::Unsigned32, "0x100000000", ""},
                          {CAN::Unsigned32, "abc", ""},
                          {CAN::Unsigned32, "$NODEID+0x200", "$NODEID+512"},
                          {CAN::Unsigned32, "$nodeid+ 3", "$NODEID+3"},
                          {CAN::Unsigned32, "$NODEID+x", ""},
                          {CAN::Unsigned64, "0xFFFFFFFFFFFFFFFF", "18446744073709551615"},
                          {110, "0x10", "16"},
                          {CAN::Real32, "1.50", "1.50"},
                          {CAN::Real64, "-1e9", "-1e9"},
                          {CAN::Real32, "0x3f800000", "0x3f800000"},
                          {CAN::Real32, "much", ""},
                          {CAN::Boolean, "true", "true"},
                          {CAN::VisibleString, " 0x10", " 0x10"},
                          {CAN::Utf8String, "0x10", "0x10"},
                          {CAN::Unsigned8, "", ""}})
        EXPECT_EQ(TableFields::value(c.type, QString::fromLatin1(c.text)), QLatin1StringView(c.value)) << c.text;
}

TEST(Tables, FieldsAreQuotedWhereTheyMust)
{
    for (const auto &[text, field] : {std::pair(u"a;b c'd"_s, u"a;b c'd"_s),
                                      {u"a,b"_s, u"\"a,b\""_s},
                                      {u"say \"a\""_s, u"\"say \"\"a\"\"\""_s},
                                      {u"a\nb"_s, u"\"a\nb\""_s},
                                      {u""_s, u""_s}})
        EXPECT_EQ(TableFields::field(text), field);
}

TEST(Tables, CsvRows)
{
    const QStringList lines = linesOf<CSVGenerator>(sampleProject().store());
    EXPECT_EQ(
        lines,
        (QStringList{
            u"Index,Sub,EDSname,Datatype,Access,Value,varname,LowLimit,UpLimit,hasDefault,hasLimit,refuseRead,refuseWrite,defaultInEDS,implementation,Size,ObjectCode,mapable"_s,
            u"0x1017,0x00,\"Heartbeat, \"\"producer\"\"\",UNSIGNED16,rw,1000,beat,0,60000,yes,yes,no,yes,yes,Variable,0,VARIABLE,forbidden,"_s,
            u" "_s,
            u"0x2000,0x00,List 2000 Count,UNSIGNED8,ro,1,,0,0,yes,no,no,no,yes,ManagedConst,0,ARRAY,forbidden,"_s,
            u"0x2000,0x1a,List 2000 Item 26,VISIBLE_STRING,ro,\"a,b\",,0,0,no,no,yes,no,no,NONE,12,ARRAY,default,"_s,
            QString()}));
}

TEST(Tables, IcsvRows)
{
    const Store store = sampleProject().store();
    EXPECT_EQ(
        linesOf<ICSVGenerator>(store),
        (QStringList{
            u"# This is an importable ICSV file for the device project."_s, u"#"_s,
            u"index,sub,objectcode,datatype,edsname,varname,access,mapable,hasdefault,defaultineds,value,description,size,implementation,haslimit,lowlimit,uplimit,nvstorage"_s,
            u"0x1017,0x00,VARIABLE,UNSIGNED8,\"Heartbeat, \"\"producer\"\"\",beat,rw,forbidden,yes,yes,1000,\"in ms##LINEBREAK####LINEBREAK##or off,##LINEBREAK##if 0\",0,Variable,yes,0,60000,yes"_s,
            u" "_s, u"0x2000,,ARRAY,UNSIGNED8,List 2000,,,,,,,All items,,,,,,"_s,
            u"0x2000,0x00,,UNSIGNED8,Count,,ro,forbidden,yes,yes,1,,0,ManagedConst,no,0,0,no"_s,
            u"0x2000,0x1a,,VISIBLE_STRING,Item 26,,ro,default,no,no,\"a,b\",,12,,no,0,0,no"_s, QString()}));

    const QStringList without = linesOf<ICSVGenerator>(store, false);
    EXPECT_FALSE(without.value(2).contains("description"_L1));
    for (const QString &line : {without.value(2), without.value(5)})
        EXPECT_EQ(line.count(u','), 16) << qPrintable(line);
}

TEST(Tables, AreasStandApart)
{
    const auto separators = [](std::initializer_list<quint16> indices) {
        ProjectBuilder project;
        for (const quint16 index : indices)
            project.object(index, {}).sub(0, {});
        QList<qsizetype> places;
        const QStringList lines = linesOf<CSVGenerator>(project.store());
        for (qsizetype i = 0; i < lines.size(); ++i) {
            if (lines.at(i) == u" ")
                places.append(i);
        }
        return places;
    };
    EXPECT_EQ(separators({0x0007, 0x1000, 0x1fff}), QList<qsizetype>{});
    EXPECT_EQ(separators({0x1000, 0x2000, 0x5fff, 0x6000, 0xffff}), (QList<qsizetype>{2, 5}));
    EXPECT_EQ(separators({0x1000, 0x6000}), (QList<qsizetype>{2, 3}));
}

namespace {

/// Random objects that a table can hold: what it has no column for is as an import leaves it.
class RandomDictionary
{
public:
    explicit RandomDictionary(quint32 seed)
        : random_(seed)
    {
    }

    Store make()
    {
        ProjectBuilder project;
        const ObjectDataBase::Transaction transaction(*project.store());
        for (quint16 index = 0x1000; index < 0xbff0; index = static_cast<quint16>(index + 1 + random_.bounded(0x800)))
            addObject(project, index);
        return project.store();
    }

private:
    template <typename Values>
    auto any(const Values &values)
    {
        return values[static_cast<size_t>(random_.bounded(static_cast<int>(std::size(values))))];
    }
    bool flag() { return random_.bounded(2) == 1; }

    QString text()
    {
        static const std::vector<QString> pieces{u"Speed"_s, u", "_s,      u"\""_s, u"'"_s, u";"_s,
                                                 u" "_s,     u"größe ✓"_s, u"\t"_s, u"#"_s, u"0x10"_s};
        QString result = u"T"_s;
        for (int count = random_.bounded(5); count > 0; --count)
            result += any(pieces);
        return result;
    }

    QString description()
    {
        QString result;
        for (int count = random_.bounded(4); count > 0; --count)
            result += (result.isEmpty() || flag() ? u""_s : u"\n"_s) + text() + (flag() ? u""_s : u"\n\n"_s);
        return result;
    }

    QString number(quint16 type)
    {
        const COHelper::Limits limits = COHelper::getDefaultLimits(type);
        const auto word = random_.generate64() >> random_.bounded(64);
        const QString positive = QString::number(word & (limits.high.toULongLong() >> random_.bounded(2)));
        return limits.low != u"0" && flag() && positive != u"0" ? u'-' + positive : positive;
    }

    Sub sub(const QString &name, quint16 type)
    {
        static const std::vector<QString> access{u"const"_s, u"ro"_s, u"rw"_s, u"wo"_s, u"rww"_s, u"rwr"_s};
        Sub sub;
        sub.name = name;
        sub.datatype = type;
        sub.accesstype = any(access);
        sub.implementation = static_cast<quint8>(random_.bounded(4));
        sub.varname = sub.implementation == 2 || flag() ? u"v_%1"_s.arg(random_.bounded(1000)) : QString();
        sub.pdomapping = PDOMapping(random_.bounded(5U));
        sub.defaultineds = flag();
        sub.writedefaulttoeds = flag();
        sub.nvstorage = flag();
        sub.limitineds = flag();
        if (COHelper::isTextType(type)) {
            sub.defaultvalue = flag() ? text() : QString();
            sub.size = random_.bounded(70000U) & 0xffff;
        } else if (type == CAN::Real32 || type == CAN::Real64) {
            sub.defaultvalue = QString::number(random_.generateDouble());
        } else {
            sub.defaultvalue = number(type);
            if (type == CAN::Unsigned32 && flag())
                sub.defaultvalue.prepend(u"$NODEID+"_s);
        }
        // Without limits an import takes the range of the type.
        sub.lowlimit = COHelper::getDefaultLimits(type).low;
        sub.uplimit = COHelper::getDefaultLimits(type).high;
        if (!sub.lowlimit.isEmpty() && flag()) {
            sub.lowlimit = number(type);
            sub.uplimit = number(type);
        }
        return sub;
    }

    void addObject(ProjectBuilder &project, quint16 index)
    {
        static constexpr std::array codes{CANopen::Var, CANopen::Array, CANopen::Record, CANopen::Domain};
        static constexpr std::array<quint16, 28> types{
            CAN::Boolean,    CAN::Integer8,      CAN::Integer16,     CAN::Integer32,     CAN::Unsigned8,
            CAN::Unsigned16, CAN::Unsigned32,    CAN::Real32,        CAN::VisibleString, CAN::OctetString,
            CAN::Domain,     CAN::UnicodeString, CAN::Integer24,     CAN::Real64,        CAN::Integer48,
            CAN::Integer48,  CAN::Integer56,     CAN::Integer64,     CAN::Unsigned24,    CAN::Unsigned40,
            CAN::Unsigned48, CAN::Unsigned56,    CAN::Unsigned64,    CAN::Unsigned2,     CAN::Unsigned7,
            CAN::StringNull, CAN::Utf8String,    CAN::StringAsterisk};
        ObjectDataBase::INDEX_DATA_T object;
        object.name = text();
        object.datatype = any(types);
        object.objecttype = any(codes);
        object.description = description();
        project.store()->addIndex(0, index, object);
        const bool isGroup = object.objecttype == CANopen::Array || object.objecttype == CANopen::Record;
        if (!isGroup) {
            add(project, index, 0, sub(object.name, static_cast<quint16>(object.datatype)), object.description);
            return;
        }
        add(project, index, 0, sub(text(), CAN::Unsigned8), description());
        for (int subindex = 1; subindex < 256; subindex += 1 + random_.bounded(100))
            add(project, index, static_cast<quint8>(subindex), sub(text(), any(types)), description());
    }

    static void add(ProjectBuilder &project, quint16 index, quint8 subindex, Sub sub, const QString &description)
    {
        sub.description = description;
        if (sub.datatype != CAN::VisibleString)
            ObjectDataBase::escapeQuotes(sub.defaultvalue);
        project.store()->addSubIndex(0, index, subindex, sub);
    }

    QRandomGenerator random_;
};

QString importIcsv(const Store &source, const Store &target)
{
    const QTemporaryDir folder;
    ICSVGenerator generator;
    const QString path = DocsTest::runJob(generator, source, folder.path());
    CsvImporter importer;
    importer.setIndexRange(0x1000, 0xbfff);
    importer.setDatabase(target);
    EXPECT_TRUE(importer.setFile(path) && importer.startImport());
    importer.waitForEnd();
    return QString::fromUtf8(TestSupport::readFile(path));
}

/// The columns of the table that a dump does not have.
QStringList rest(ObjectDataBase &store)
{
    QStringList rows;
    for (const quint16 index : store.getIndexList(0, 0, 0xffff)) {
        for (const quint8 subindex : store.getSubIndexList(0, index)) {
            Sub sub;
            store.getSubIndex(0, index, subindex, sub);
            rows.append(u"%1:%2 %3 %4 %5 %6 %7"_s.arg(index)
                            .arg(subindex)
                            .arg(sub.size)
                            .arg(sub.nvstorage)
                            .arg(sub.defaultineds)
                            .arg(sub.writedefaulttoeds)
                            .arg(sub.implementation));
        }
    }
    return rows;
}

} // namespace

TEST(Tables, RandomDictionariesComeBackFromIcsv)
{
    for (quint32 seed = 1; seed <= 5; ++seed) {
        SCOPED_TRACE(seed);
        const Store before = RandomDictionary(seed).make();
        const Store after = ImportTest::emptyProject();
        const QString table = importIcsv(before, after);
        const QStringList expected = ImportTest::dump(*before).split(u'\n');
        const QStringList found = ImportTest::dump(*after).split(u'\n');
        ASSERT_GT(expected.size(), 100);
        for (qsizetype i = 0; i < std::min(expected.size(), found.size()); ++i)
            ASSERT_EQ(found.at(i), expected.at(i));
        EXPECT_EQ(found.size(), expected.size());
        EXPECT_EQ(rest(*after), rest(*before));
        // And what has come in goes out as the same table.
        EXPECT_EQ(importIcsv(after, ImportTest::emptyProject()), table);
    }
}
