#include "generate/docs/doctext.h"
#include "generate/docs/generatorjob.h"
#include "generate/docs/xddgenerator.h"
#include "nodedict/canopendatatype.h"
#include "nodedict/cohelper.h"
#include "store/objectdatabase.h"
#include "support/processrunner.h"
#include "support/projectbuilder.h"

#include <QStandardPaths>
#include <QXmlStreamReader>

using namespace Qt::StringLiterals;
using TestSupport::ProcessRunner;
using TestSupport::ProjectBuilder;
using Sub = ObjectDataBase::SUBINDEX_DATA_T;

namespace {

/// The start tags of a document as "Name key=value ..." and its texts, in order; the reason where it is not
/// well-formed.
QStringList contentOf(const QString &xml)
{
    QStringList content;
    QXmlStreamReader reader(xml);
    while (!reader.atEnd()) {
        reader.readNext();
        if (reader.isStartElement()) {
            QString tag = reader.qualifiedName().toString();
            for (const QXmlStreamAttribute &attribute : reader.attributes())
                tag += u" %1=%2"_s.arg(attribute.qualifiedName(), attribute.value());
            content.append(tag);
        } else if (reader.isCharacters() && !reader.isWhitespace()) {
            content.append(reader.text().toString());
        }
    }
    if (reader.hasError())
        content.append("ERROR: "_L1 + reader.errorString());
    return content;
}

QString xddOf(const ProjectBuilder &project, const DocsTest::Target &target = {})
{
    XDDGenerator generator;
    return DocsTest::textOf(generator, project.store(), target);
}

ProjectBuilder sampleProject()
{
    ProjectBuilder project;
    project.object(0x1018, u"Identity"_s).sub(1, u"Vendor"_s, [](Sub &sub) { sub.defaultvalue = u"0x5A7"_s; });
    ObjectDataBase::INDEX_DATA_T record;
    record.name = u"Identity"_s;
    record.objecttype = CANopen::Record;
    project.store()->addIndex(0, 0x1018, record);
    project.object(0x2000, u"List of ${index:x}"_s);
    record.name = u"List of ${index:x}"_s;
    record.objecttype = CANopen::Array;
    record.datatype = CAN::Utf8String;
    project.store()->addIndex(0, 0x2000, record);
    const auto sub = [&](quint8 subindex, const char *access, quint8 implementation, bool hasDefault,
                         PDOMapping mapping) {
        project.sub(subindex, u"Item ${subindex}"_s, [&](Sub &data) {
            data.accesstype = QString::fromLatin1(access);
            data.implementation = implementation;
            data.defaultineds = hasDefault;
            data.defaultvalue = u"3"_s;
            data.pdomapping = mapping;
        });
    };
    sub(0, "const", 1, true, PDOMapping::Forbidden);
    sub(1, "ro", 2, true, PDOMapping::TPDO);
    sub(2, "wo", 2, false, PDOMapping::Allowed);
    sub(3, "rww", 1, false, PDOMapping::Default);
    sub(4, "rwr", 0, true, PDOMapping::RPDO);
    sub(0x1a, "rw", 3, true, PDOMapping(17U));
    project.sub(0x1b, u"Empty"_s, [](Sub &data) { data.implementation = 2; });
    return project;
}

/// Characters that XML or its writer might stumble over, as far as a project can hold them.
QString hardText()
{
    QString text = u"<a href=\"x\">&amp;'--]]>"_s;
    for (char16_t c = 1; c < 0x20; ++c)
        text += QChar(c);
    return text + u"\x7f\x85 größe ✓ 😀"_s;
}

} // namespace

TEST(Xdd, NamesFilesByVendor)
{
    ProjectBuilder project = sampleProject();
    EXPECT_EQ(XDDGenerator::nameOf(*project.store(), u"base"_s, 0, false), u"000005a7_base");
    EXPECT_EQ(XDDGenerator::nameOf(*project.store(), u"base"_s, 0, true), u"000005a7_base_0");
    EXPECT_EQ(XDDGenerator::nameOf(*project.store(), u"base"_s, 1, true), u"00000000_base_1");
}

TEST(Xdd, AttributesOfObjectsAndSubindices)
{
    const QString element =
        u"CANopenFDDataElement subIndex=%1 name=%2 dataType=05 modification=%3 accessUSDO=%4 accessPDO=%5"_s;
    const QStringList content = contentOf(xddOf(sampleProject()));
    EXPECT_EQ(content.mid(content.indexOf("CANopenFDObjectList"_L1) + 1),
              (QStringList{u"CANopenFDDataObject index=1018 name=Identity objectType=9"_s,
                           element.arg(u"01"_s, u"Vendor"_s, u"true"_s, u"ro"_s, u"no"_s),
                           u"CANopenFDDataObject index=2000 name=List of 2000 objectType=8 dataType=7c"_s,
                           element.arg(u"00"_s, u"Item 0"_s, u"false"_s, u"ro"_s, u"no defaultValue=3"_s),
                           element.arg(u"01"_s, u"Item 1"_s, u"true"_s, u"ro"_s, u"TPDO defaultValue=3"_s),
                           element.arg(u"02"_s, u"Item 2"_s, u"true"_s, u"wo"_s, u"optional"_s),
                           element.arg(u"03"_s, u"Item 3"_s, u"true"_s, u"rw"_s, u"default"_s),
                           element.arg(u"04"_s, u"Item 4"_s, u"true"_s, u"rw"_s, u"RPDO"_s),
                           element.arg(u"1a"_s, u"Item 26"_s, u"true"_s, u"rw"_s, u"no"_s),
                           element.arg(u"1b"_s, u"Empty"_s, u"true"_s, u"ro"_s, u"no"_s)}));
}

TEST(Xdd, KeepsOutWhatXmlForbids)
{
    const QChar half(0xd83d);
    const QChar otherHalf(0xde00);
    const QString forbidden = u"a\x01\x1f"_s + half + u'b' + otherHalf + half + QChar(0xfffe) + QChar(0xffff) + half;
    EXPECT_EQ(DocText::forXml(forbidden), u"a\xfffd\xfffd\xfffd"
                                          u"b\xfffd\xfffd\xfffd\xfffd\xfffd");
    const QString allowed = u"<&> \t\n\r\x7f\x85 ✓"_s + half + otherHalf;
    EXPECT_EQ(DocText::forXml(allowed), allowed);
}

TEST(Xdd, HoldsToTheSchemaWhateverTheNames)
{
    ProjectBuilder hard = sampleProject();
    const QString text = hardText();
    hard.object(0x3000, text).sub(0, text, [&](Sub &sub) {
        sub.datatype = CAN::VisibleString;
        sub.implementation = 2;
        sub.defaultvalue = text;
    });
    hard.store()->setCurrentLine(0);
    for (const char *key : {"VendorName", "ProductName", "CreatedBy", "ModifiedBy", "FileVersion"})
        hard.store()->setDescriptionSetting(QString::fromLatin1(key), text);

    const QString tool = QStandardPaths::findExecutable(u"xmllint"_s);
    for (const ProjectBuilder &project : {sampleProject(), ProjectBuilder(), hard}) {
        for (const QString &baseName : {u"device"_s, u"a--b---c-"_s}) {
            const QTemporaryDir folder;
            XDDGenerator generator;
            const QString path = DocsTest::runJob(generator, project.store(), folder.path(), {.baseName = baseName});
            const QStringList content = contentOf(QString::fromUtf8(TestSupport::readFile(path)));
            EXPECT_FALSE(content.last().startsWith("ERROR"_L1)) << qPrintable(content.last());
            if (project.store() == hard.store()) {
                // Readers of XML take a CR in a text as a line feed.
                EXPECT_TRUE(content.contains(DocText::forXml(text).replace(u'\r', u'\n')));
                EXPECT_TRUE(content.last().endsWith(" defaultValue="_L1 + DocText::forXml(text)));
            }
            if (tool.isEmpty())
                continue;
            const auto result = ProcessRunner(tool)
                                    .arguments({u"--noout"_s, u"--schema"_s,
                                                QStringLiteral(NCX_SOURCE_DIR "/tests/data/xdd/canopenfd.xsd"), path})
                                    .run();
            EXPECT_EQ(result.exitCode, 0) << qPrintable(result.errors);
        }
    }
    if (tool.isEmpty())
        GTEST_SKIP() << "xmllint is missing: read as XML, but not held against the schema";
}
