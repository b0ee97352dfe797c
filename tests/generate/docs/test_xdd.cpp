#include "generate/common/doctext.h"
#include "generate/descriptions/xddgenerator.h"
#include "generate/docs/generatorjob.h"
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

/// Characters that XML or its writer might stumble over, as far as a project can hold them.
QString hardText()
{
    QString text = u"<a href=\"x\">&amp;'--]]>"_s;
    for (char16_t c = 1; c < 0x20; ++c)
        text += QChar(c);
    return text + u"\x7f\x85 größe ✓ 😀"_s;
}

} // namespace

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
    ProjectBuilder hard;
    const QString text = hardText();
    hard.object(0x2000, u"&"_s).object(0x3000, text).sub(0, text, [&](Sub &sub) {
        sub.datatype = CAN::VisibleString;
        sub.implementation = 2;
        sub.defaultvalue = text;
        sub.pdomapping = PDOMapping::Default;
    });
    hard.store()->setCurrentLine(0);
    for (const char *key : {"VendorName", "ProductName", "CreatedBy", "ModifiedBy", "FileVersion"})
        EXPECT_TRUE(hard.store()->setDescriptionSetting(QString::fromLatin1(key), text));

    const QString tool = QStandardPaths::findExecutable(u"xmllint"_s);
    QList<std::shared_ptr<ObjectDataBase>> stores{ProjectBuilder().store(), hard.store()};
    for (const QString &file : DocsTest::projectFiles().filter(u"fd_device"_s)) {
        stores.append(std::make_shared<ObjectDataBase>());
        ASSERT_TRUE(stores.last()->openTextDatabase(file));
    }
    for (const auto &store : stores) {
        for (const QString &baseName : {u"device"_s, u"a--b---c-"_s}) {
            const QTemporaryDir folder;
            XDDGenerator generator;
            const QString path = DocsTest::runJob(generator, store, folder.path(), {.baseName = baseName});
            const QStringList content = contentOf(QString::fromUtf8(TestSupport::readFile(path)));
            EXPECT_FALSE(content.last().startsWith("ERROR"_L1)) << qPrintable(content.last());
            if (store == hard.store()) {
                // Readers of XML take a CR in a text as a line feed.
                EXPECT_TRUE(content.contains(DocText::forXml(text).replace(u'\r', u'\n')));
                EXPECT_TRUE(content.last().endsWith(" accessPDO=default defaultValue="_L1 + DocText::forXml(text)));
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
