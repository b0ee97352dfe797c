#include "stack/describeddevice.h"
#include "stack/generatedsources.h"

#include "store/objectdatabase.h"
#include "support/processrunner.h"
#include "support/testhome.h"

#include <gtest/gtest.h>

#include <QDir>

using namespace Qt::StringLiterals;
using namespace TestSupport;

// Real device descriptions become projects: `ncx new --from`. What comes out of them compiles and can be walked, and
// whatever differs from the maker's file is told in the report.

namespace {

const QStringList sectionsOfPrograms{u"comments"_s, u"mandatoryobjects"_s, u"optionalobjects"_s,
                                     u"manufacturerobjects"_s};

/// A description that `ncx new` has made a project of.
struct MadeProject
{
    GeneratedSources sources;
    QString path = sources.folder() + u"/device.ncxp"_s;
    int exitCode = -1;
    QStringList report;

    void make(const QString &file, const QStringList &options)
    {
        const ProcessResult result =
            ProcessRunner(u"ncx"_s).arguments(QStringList{u"new"_s, path, u"--from"_s, file} + options).run();
        exitCode = result.exitCode;
        EXPECT_EQ(result.errors.toStdString(), "");
        report = QString::fromUtf8(readFile(path + u".report.txt"_s)).split(u'\n');
    }

    /// True if a line of the report is about this place, and names the key.
    bool tells(const QString &place, const QString &key) const
    {
        // A single value is told under the name of its object, and what was added whole under that, too.
        const QString object = place.section(u':', 0, 0);
        return std::ranges::any_of(report, [&](const QString &line) {
            const bool isAdded = line.contains(object + u' ') && line.contains("added"_L1);
            const bool isThere = line.contains(place + u' ') || line.contains(place + u':') ||
                                 (place.endsWith(":0"_L1) && line.contains(object + u' '));
            return isAdded || (isThere && line.contains(key, Qt::CaseInsensitive));
        });
    }

    bool tells(const QString &text) const
    {
        return std::ranges::any_of(report,
                                   [&](const QString &line) { return line.contains(text, Qt::CaseInsensitive); });
    }
};

void expectDifferencesTold(const MadeProject &made, const QString &file)
{
    const DescribedDevice maker = DescribedDevice::read(file);
    const DescribedDevice generated = DescribedDevice::read(made.sources.folder() + u"/device.eds"_s);
    ASSERT_FALSE(generated.parts.isEmpty());
    for (const DescriptionDifference &difference : differences(maker, generated)) {
        const bool isParameter = difference.key == "parametervalue"_L1 || difference.key == "denotation"_L1;
        const bool isTold = difference.place.startsWith("0x"_L1) ? made.tells(difference.place, difference.key)
                                                                 : made.tells(difference.key);
        EXPECT_TRUE(isTold || (isParameter && made.tells(difference.key))) << difference.text().toStdString();
    }
    // Whole sections that have no place.
    for (const QString &section : maker.sections.keys()) {
        const bool isKept = generated.sections.contains(section) || sectionsOfPrograms.contains(section) ||
                            section.endsWith("name"_L1) || section.endsWith("value"_L1) ||
                            section.endsWith("denotation"_L1);
        EXPECT_TRUE(isKept || made.tells(u'[' + section + u']')) << section.toStdString();
    }
}

/// Holds the settled project against a mere import of the file.
void expectChangesTold(MadeProject &made, const QString &file)
{
    GeneratedSources imported;
    const QString project = imported.folder() + u"/imported.ncxt"_s;
    ASSERT_TRUE(writeFile(project, "[GeneralSettings]\nco_timer_interval=1000\nline0type=1\n[Nodes]\n0\\name=can0\n"));
    ASSERT_TRUE(imported.openProject(project));
    ASSERT_TRUE(imported.importFile(file));
    QHash<quint32, ObjectDataBase::SUBINDEX_DATA_T> before;
    for (const ObjectDataBase::SubEntry &entry : imported.store().getAllSubIndices(0))
        before.insert(quint32{entry.index} << 8 | entry.subindex, entry.data);
    for (const ObjectDataBase::SubEntry &entry : made.sources.store().getAllSubIndices(0)) {
        const QString place = u"0x%1:%2"_s.arg(entry.index, 4, 16, '0'_L1).arg(entry.subindex);
        const auto was = before.value(quint32{entry.index} << 8 | entry.subindex);
        if (entry.data != was) {
            EXPECT_TRUE(made.tells(place, {})) << place.toStdString();
        }
        if (entry.data.implementation != was.implementation || entry.data.size != was.size) {
            EXPECT_TRUE(made.tells(place, u"kept by"_s) || made.tells(place, u"size"_s)) << place.toStdString();
        }
    }
    for (const QString &key : made.sources.store().getGeneralSettings().keys()) {
        static const QSet<QString> ofEveryProject{u"co_node_id"_s, u"co_timer_interval"_s, u"line0type"_s};
        const QString value = made.sources.store().getGeneralSetting(key);
        if (value != imported.store().getGeneralSetting(key) && !ofEveryProject.contains(key)) {
            EXPECT_TRUE(made.tells("setting "_L1 + key)) << key.toStdString();
        }
    }
}

void expectSources(GeneratedSources &sources, const QString &project)
{
    ASSERT_TRUE(sources.openProject(project));
    ASSERT_TRUE(sources.generate());
    ASSERT_EQ(sources.compile(), QString());
    ASSERT_EQ(sources.link(), QString());
    const QStringList dump = sources.walk({u"dump"_s}).split(u'\n', Qt::SkipEmptyParts);
    const qsizetype subindices = sources.store().getAllSubIndices(0).size();
    EXPECT_GE(dump.size(), subindices) << "the walker has not found all";
    EXPECT_TRUE(sources.walk({u"start"_s}).endsWith("returns OK\n"_L1));
}

QStringList corpusFiles()
{
    const QDir corpus(corpusFolder());
    QStringList files;
    for (const QString &file : corpus.entryList({u"*.eds"_s, u"*.dcf"_s}, QDir::Files, QDir::Name))
        files.append(corpus.filePath(file));
    return files;
}

/// How many of the real files become projects that generate; all that do are held against their files.
qsizetype countOfProjects(const QStringList &files, const QStringList &options)
{
    qsizetype count = 0;
    for (const QString &file : files) {
        SCOPED_TRACE(qPrintable(QFileInfo(file).fileName() + u' ' + options.join(u' ')));
        MadeProject made;
        made.make(file, options);
        if (made.exitCode != 0)
            continue;
        ++count;
        // Nothing to mend makes the project that there is without --repair.
        if (options == QStringList{u"--repair"_s} && !made.tells(u"mended"_s))
            continue;
        expectSources(made.sources, made.path);
        expectDifferencesTold(made, file);
        if (!options.contains(u"--configured"_s))
            expectChangesTold(made, file);
    }
    return count;
}

TEST(Descriptions, OfRealDevicesBecomeProjects)
{
    if (corpusFolder().isEmpty())
        GTEST_SKIP() << "the folder of real device files is missing (NCX_CORPUS)";
    const QStringList files = corpusFiles();
    ASSERT_FALSE(files.isEmpty());
    EXPECT_GE(countOfProjects(files, {}) * 3, files.size() * 2);
}

TEST(Descriptions, OfRealDevicesBecomeProjectsWhenMended)
{
    if (corpusFolder().isEmpty())
        GTEST_SKIP() << "the folder of real device files is missing (NCX_CORPUS)";
    const QStringList files = corpusFiles();
    EXPECT_EQ(countOfProjects(files, {u"--repair"_s}), files.size());
    EXPECT_EQ(countOfProjects(files.filter(u".dcf"_s), {u"--repair"_s, u"--configured"_s}),
              files.filter(u".dcf"_s).size());
}

} // namespace
