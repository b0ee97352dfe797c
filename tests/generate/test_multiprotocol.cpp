#include "generate/generatormainhandler.h"
#include "generate/outputhandlerbase.h"
#include "generate/stack/multiprogenerator.h"
#include "generatedc.h"

#include <gtest/gtest.h>

#include <unistd.h>

using namespace Qt::StringLiterals;
using namespace TestSupport;

namespace {

constexpr quint8 tx = ObjectDataBase::transmit;

class Recorder : public OutputHandlerBase
{
public:
    void message(const QVariant &value) override { messages.append(value.toString()); }
    void forwardMessage(const QVariant & /*value*/) override {}
    QString collectedText() const override { return {}; }

    QStringList messages;
};

/// A whole run on a project in a folder of its own.
class DeviceRun
{
public:
    explicit DeviceRun(ProjectBuilder &project)
        : handler_(&output_)
    {
        QObject::connect(&handler_, &GeneratorMainHandler::finished, &handler_,
                         [this](GeneratorMainHandler::GeneratorResult value) { result = value; });
        project.save(folder_.filePath(u"device.ncxp"_s));
        handler_.openProject(folder_.filePath(u"device.ncxp"_s));
    }

    QString path(const QString &name) const { return folder_.filePath(name); }
    bool has(const QString &name) const { return QFile::exists(path(name)); }
    ObjectDataBase &store() { return *handler_.database(); }
    /// The messages, with the folder's path as "DIR".
    QStringList generate()
    {
        output_.messages.clear();
        handler_.generate(true);
        return QStringList(output_.messages).replaceInStrings(folder_.path(), u"DIR"_s);
    }

    int result = -1;

private:
    QTemporaryDir folder_;
    Recorder output_;
    GeneratorMainHandler handler_;
};

TEST(MultiProtocol, NamesItsFileByTheKindOfDevice)
{
    struct Case
    {
        QList<int> lineTypes;
        bool bootloader;
        QString file;
        QString title;
        QString function;
    };
    const QString allTables = u" * object dictionary + PGN/SPN table + CAN-ID table + initialization for device - "_s;
    const QString canIds = u" * CAN-ID table + initialization for device - "_s;
    const QList<Case> cases{
        {{4}, false, u"gen_rawcan.c"_s, canIds, u"RET_T rawcanStackInit(void) {"_s},
        {{4}, true, u"gen_uds.c"_s, u" * Initialization for device - "_s, u"RET_T udsStackInit(void) {"_s},
        {{4, 4}, true, u"gen_rawcan.c"_s, canIds, u"RET_T rawcanStackInit(void) {"_s},
        {{6}, true, u"gen_mp.c"_s, allTables, u"RET_T mpStackInit("_s},
        {{7}, false, u"gen_mp.c"_s, allTables, u"RET_T mpStackInit("_s},
        {{1, 2}, false, u"gen_mp.c"_s, allTables, u"RET_T mpStackInit_line1(UNSIGNED8 canLine)\n{"_s},
        {{2, 2}, false, u"gen_pgn.c"_s, u" * J1939 PGN definitions for device - "_s, u"RET_T j1939StackInit("_s},
        {{1}, false, u"gen_objdict.c"_s, u" * object dictionary for device - "_s, u"RET_T coCanOpenStackInit("_s},
    };
    const QStringList sources{u"gen_mp.c"_s, u"gen_rawcan.c"_s, u"gen_uds.c"_s, u"gen_pgn.c"_s, u"gen_objdict.c"_s};
    for (const Case &row : cases) {
        ProjectBuilder project;
        for (quint8 line = 0; line < row.lineTypes.size(); ++line)
            project.line(line, row.lineTypes.at(line));
        project.general(u"uds_bl_setting"_s, row.bootloader ? u"1"_s : u"0"_s);
        DeviceRun run(project);
        // What the device had when it was of another kind stays.
        for (const QString &source : sources)
            writeFile(run.path(source), "old");
        const QStringList messages = run.generate();
        SCOPED_TRACE(qPrintable(messages.join(u'\n')));
        EXPECT_EQ(run.result, 0);
        for (const QString &source : sources)
            EXPECT_EQ(readFile(run.path(source)) != "old", source == row.file) << qPrintable(source);
        const QString text = QString::fromUtf8(readFile(run.path(row.file)));
        EXPECT_TRUE(text.contains(row.title) && text.contains(row.function)) << qPrintable(text);
        const bool severalKinds = row.file != "gen_pgn.c"_L1 && row.file != "gen_objdict.c"_L1;
        EXPECT_EQ(messages.contains(u"Generation of gen_mp.c in DIR started"_s), severalKinds);
        EXPECT_TRUE(messages.contains(u"Generation of %1 completed. "_s.arg(row.file)));
        const bool oneLineBootloader = row.bootloader && row.lineTypes.size() == 1;
        const bool declares = !oneLineBootloader && row.lineTypes != QList<int>{1};
        EXPECT_EQ(run.has(u"gen_extern_decl.h"_s), declares);
        EXPECT_EQ(run.has(u"gen_var_decl.c"_s), declares);
        EXPECT_EQ(text.contains(u"#include <gen_extern_decl.h>"_s), declares);
    }
}

TEST(MultiProtocol, TakesTheMasterOfADeviceWithoutOptions)
{
    ProjectBuilder project;
    project.line(0, 5).general(u"nmtmaster"_s, u"2"_s).object(0x1000, u"Device type"_s).object(0x1001, u"Error"_s);
    const GeneratedC folder;
    MultiProGeneratorV4 generator({.canOpen = true, .j1939 = true}, false);
    folder.generate(generator, project);
    const QString text = folder.text(u"gen_mp.c"_s);
    EXPECT_TRUE(text.contains(u"retVal = coNmtInit(1u);"_s)) << qPrintable(text);
    EXPECT_FALSE(text.contains(u"pCoOptions"_s));
}

TEST(MultiProtocol, SaysWhichFileItCannotWrite)
{
    if (geteuid() == 0)
        GTEST_SKIP() << "the superuser may write everything";
    for (const auto &[type, file] : {std::pair(7, u"gen_mp.c"_s), {4, u"gen_rawcan.c"_s}}) {
        ProjectBuilder project;
        project.line(0, type);
        DeviceRun run(project);
        for (const QString &name : {file, u"gen_extern_decl.h"_s}) {
            writeFile(run.path(name), "kept");
            QFile(run.path(name)).setPermissions(QFileDevice::ReadOwner);
        }
        EXPECT_TRUE(run.generate().contains(u"The file %1 in DIR is not writable"_s.arg(file)));
        EXPECT_EQ(readFile(run.path(u"gen_extern_decl.h"_s)), "kept");
        EXPECT_EQ(run.result, 0);
    }
}

TEST(RunRows, EndWithoutTheTemplateOfSafetyObjects)
{
    ProjectBuilder project;
    project.object(0x1000, u"Device type"_s).object(0x1301, u"SRDO"_s).misc(u"costackpath"_s, u"/none"_s);
    DeviceRun run(project);
    const QStringList messages = run.generate();
    EXPECT_EQ(run.result, GeneratorMainHandler::TemplateFailure);
    EXPECT_EQ(messages.last(), u"Template file not found.");
    EXPECT_TRUE(messages.contains(u"<b>ERROR - Generation of gen_srdo.c failed. Template file not found.</b>"_s));
    EXPECT_TRUE(run.has(u"gen_objdict.c"_s));
    EXPECT_FALSE(run.has(u"gen_define.h"_s));
    EXPECT_FALSE(messages.contains(u"Generation finished."_s));
    run.store().setMiscSetting(u"costackpath"_s, QStringLiteral(NCX_SOURCE_DIR "/examples/stack"));
    run.generate();
    EXPECT_EQ(run.result, 0);
    EXPECT_TRUE(run.has(u"gen_srdo.c"_s));
}

TEST(RunRows, GoOnWithoutTheTemplateOfSafetyGroups)
{
    ProjectBuilder project;
    project.line(0, 2).j1939(u"safetysupport"_s, u"1"_s);
    project.pgn(61440, tx, u"Safe"_s, [](auto &pgn) { pgn.issafe = true; }).spn(1, u"Signal"_s);
    DeviceRun run(project);
    const QStringList messages = run.generate();
    EXPECT_EQ(run.result, 0);
    EXPECT_TRUE(messages.contains(u"Generation of file in DIR started"_s));
    EXPECT_TRUE(messages.contains(u"<b>ERROR - Generation of gen_sdg.c failed. Could not find template file: "
                                  "/j1939_lib_sl/src/gen_sdg.tpl (configured stack path: )</b>"_s))
        << qPrintable(messages.join(u'\n'));
    EXPECT_EQ(messages.last(), u"Generation completed.");
    EXPECT_FALSE(run.has(u"gen_sdg.c"_s));
    run.store().setMiscSetting(u"costackpath"_s, QStringLiteral(NCX_SOURCE_DIR "/examples/stack"));
    EXPECT_TRUE(run.generate().contains(
        u"Generation of gen_sdg.c completed. (1 transmitted, 0 received safety data groups)"_s));
}

TEST(RunRows, RemoveWhatAJ1939DeviceNoLongerHas)
{
    const QStringList adapters{u"gen_j1939_adapter.c"_s, u"gen_j1939_adapter.cs"_s, u"j1939_adapter.cs"_s,
                               u"j1939_adapter.c"_s};
    for (const bool keepsAdapter : {false, true}) {
        ProjectBuilder project;
        project.line(0, 2).j1939(u"j1939adapter"_s, keepsAdapter ? u"1"_s : u"0"_s);
        DeviceRun run(project);
        for (const QString &name : adapters + QStringList{u"gen_indication.h"_s})
            writeFile(run.path(name), "old");
        run.generate();
        for (const QString &name : adapters)
            EXPECT_EQ(run.has(name), keepsAdapter) << qPrintable(name);
        EXPECT_FALSE(run.has(u"gen_indication.h"_s));
    }
}

} // namespace
