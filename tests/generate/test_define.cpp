#include "generate/base/runcontext.h"
#include "generate/define/definegenerator.h"
#include "generate/define/projectprops.h"
#include "generate/define/usersection.h"
#include "generate/recorder.h"
#include "generate/run/generatormainhandler.h"
#include "support/projectbuilder.h"
#include "support/testhome.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QRegularExpression>

using namespace Qt::StringLiterals;
using namespace TestSupport;

namespace {

/// A generated gen_define.h.
struct Header
{
    QString userSection;
    QString generationCount = u"none"_s; ///< as its macro has it
};

class Define : public testing::Test
{
protected:
    QString path() const { return folder_.filePath(u"gen_define.h"_s); }
    Header generated(const ProjectBuilder &project) const
    {
        const RunContext run = RunContext::ofProject(project.store());
        GenDefineGenerator generator;
        generator.setDatabase(run.store);
        generator.setOutputFolder(folder_.path());
        generator.setBaseName(u"device"_s);
        generator.startJob();
        generator.waitForJob();
        EXPECT_EQ(generator.errorText(), QString());
        Header header{.userSection = generator.userSection()};
        static const QRegularExpression count(u"#define GEN_GENERATION_COUNT\\t(\\w+)"_s);
        if (const auto match = count.match(QString::fromUtf8(readFile(path()))); match.hasMatch())
            header.generationCount = match.captured(1);
        return header;
    }

    QTemporaryDir folder_;
};

TEST_F(Define, KeepsTheUserSectionByteForByte)
{
    ProjectBuilder project;
    const QByteArray start = "/* user-specific section: start */\n";
    const QByteArray end = "/* user-specific section: end */\n\n#endif /* GEN_DEFINE_H */\n";
    EXPECT_EQ(generated(project).userSection, QString());
    EXPECT_TRUE(readFile(path()).endsWith(start + "\n" + end));

    const QByteArray mine(
        "\r\n#define MINE\t\"\xe4\xff ${NAME}\"\r\n/* user-specific section: start */\n\t \n#define X\n");
    QByteArray file = readFile(path());
    file.replace(start + "\n" + end, start + mine + end);
    for (int run = 0; run < 2; ++run) {
        ASSERT_TRUE(writeFile(path(), file));
        EXPECT_TRUE(generated(project).userSection.contains("#define MINE"_L1));
        file = readFile(path());
        EXPECT_TRUE(file.endsWith(start + mine + end));
    }
    // A project may have its line ends converted to those of another system, carriage returns alone included.
    project.general(u"generate_generation_counter"_s, u"1"_s);
    file = readFile(path());
    ASSERT_TRUE(
        writeFile(path(), file.replace(start + mine + end, start + "#define MINE\n" + end).replace('\n', '\r')));
    EXPECT_EQ(generated(project).generationCount, u"1ul");
    EXPECT_TRUE(readFile(path()).endsWith(start + "#define MINE\r" + end));
    ASSERT_TRUE(writeFile(path(), readFile(path()).replace('\n', '\r')));
    EXPECT_EQ(generated(project).generationCount, u"2ul");
    EXPECT_TRUE(readFile(path()).endsWith(start + "#define MINE\r" + end));
    // Without its end mark the section ends where the file does.
    EXPECT_EQ(FormerDefines::parse(start + mine + "\n#endif /* GEN_DEFINE_H */\n").userSection, mine + "\n");
    EXPECT_EQ(FormerDefines::parse(mine).userSection, "\t \n#define X\n");
}

TEST_F(Define, CountsGenerations)
{
    ProjectBuilder project;
    const auto count = [&] { return generated(project).generationCount; };
    EXPECT_EQ(count(), u"none");
    project.general(u"generate_generation_counter"_s, u"1"_s)
        .general(u"user_defines"_s, u"#undef GEN_GENERATION_COUNT"_s);
    EXPECT_EQ(count(), u"1ul");
    EXPECT_EQ(count(), u"2ul");
    QByteArray file = readFile(path());
    ASSERT_TRUE(writeFile(path(), file.replace("GEN_GENERATION_COUNT\t2ul\n", "GEN_GENERATION_COUNT\t0x1Ful\r\n")));
    EXPECT_EQ(count(), u"32ul");
    ASSERT_TRUE(writeFile(path(), "#define GEN_GENERATION_COUNT\t5\n")); // shorter than the suffix
    EXPECT_EQ(count(), u"1ul");
    ASSERT_TRUE(QFile::remove(path()));
    EXPECT_EQ(count(), u"1ul");
    project.general(u"generate_generation_counter"_s, u"0"_s);
    EXPECT_EQ(count(), u"none");
}

TEST_F(Define, TellsTheRunAboutTheUserSectionAndTheProps)
{
    ProjectBuilder project;
    project.general(u"gen_csharp_props"_s, u"1"_s);
    ASSERT_TRUE(project.save(folder_.filePath(u"device.ncxp"_s)));
    Recorder output;
    GeneratorMainHandler handler(&output);
    ASSERT_TRUE(handler.openProject(folder_.filePath(u"device.ncxp"_s)));
    const auto said = [&] {
        output.messages.clear();
        handler.generate(true);
        return output.messages.filter(QRegularExpression(u"gen_define"_s)).replaceInStrings(folder_.path(), u"DIR"_s);
    };
    const QString started = u"Generation of gen_define.h in DIR started"_s;
    const QString completed = u"Generation of gen_define.h completed. "_s;
    const QString props = u"Generation of gen_define.props and Directory.Build.props in DIR finished"_s;
    EXPECT_EQ(said(), (QStringList{started, completed, props}));
    QByteArray file = readFile(path());
    ASSERT_TRUE(writeFile(path(), file.replace("section: start */\n", "section: start */\n#define MINE\n")));
    EXPECT_EQ(said(),
              (QStringList{started, completed, u"gen_define.h contains user section:\n#define MINE\n\n"_s, props}));
    EXPECT_TRUE(readFile(folder_.filePath(u"gen_define.props"_s)).contains(";MINE</DefineConstants>"));

    QFile::remove(folder_.filePath(u"gen_define.props"_s));
    QDir(folder_.path()).mkdir(u"gen_define.props"_s);
    EXPECT_EQ(said().last(), u"The files gen_define.props and Directory.Build.props in DIR are not writable");
}

TEST_F(Define, FeedsTheBuildOfACSharpWrapper)
{
    EXPECT_EQ(ProjectProps::macroNames("#define A 1\r\n  # \tdefine\t B2_(x) x\n#define A 2\n#define 1C\n#defineD\n"
                                       "// #define E\n#define F\r#define G\r"),
              (QStringList{u"A"_s, u"B2_"_s, u"F"_s, u"G"_s}));

    EXPECT_TRUE(ProjectProps::write(folder_.path()));
    EXPECT_FALSE(QFile::exists(folder_.filePath(u"gen_define.props"_s)));
    EXPECT_EQ(readFile(folder_.filePath(u"Directory.Build.props"_s)),
              R"xml(<?xml version="1.0" encoding="utf-8"?>
<!-- Auto-imported by MSBuild. Pulls in the generated define -->
<!-- symbols (gen_define.props) if present; no error if absent. -->
<Project>
  <Import Project="$(MSBuildThisFileDirectory)gen_define.props"
          Condition="Exists('$(MSBuildThisFileDirectory)gen_define.props')" />
</Project>
)xml");
    ASSERT_TRUE(writeFile(path(), "#define A 1\n#define B 1\n"));
    EXPECT_TRUE(ProjectProps::write(folder_.path()));
    EXPECT_EQ(readFile(folder_.filePath(u"gen_define.props"_s)),
              R"(<?xml version="1.0" encoding="utf-8"?>
<!-- Auto-generated from gen_define.h - do not edit. -->
<!-- C# conditional-compilation symbols that make the #if in the -->
<!-- generated wrapper match the compiled stack_wrapper DLL. -->
<!-- Imported automatically by Directory.Build.props when present. -->
<Project>
<PropertyGroup>
<DefineConstants>$(DefineConstants);A;B</DefineConstants>
</PropertyGroup>
</Project>
)");
    QFile::remove(folder_.filePath(u"gen_define.props"_s));
    QDir(folder_.path()).mkdir(u"gen_define.props"_s);
    EXPECT_FALSE(ProjectProps::write(folder_.path()));
}

} // namespace
