#include "store/operations.h"
#include "store/storetest.h"

#include "store/databasemodifier.h"
#include "store/projectconverter.h"
#include "support/datacases.h"
#include "support/recordfields.h"

using namespace Qt::StringLiterals;
using namespace TestSupport;

// A case begins in a file tests/data/store/*.txt with a new store:
//   == TITLE          what the case is about
//   # ...             a remark
//   NAME ARGUMENTS    an operation of the store; see Arguments for how these are written
//   sql STATEMENT     any statement
//   reopen STATEMENT  saves the project, changes the file with the statement, if there is one, and opens it
//   old NAME          opens the project that tests/data/oldprojects/NAME.sql makes
//   application NAME  the name of the program, until the case ends
//   correct           what the program corrects in a project that it has opened
//   modify LINES      applies a modifier file, its lines joined with "\n"
//   = RESULT          what the line before gave: a value and the record that came with it, or a row of a select
//   ~ CHANGE          what it notified: the type of the change, and what else of it is not zero; once for several alike
// NCX_ACCEPT=1 in the environment takes the results of this build as expected, to be read as a difference.

namespace {

class StoreCase : public StoreTest
{
public:
    StoreCase()
    {
        QObject::connect(&store, &ObjectDataBase::updateNotify, &store,
                         [this](const ObjectDataBase::ChangeSet &change) { notified(change); });
        QObject::connect(&store, &ObjectDataBase::wrongTool, &store, [this] { played_.append(u"~ wrong tool"_s); });
    }
    ~StoreCase() override { QCoreApplication::setApplicationName(u"CANopen NodeComposer"_s); }
    void TestBody() override {}

    /// The line with what came of it.
    QStringList play(const QString &line)
    {
        played_ = {line};
        const QString word = line.section(u' ', 0, 0);
        const QString rest = line.section(u' ', 1);
        if (word == "sql"_L1)
            rest.startsWith("select"_L1) ? tell(rows(rest)) : tell(exec(rest));
        else if (word == "reopen"_L1)
            tell(reopenAfter(word == line ? QStringList() : rest.split(u';')));
        else if (word == "old"_L1)
            tell(openOld(rest));
        else if (word == "application"_L1)
            QCoreApplication::setApplicationName(rest);
        else if (word == "correct"_L1)
            correct();
        else if (word == "modify"_L1)
            modify(QString(rest).replace("\\n"_L1, "\n"_L1));
        else if (const StoreTests::Operation operation = StoreTests::operation(word)) {
            StoreTests::Arguments arguments(rest);
            tell(operation(store, arguments));
        } else
            EXPECT_TRUE(line.isEmpty() || line.startsWith(u'#')) << "no operation: " << qPrintable(line);
        expectWhatIsKeptToBeCurrent();
        return played_;
    }

private:
    void expectWhatIsKeptToBeCurrent()
    {
        const auto described = [this] {
            QStringList all;
            for (const auto &[index, data] : store.getAllIndices(0))
                all.append(u"%1 "_s.arg(index) + TestSupport::RecordFields::described(data));
            for (const auto &[line, index, subindex, data] : store.getAllSubIndices(0))
                all.append(u"%1:%2 "_s.arg(index).arg(subindex) + TestSupport::RecordFields::described(data));
            for (const auto &data : store.getAllPGNs(0))
                all.append(u"%1/%2 "_s.arg(data.number).arg(data.direction) + data.name + data.desc);
            for (const auto &data : store.getAllSPNs(0))
                all.append(u"%1/%2 "_s.arg(data.pgnnumber).arg(data.spnnumber) +
                           TestSupport::RecordFields::described(data));
            for (const auto &data : store.getAllCANIDs(0))
                all.append(u"%1 "_s.arg(data.id) + data.name + data.desc);
            for (const auto &data : store.getAllDataElements(0))
                all.append(u"%1 "_s.arg(data.pgnnumber) + TestSupport::RecordFields::described(data));
            return all;
        };
        const QStringList kept = described();
        store.keepSubIndices(false);
        EXPECT_EQ(kept, described()) << "after " << qPrintable(played_.first());
        store.keepSubIndices(true);
        described();
    }

    void tell(const QString &result)
    {
        if (!result.isEmpty())
            played_.append(u"= "_s + QString(result).replace(u'\n', "\\n"_L1));
    }
    void tell(const QStringList &results)
    {
        for (const QString &result : results)
            played_.append(u"= "_s + QString(result).replace(u'\n', "\\n"_L1));
    }
    void tell(bool result) { tell(result ? u"true"_s : u"false"_s); }

    void notified(const ObjectDataBase::ChangeSet &change)
    {
        const std::pair<const char *, quint32> fields[] = {
            {"line", change.line}, {"index", change.index}, {"sub", change.subindex},  {"pgn", change.pgn},
            {"spn", change.spn},   {"canid", change.canid}, {"number", change.number}, {"direction", change.direction},
        };
        QString text = u"~ %1"_s.arg(change.type);
        for (const auto &[name, value] : fields)
            text += value == 0 ? QString() : u" %1=%2"_s.arg(QLatin1StringView(name)).arg(value);
        if (played_.last() != text)
            played_.append(text);
    }

    void correct()
    {
        ProjectConverter converter;
        converter.setDatabase(sharedStore);
        tell(converter.doGenericCorrection() && converter.doCorrection() && converter.doEnergyBusCorrection() &&
             converter.doJ1939Correction());
    }

    void modify(const QString &lines)
    {
        EXPECT_TRUE(writeFile(path(u"changes.txt"_s), lines.toUtf8()));
        DatabaseModifier modifier;
        modifier.setDatabase(sharedStore);
        modifier.setModifierFile(path(u"changes.txt"_s));
        modifier.applyModifierFile() ? tell(true) : tell(u"false at "_s + modifier.failedLine());
    }

    QStringList played_;
};

class StoreCases : public testing::TestWithParam<TextCase>
{
};

TEST_P(StoreCases, GiveWhatIsExpected)
{
    const QStringList &lines = GetParam().lines;
    QStringList played{lines.first()};
    StoreCase storeCase;
    for (const QString &line : lines.sliced(1)) {
        if (!line.startsWith("= "_L1) && !line.startsWith("~ "_L1))
            played += storeCase.play(line);
    }
    expectCase(GetParam(), played);
}

INSTANTIATE_TEST_SUITE_P(Store, StoreCases, testing::ValuesIn(textCases(u"store"_s, {u"== "_s})), caseName);

} // namespace
