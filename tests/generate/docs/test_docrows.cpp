#include "generate/generatormainhandler.h"
#include "generate/outputhandlerbase.h"
#include "nodedict/cohelper.h"
#include "support/projectbuilder.h"
#include "support/testhome.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFileInfo>
#include <QRegularExpression>

using namespace Qt::StringLiterals;
using TestSupport::ProjectBuilder;

namespace {

class Recorder : public OutputHandlerBase
{
public:
    void message(const QVariant &value) override { messages.append(value.toString()); }
    void forwardMessage(const QVariant &) override {}
    QString collectedText() const override { return {}; }

    QStringList messages;
};

/// Runs the whole table over a project and keeps what is said about device descriptions and tables.
class DocumentRows : public testing::Test
{
protected:
    void generate(ProjectBuilder &project)
    {
        ASSERT_TRUE(project.save(folder_.filePath(u"device.ncxp"_s)));
        GeneratorMainHandler handler(&output_);
        ASSERT_TRUE(handler.openProject(folder_.filePath(u"device.ncxp"_s)));
        handler.generate(true);
    }

    QStringList messages()
    {
        static const QRegularExpression ours(u"Generation of .*(CSV|EDS|XDD)|EDS file|not writable"_s);
        return output_.messages.filter(ours)
            .filter(QRegularExpression(u"started|Warning|writable"_s))
            .replaceInStrings(folder_.path(), u"DIR"_s);
    }

    QStringList files() const
    {
        return QDir(folder_.path())
            .entryList({u"*.eds"_s, u"*.csv"_s, u"*.icsv"_s, u"*.xdd"_s}, QDir::Files, QDir::Name);
    }

    QString contents(const QString &name) const
    {
        return QString::fromUtf8(TestSupport::readFile(folder_.filePath(name)));
    }

    QTemporaryDir folder_;
    Recorder output_;
};

TEST_F(DocumentRows, AnExtendedAndAClassicalFileForEachTag)
{
    ProjectBuilder project;
    project.general(u"canfd_supported"_s, u"1"_s).misc(u"disableDocu"_s, u"true"_s);
    project.object(0x1018, u"Identity"_s).sub(1, u"Vendor"_s, [](auto &sub) { sub.defaultvalue = u"1447"_s; });
    project.object(0x1030, u"FD only"_s).sub(0, u"FD only"_s);
    project.object(0x2000, u"Tagged"_s, {{u"eds_define"_s, u"A"_s}}).sub(0, u"Tagged"_s);
    project.line(1, 4).line(2, 5);
    generate(project);
    EXPECT_EQ(messages(),
              (QStringList{
                  u"Generation of CSV file (deprecated) in DIR started"_s,
                  u"Generation of CSV file (deprecated) in DIR started"_s, u"Generation of ICSV file in DIR started"_s,
                  u"Generation of ICSV file in DIR started"_s, u"Generation of device_0.eds EDS file in DIR started"_s,
                  u"Generation of device_0_classical.eds classical EDS file in DIR started"_s,
                  u"Generation of A EDS file in DIR started"_s, u"Generation of A classical EDS file in DIR started"_s,
                  u"Warning: multiple different EDS files to be generated.\n"_s,
                  u"Generation of device_2.eds EDS file in DIR started"_s,
                  u"Generation of device_2_classical.eds classical EDS file in DIR started"_s,
                  u"Generation of XDD file in DIR started"_s, u"Generation of XDD file in DIR started"_s}));
    EXPECT_EQ(files(),
              (QStringList{u"00000000_device_2.xdd"_s, u"000005a7_device_0.xdd"_s, u"device_0.csv"_s, u"device_0.eds"_s,
                           u"device_0.icsv"_s, u"device_0_A.eds"_s, u"device_0_classical.eds"_s, u"device_2.csv"_s,
                           u"device_2.eds"_s, u"device_2.icsv"_s, u"device_2_classical.eds"_s}));
    EXPECT_TRUE(contents(u"device_0.eds"_s).contains("[1030]"_L1));
    EXPECT_FALSE(contents(u"device_0_classical.eds"_s).contains("[1030]"_L1));
    // The classical file of a tag takes the place of its extended one.
    EXPECT_TRUE(contents(u"device_0_A.eds"_s).contains("[2000]"_L1));
    EXPECT_FALSE(contents(u"device_0_A.eds"_s).contains("[1030]"_L1));
    EXPECT_FALSE(contents(u"device_0.icsv"_s).contains("description"_L1));
}

TEST_F(DocumentRows, TheSdoServerOfAJ1939DeviceHasADescription)
{
    ProjectBuilder project;
    project.line(0, 2).object(0x1000, u"Type"_s).sub(0, u"Type"_s).j1939(u"cia510serversupport"_s, u"1"_s);
    generate(project);
    EXPECT_EQ(messages(), QStringList{u"Generation of device EDS file in DIR started (for CAM11/CAM21 SDO Server)"_s});
    EXPECT_EQ(files(), QStringList{u"device.eds"_s});

    project.j1939(u"cia510serversupport"_s, u"0"_s);
    EXPECT_TRUE(QFile::remove(folder_.filePath(u"device.eds"_s)));
    output_.messages.clear();
    generate(project);
    EXPECT_EQ(files(), QStringList());
}

TEST_F(DocumentRows, NamesTheFileThatIsNotWritable)
{
    ProjectBuilder project;
    project.general(u"canfd_supported"_s, u"1"_s);
    project.object(0x2000, u"Tagged"_s, {{u"eds_define"_s, u"A"_s}}).sub(0, u"Tagged"_s);
    for (const char *name : {"device.csv", "device.icsv", "device.eds", "device_A.eds", "00000000_device.xdd"}) {
        const QString path = folder_.filePath(QString::fromLatin1(name));
        ASSERT_TRUE(TestSupport::writeFile(path, "former") && QFile::setPermissions(path, QFile::ReadOwner));
        if (QFileInfo(path).isWritable())
            GTEST_SKIP() << "this user may write everything";
    }
    generate(project);
    EXPECT_EQ(
        messages().filter(u"writable"_s),
        (QStringList{u"The file device.csv in DIR is not writable"_s, u"The file device.icsv in DIR is not writable"_s,
                     u"The EDS file device.eds in DIR is not writable"_s,
                     u"The EDS file device_A.eds in DIR is not writable"_s,
                     u"The EDS file device_A.eds in DIR is not writable"_s,
                     u"The XDD file 00000000_device.xdd in DIR is not writable"_s}));
    EXPECT_EQ(contents(u"device.eds"_s), u"former");
}

} // namespace
