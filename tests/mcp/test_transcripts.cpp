#include "store/objectdatabase.h"
#include "support/datacases.h"
#include "support/mcpdriver.h"
#include "support/testhome.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

using namespace Qt::StringLiterals;
using namespace TestSupport;

// A case is a file tests/data/mcp/*.txt, a session with one server of ncx_cli, or tests/data/assistant/*.txt, one of
// ncx:
//   # ...                a remark
//   program NAME         another build than ncx_cli; first line, if at all
//   > LINE               sends a line as it is
//   < LINE               the reply to it, as it is; none for a line that gets no reply
//   call TOOL ARGUMENTS  sends a request for a tool
//   = TEXT               the text of its result, one line each; of generate the first line alone, of a tool that ends
//                        with a check summary the sentence before that
//   ! TEXT               the same of a result that is marked as a failure
//   -32602 TEXT          the code and message of an error
//   write FILE TEXT      writes a file of one line into the session's folder
//   show FILE TEXT       shows the lines of a file of the folder that have the text in them, marked with |
//   sql FILE STATEMENT   makes FILE.ncxp of FILE.ncxt, if it is not there, and changes it
//   restart              ends the server and starts another
// ${FOLDER} stands for the session's folder, which begins as a copy of tests/data/mcp/projects, ${VERSION} in an
// expected reply for that of the program.
// NCX_ACCEPT=1 in the environment takes the replies of this build as expected, to be read as a difference.

namespace {

const QString projects = QStringLiteral(NCX_SOURCE_DIR "/tests/data/mcp/projects/");

class Session
{
public:
    Session(const QStringList &script, bool isAssistant)
        : script_(script)
        , program_(isAssistant ? u"ncx"_s : programOf(script))
    {
        for (const QString &name : QDir(projects).entryList(QDir::Files))
            QFile::copy(projects + name, folder_.filePath(name));
        startServer();
    }

    /// The script with the replies that came.
    QStringList played()
    {
        for (qsizetype i = 0; i < script_.size(); ++i) {
            if (!isReply(script_.at(i)))
                play(script_.at(i), script_.value(i + 1).startsWith(u'<'));
        }
        endServer();
        return played_;
    }

private:
    void startServer()
    {
        const QStringList roots{u"--root="_s + folder_.path()};
        server_ = std::make_unique<McpDriver>(program_, program_ == "ncx"_L1 ? roots : QStringList());
    }

    void endServer()
    {
        const ProcessResult end = server_->close();
        EXPECT_EQ(end.exitCode, 0);
        EXPECT_EQ(end.output, QString()) << "a reply to a line that gets none";
        EXPECT_EQ(end.errors, QString());
    }

    static QString programOf(const QStringList &script)
    {
        const QString &first = script.first();
        return first.startsWith("program "_L1) ? first.mid(8) : u"ncx_cli"_s;
    }

    static bool isReply(const QString &line)
    {
        static const QString beginnings = u"<=!-|"_s;
        return !line.isEmpty() && beginnings.contains(line.front());
    }

    /// Whether a line sent as it is gets a reply is the script's word; one that comes unasked is found behind it.
    void play(const QString &line, bool replyIsDue)
    {
        played_.append(line);
        const QString text = QString(line).replace("${FOLDER}"_L1, folder_.path());
        if (text.startsWith("> "_L1)) {
            server_->sendLine(text.mid(2).toUtf8());
            if (replyIsDue)
                appendReply(u"< "_s + QString::fromUtf8(server_->replyLine()));
        } else if (text.startsWith("call "_L1)) {
            call(text.section(u' ', 1, 1), text.section(u' ', 2));
        } else if (text == "restart"_L1) {
            endServer();
            startServer();
        } else {
            useFile(text.section(u' ', 0, 0), folder_.filePath(text.section(u' ', 1, 1)), text.section(u' ', 2));
        }
    }

    void useFile(const QString &word, const QString &path, const QString &text)
    {
        if (word == "write"_L1) {
            EXPECT_TRUE(writeFile(path, text.toUtf8() + '\n'));
        } else if (word == "show"_L1) {
            for (const QString &line : QString::fromUtf8(readFile(path)).split(u'\n').filter(text))
                appendReply(u"| "_s + line);
        } else if (word == "sql"_L1) {
            ObjectDataBase store;
            EXPECT_TRUE(QFile::exists(path + u".ncxp"_s) ? store.openDataBase(path + u".ncxp"_s)
                                                         : store.openTextDatabase(path + u".ncxt"_s));
            EXPECT_TRUE(store.statements().execute({"test", text})) << qPrintable(text);
            EXPECT_TRUE(store.saveDatabase(path + u".ncxp"_s));
        }
    }

    void call(const QString &tool, const QString &arguments)
    {
        server_->sendLine(u"{\"id\":1,\"method\":\"tools/call\",\"params\":{\"name\":\"%1\",\"arguments\":%2}}"_s
                              .arg(tool, arguments.isEmpty() ? u"{}"_s : arguments)
                              .toUtf8());
        QString told = withoutFindings(tool, McpDriver::told(server_->reply()));
        QString mark = u"= "_s;
        if (told.startsWith("! "_L1)) {
            told.remove(0, 2);
            mark = u"! "_s;
        } else if (told.startsWith("-32"_L1)) {
            mark.clear();
        }
        for (const QString &line : told.split(u'\n'))
            appendReply(mark + line);
    }

    /// What the model's rules and the generators say is the matter of their own tests.
    static QString withoutFindings(const QString &tool, const QString &told)
    {
        static const QString summary = u"\n\ncheck_model: "_s;
        if (tool == "generate"_L1)
            return told.section(u'\n', 0, 0);
        return told.contains(summary) ? told.section(summary, 0, 0) + summary + u"..."_s : told;
    }

    void appendReply(const QString &line)
    {
        played_.append(QString(line)
                           .replace(folder_.path(), "${FOLDER}"_L1)
                           .replace("\"version\":\"" NCX_VERSION "\""_L1, "\"version\":\"${VERSION}\""_L1));
    }

    QStringList script_;
    QString program_;
    QStringList played_;
    QTemporaryDir folder_;
    std::unique_ptr<McpDriver> server_;
};

void compare(const QStringList &played, const QStringList &expected)
{
    for (qsizetype i = 0; i < std::min(expected.size(), played.size()); ++i)
        ASSERT_EQ(played.at(i), expected.at(i)) << "line " << i + 1;
    EXPECT_EQ(played.size(), expected.size());
}

class Transcripts : public testing::TestWithParam<FileCase>
{
};

TEST_P(Transcripts, PlayAsWritten)
{
    // What the check corrects by itself is the matter of its own tests.
    QDir(home().path()).mkpath(u".config"_s);
    writeFile(home().filePath(u".config/norvane.ini"_s), "[General]\ndisableautocorrection=true\n");
    const QStringList expected = QString::fromUtf8(readFile(GetParam().path)).split(u'\n');
    const QStringList played = Session(expected, GetParam().path.contains("/assistant/"_L1)).played();
    if (qEnvironmentVariableIntValue("NCX_ACCEPT") == 1)
        writeFile(GetParam().path, played.join(u'\n').toUtf8());
    else
        compare(played, expected);
}

INSTANTIATE_TEST_SUITE_P(Server, Transcripts, testing::ValuesIn(fileCases(u"mcp"_s, {u"*.txt"_s})), caseName);
INSTANTIATE_TEST_SUITE_P(Assistant, Transcripts, testing::ValuesIn(fileCases(u"assistant"_s, {u"*.txt"_s})), caseName);

} // namespace
