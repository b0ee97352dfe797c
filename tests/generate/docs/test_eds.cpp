#include "generate/descriptions/edsgenerator.h"
#include "generate/docs/generatorjob.h"
#include "nodedict/canopendatatype.h"
#include "nodedict/cohelper.h"
#include "store/objectdatabase.h"
#include "support/projectbuilder.h"
#include "support/testhome.h"

#include <QDirIterator>
#include <QRegularExpression>

using namespace Qt::StringLiterals;
using TestSupport::ProjectBuilder;
using Sub = ObjectDataBase::SUBINDEX_DATA_T;

namespace {

QString edsOf(const ProjectBuilder &project, const EdsVariant &variant = {}, const DocsTest::Target &target = {})
{
    EDSGenerator generator;
    generator.setVariant(variant);
    return DocsTest::textOf(generator, project.store(), target);
}

/// What stands behind the head of a section up to the next head, empty lines left out.
QStringList section(const QString &eds, const QString &name)
{
    const qsizetype head = eds.indexOf(u"\n[%1]\n"_s.arg(name));
    if (head < 0)
        return {u"no section"_s};
    QStringList lines = eds.mid(head + 1).split(u'\n').mid(1);
    qsizetype count = 0;
    while (count < lines.size() && !lines.at(count).startsWith(u'['))
        ++count;
    lines = lines.first(count);
    lines.removeAll(QString());
    return lines;
}

} // namespace

/// A list names the mandatory objects of CiA 301 whether a device has them or not: an example has them.
TEST(Eds, OfAnExampleHasEverySectionThatItNames)
{
    int entries = 0;
    QDirIterator files(QStringLiteral(NCX_SOURCE_DIR "/examples"), {u"*.eds"_s}, QDir::Files,
                       QDirIterator::Subdirectories);
    while (files.hasNext()) {
        const QString eds = QString::fromUtf8(TestSupport::readFile(files.next())).remove(u'\r');
        for (const QString &list : {u"MandatoryObjects"_s, u"OptionalObjects"_s, u"ManufacturerObjects"_s}) {
            for (const QString &entry : section(eds, list)) {
                const qsizetype number = entry.indexOf("=0x"_L1);
                EXPECT_TRUE(number < 0 || eds.contains(u"\n[%1]\n"_s.arg(entry.mid(number + 3)), Qt::CaseInsensitive))
                    << qPrintable(files.filePath()) << qPrintable(entry);
                entries += number < 0 ? 0 : 1;
            }
        }
    }
    EXPECT_GE(entries, 30);
}

TEST(Eds, BreaksLongLinesOfDescriptions)
{
    const auto run = [](qsizetype count) { return QString(count, u'x'); };
    QString smileys;
    for (int i = 0; i < 251; ++i)
        smileys += u"😀"_s;
    struct Case
    {
        QString text;
        QStringList lines;
    };
    for (const Case &c : {Case{run(250), {run(250)}},
                          {run(251), {run(250), run(1)}},
                          {run(499), {run(250), run(249)}},
                          {run(500), {run(250)}},
                          {run(501), {run(250), run(250), run(1)}},
                          {run(750), {run(250), run(250)}},
                          {smileys, {smileys.first(500), smileys.first(2)}}}) {
        ProjectBuilder project;
        project.object(0x2000, u"Object"_s).sub(0, u"Sub"_s, [&](Sub &sub) { sub.description = c.text; });
        QStringList lines = section(edsOf(project), u"2000"_s).filter(QRegularExpression(u"^;;"_s));
        for (QString &line : lines)
            line = line.sliced(2);
        EXPECT_EQ(lines, c.lines) << c.text.size();
    }
}

TEST(Eds, EndsEarlyWhenItIsCancelled)
{
    ProjectBuilder project;
    project.object(0x2000, u"Object"_s).sub(0, u"Sub"_s);
    EDSGenerator generator;
    QList<int> heard;
    QObject::connect(
        &generator, &EDSGenerator::progress, &generator,
        [&](quint8 percent) {
            heard.append(percent);
            if (percent == 25)
                generator.cancelJob();
        },
        Qt::DirectConnection);
    const QString eds = DocsTest::textOf(generator, project.store());
    EXPECT_TRUE(eds.endsWith("[OptionalObjects]\nSupportedObjects=0\n\n"_L1));
    EXPECT_EQ(heard, (QList<int>{25, 98, 100}));
}
