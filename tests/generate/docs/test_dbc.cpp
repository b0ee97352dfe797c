#include "candb/dbcreader.h"
#include "generate/base/utf8sink.h"
#include "generate/bus/candbdbc.h"
#include "generate/bus/dbcgenerator.h"
#include "generate/bus/dbcwriter.h"
#include "generate/docs/generatorjob.h"
#include "support/nodepackage.h"
#include "support/processrunner.h"
#include "support/projectbuilder.h"

#include <QDir>
#include <QDirIterator>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>

using namespace Qt::StringLiterals;
using TestSupport::ProjectBuilder;

namespace {

QString text(const CANdb::Database &database)
{
    QBuffer result;
    result.open(QIODevice::WriteOnly);
    Utf8Sink sink(&result);
    writeDbc(sink, database);
    sink.flush();
    return QString::fromUtf8(result.data());
}

/// The DBC files that the goldens expect.
QStringList goldenFiles()
{
    QStringList files;
    for (const char *root : {"/tests/data/golden", "/examples"}) {
        QDirIterator it(QStringLiteral(NCX_SOURCE_DIR) + QString::fromLatin1(root), {u"*.dbc"_s}, QDir::Files,
                        QDirIterator::Subdirectories);
        while (it.hasNext())
            files.append(it.next());
    }
    return files;
}

} // namespace

TEST(Dbc, TellsWhyTheFileCannotBeMade)
{
    ProjectBuilder project;
    project.line(0, 2);
    const QTemporaryDir folder;
    const auto errorOf = [&](const QString &baseName) {
        DBCGenerator generator;
        generator.setDatabase(project.store());
        generator.setOutputFolder(folder.path());
        generator.setBaseName(baseName);
        generator.startJob();
        generator.waitForJob();
        return generator.errorText();
    };
    ASSERT_TRUE(QDir(folder.path()).mkpath(u"taken.dbc/x"_s));
    EXPECT_EQ(errorOf({}), u"Empty target file name");
    const QString error = errorOf(u"taken"_s);
    EXPECT_TRUE(error.startsWith(u"Could not copy output file. /"_s)) << qPrintable(error);
    EXPECT_TRUE(error.endsWith(u" - "_s + folder.filePath(u"taken.dbc"_s))) << qPrintable(error);
    CANdbDBC dbc;
    EXPECT_FALSE(dbc.writeFile({}));
    EXPECT_EQ(dbc.errorText(), u"Empty target file name");
}

TEST(CANdbDBC, RefusesWhatAFileCannotHold)
{
    using Type = CANdb::AttributeDefinition::Type;
    CANdbDBC dbc;
    EXPECT_TRUE(dbc.defineAttribute({u"Time"_s, CANdb::Owner::Message, Type::Integer, 0, 10, {}, {}}));
    EXPECT_FALSE(dbc.defineAttribute({u"Time"_s, CANdb::Owner::Message, Type::String, 0, 0, {}, {}}));
    EXPECT_TRUE(dbc.defineAttribute({u"Kind"_s, CANdb::Owner::Signal, Type::Enumeration, 0, 0, {u"a"_s, u"b"_s}, {}}));
    EXPECT_FALSE(dbc.setAttribute(u"Time"_s, u"5"_s));

    CANdbDBC::MessageRef message = dbc.addMessage(1);
    EXPECT_FALSE(dbc.addMessage(1).isValid());
    EXPECT_FALSE(dbc.addMessage(1).setName(u"x"_s));
    EXPECT_FALSE(message.setName(u"two words"_s) || message.setName(u"1st"_s) || message.setName({}));
    EXPECT_TRUE(message.setName(u"First"_s));
    EXPECT_FALSE(dbc.addMessage(2).setName(u"First"_s));
    EXPECT_TRUE(message.setLength(2) && message.setAttribute(u"Time"_s, u"10"_s));
    EXPECT_FALSE(message.setAttribute(u"Time"_s, u"11"_s) || message.setAttribute(u"Kind"_s, u"0"_s));

    CANdbDBC::SignalRef signal = message.addSignal();
    EXPECT_TRUE(signal.setName(u"s"_s) && signal.setValueSize(8, 8, true) && signal.setAttribute(u"Kind"_s, u"1"_s));
    EXPECT_FALSE(signal.setValueSize(0, 0, false) || signal.setValueSize(9, 8, false));
    EXPECT_FALSE(signal.setAttribute(u"Kind"_s, u"2"_s) || signal.setAttribute(u"Kind"_s, u"b"_s));
    EXPECT_FALSE(message.addSignal().setName(u"s"_s));
}

TEST(DbcReader, ReadsEachStatement)
{
    const QString source =
        u"VERSION \"1.0\"\n\nNS_ :\n\tCM_\n\tBA_\nBS_: 500 : 1,2\nBU_: A B\n"
        "VAL_TABLE_ T 0 \"off\" 1 \"on\" ;\n"
        "BO_ 2147483649 M: 8 A\n"
        " SG_ Mux M : 0|4@1+ (1,0) [0|15] \"\" B,A\n"
        " SG_ Temp m3 : 23|16@0- (0.5,-40) [-40|1.5e3] \"°C\" B\n"
        "BO_TX_BU_ 2147483649 : A,B;\n"
        "EV_ Env: 0 [0|1] \"x;y\" 0 1 DUMMY_NODE_VECTOR0 Vector__XXX;\n"
        "CM_ \"all;\";\nCM_ BU_ A \"node\";\nCM_ BO_ 2147483649 \"two\nlines \\\"q\\\"\";\n"
        "CM_ SG_ 2147483649 Temp \"signal\";\nCM_ EV_ Env \"kept\";\nCM_ BO_ 7 \"no such\";\n"
        "BA_DEF_ BO_ \"Kind\" ENUM \"a\",\"b\";\nBA_DEF_ SG_ \"F\" FLOAT -1.5 1E2;\n"
        "BA_DEF_ \"S\" STRING ;\nBA_DEF_ BU_ \"H\" HEX 0 255;\nBA_DEF_REL_ BU_SG_REL_ \"R\" INT 0 1;\n"
        "BA_DEF_DEF_ \"Kind\" \"a\";\nBA_DEF_DEF_ \"F\" 0;\nBA_DEF_DEF_ \"Lost\" 1;\n"
        "BA_ \"S\" \"12\";\nBA_ \"H\" BU_ B 16;\nBA_ \"Kind\" BO_ 2147483649 \"b\";\n"
        "BA_ \"F\" SG_ 2147483649 Temp 0.25;\n"
        "VAL_ 2147483649 Temp -1 \"cold\" 2 \"hot\" ;\nSIG_VALTYPE_ 2147483649 Temp : 1;\n"
        "SG_MUL_VAL_ 2147483649 Temp Mux 3-3, 5-7;\n"_s;
    DbcReader reader;
    const auto database = reader.read(source);
    ASSERT_TRUE(database) << qPrintable(reader.errorText());
    EXPECT_EQ(database->version, u"1.0");
    EXPECT_EQ(database->newSymbols, (QStringList{u"CM_"_s, u"BA_"_s}));
    EXPECT_EQ(database->bitTiming, u"500 : 1,2");
    EXPECT_EQ(database->nodes, (QList<CANdb::Node>{{u"A"_s, u"node"_s, {}}, {u"B"_s, {}, {{u"H"_s, u"16"_s}}}}));
    ASSERT_EQ(database->messages.size(), 1);
    const CANdb::Message &message = database->messages.first();
    EXPECT_EQ(message.id, 0x80000001);
    EXPECT_EQ(message.comment, u"two\nlines \"q\"");
    EXPECT_EQ(message.attributes, (CANdb::Attributes{{u"Kind"_s, u"1"_s}}));
    EXPECT_EQ(message.signalList.at(0).receivers, (QStringList{u"B"_s, u"A"_s}));
    const CANdb::Signal temperature{.name = u"Temp"_s,
                                    .multiplexing = u"m3"_s,
                                    .startBit = 23,
                                    .size = 16,
                                    .isLittleEndian = false,
                                    .isSigned = true,
                                    .factor = 0.5,
                                    .offset = -40,
                                    .minimum = -40,
                                    .maximum = 1500,
                                    .unit = u"°C"_s,
                                    .receivers = {u"B"_s},
                                    .comment = u"signal"_s,
                                    .values = {{-1, u"cold"_s}, {2, u"hot"_s}},
                                    .valueType = CANdb::ValueType::Float,
                                    .multiplexer = u"Mux"_s,
                                    .multiplexRanges = {u"3-3"_s, u"5-7"_s},
                                    .attributes = {{u"F"_s, u"0.25"_s}}};
    EXPECT_TRUE(message.signalList.at(1) == temperature);
    using CANdb::Owner;
    QList<Owner> owners;
    for (const CANdb::AttributeDefinition &definition : database->definitions)
        owners.append(definition.owner);
    EXPECT_TRUE((owners == QList{Owner::Message, Owner::Signal, Owner::Database, Owner::Node}));
    EXPECT_EQ(database->otherStatements.size(), 6);

    const auto again = reader.read(text(*database));
    ASSERT_TRUE(again) << qPrintable(reader.errorText());
    EXPECT_TRUE(*again == *database) << qPrintable(text(*again));
}

TEST(DbcReader, TellsLineAndFault)
{
    struct Case
    {
        QString source;
        QString error;
    };
    const Case cases[] = {
        {u"BO_ 1 2: 8 A"_s, u"Line 1: Message name missing or invalid"_s},
        {u"\nBO_ x M: 8 A"_s, u"Line 2: Message id missing or invalid"_s},
        {u"BO_ 4294967296 M: 8 A"_s, u"Line 1: Message id missing or invalid"_s},
        {u"BO_ 1 M: 8 A\n SG_ S : |8@1+ (1,0) [0|0] \"\" A"_s, u"Line 2: Signal bit position expected"_s},
        {u"BO_ 1 M: 8 A\n SG_ S : 0|8@1 (1,0)"_s, u"Line 2: '+' expected (signal sign)"_s},
        {u"BA_ \"X\" 5\nBA_ \"Y\" 6;"_s, u"Line 2: ';' expected (attribute value)"_s},
        {u"BA_ \"X\" ;"_s, u"Line 1: Attribute value expected"_s},
        {u"BA_DEF_ \"X\" NUMBER 1 2;"_s, u"Line 1: Unknown attribute type"_s},
        {u"VERSION \"open"_s, u"Line 1: Text without end"_s},
        {u"EV_ without end"_s, u"Line 1: ';' expected (statement)"_s},
        {u"; BO_"_s, u"Line 1: Keyword expected"_s},
    };
    for (const Case &c : cases) {
        DbcReader reader;
        EXPECT_FALSE(reader.read(c.source));
        EXPECT_EQ(reader.errorText(), c.error);
    }
    // Any part of a file is read or refused, and never more.
    for (const QString &path : goldenFiles().mid(0, 1)) {
        const QString whole = QString::fromUtf8(TestSupport::readFile(path));
        for (qsizetype size = 0; size < whole.size(); ++size)
            DbcReader().read(whole.first(size));
    }
}

TEST(DbcReader, RealFilesComeOutAsTheyCameIn)
{
    QStringList files = goldenFiles();
    if (const QString corpus = TestSupport::corpusFolder(); !corpus.isEmpty()) {
        for (const QString &name : QDir(corpus).entryList({u"*.dbc"_s}, QDir::Files))
            files.append(corpus + u'/' + name);
    }
    const QTemporaryDir folder;
    for (const QString &file : files) {
        SCOPED_TRACE(file.toStdString());
        CANdbDBC first;
        ASSERT_TRUE(first.readFile(file)) << qPrintable(first.errorText());
        const QByteArray source = '\n' + TestSupport::readFile(file);
        EXPECT_EQ(first.database().messages.size(), source.count("\nBO_ "));
        ASSERT_TRUE(first.writeFile(folder.filePath(u"copy.dbc"_s))) << qPrintable(first.errorText());
        CANdbDBC second;
        ASSERT_TRUE(second.readFile(folder.filePath(u"copy.dbc"_s))) << qPrintable(second.errorText());
        EXPECT_TRUE(first.database() == second.database());
    }
}

namespace {

/// What the reader finds of each frame, in one line. It gets no more than 8 bytes of one, and 64 bits of a signal.
QStringList rowsOf(const CANdb::Database &database)
{
    QStringList rows;
    for (const CANdb::Message &message : database.messages) {
        QString row =
            u"%1 %2 %3"_s.arg(QString::number(message.id), message.name, QString::number(std::min(message.length, 8U)));
        for (const CANdb::Attribute &attribute : message.attributes) {
            if (attribute.name == "GenMsgCycleTime"_L1)
                row += u" every "_s + attribute.value;
        }
        for (const CANdb::Signal &signal : message.signalList)
            row += u" | %1 %2 %3 %4"_s.arg(signal.name, QString::number(signal.startBit),
                                           QString::number(std::min(signal.size, 64U)),
                                           signal.isSigned ? u"signed"_s : u"unsigned"_s);
        rows.append(row);
    }
    rows.sort();
    return rows;
}

} // namespace

TEST(Dbc, AnIndependentReaderFindsTheSame)
{
    const TestSupport::NodePackage reader(u"dbc_reader"_s);
    if (!reader.isInstalled())
        GTEST_SKIP() << reader.reason().toStdString();
    const QStringList files = goldenFiles();
    ASSERT_FALSE(files.isEmpty());
    const auto result = reader.run(QDir::tempPath(), files);
    ASSERT_EQ(result.exitCode, 0) << qPrintable(result.errors);
    const QStringList answers = result.output.split(u'\n', Qt::SkipEmptyParts);
    ASSERT_EQ(answers.size(), files.size());
    for (const QString &line : answers) {
        const QJsonObject answer = QJsonDocument::fromJson(line.toUtf8()).object();
        const QString file = answer.value("file"_L1).toString();
        SCOPED_TRACE(file.toStdString());
        EXPECT_EQ(QJsonDocument(answer.value("errors"_L1).toArray()).toJson(QJsonDocument::Compact), "[]");
        QStringList rows;
        for (const QJsonValue &row : answer.value("rows"_L1).toArray())
            rows.append(row.toString());
        rows.sort();
        CANdbDBC dbc;
        ASSERT_TRUE(dbc.readFile(file)) << qPrintable(dbc.errorText());
        EXPECT_EQ(rows, rowsOf(dbc.database()));
    }
}
