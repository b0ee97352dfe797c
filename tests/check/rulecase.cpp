#include "check/rulecase.h"

#include "check/modelchecker.h"
#include "check/specialpgns.h"
#include "store/lineprotocols.h"
#include "support/testhome.h"

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>

using namespace Qt::StringLiterals;

namespace {

constexpr auto defaultApplication = "CANopen NodeComposer"_L1;

quint32 number(const QString &text)
{
    bool ok = false;
    const quint32 value = text.toUInt(&ok, 0);
    EXPECT_TRUE(ok) << "no number: " << qPrintable(text);
    return value;
}

quint8 direction(const QString &word)
{
    return word == "tx"_L1 ? ObjectDataBase::transmit : ObjectDataBase::receive;
}

/// "0x1018:2", or "0x1018" for its subindex 0.
std::pair<quint16, quint8> address(const QString &text)
{
    return {static_cast<quint16>(number(text.section(u':', 0, 0))),
            text.contains(u':') ? static_cast<quint8>(number(text.section(u':', 1))) : quint8{0}};
}

/// Sets the fields that "key=value; key=value" names.
template <class Record>
void assign(Record &record, const QString &fields, const QMap<QString, std::function<void(Record &, QString)>> &setters)
{
    for (const QString &field : fields.split(u"; "_s, Qt::SkipEmptyParts)) {
        const auto setter = setters.value(field.section(u'=', 0, 0));
        ASSERT_TRUE(setter) << "no field: " << qPrintable(field);
        setter(record, field.section(u'=', 1));
    }
}

template <auto Member>
auto text()
{
    return [](auto &record, const QString &value) { record.*Member = value; };
}

template <auto Member>
auto numeric()
{
    return [](auto &record, const QString &value) {
        record.*Member = static_cast<std::remove_reference_t<decltype(record.*Member)>>(number(value));
    };
}

/// An entry of the metadata.
template <class Record>
auto entry(const QString &key)
{
    return [key](Record &record, const QString &value) { record.metadata.insert(key, value); };
}

using Index = StoreRecords::IndexData;
using Sub = StoreRecords::SubIndexData;
using Signal = StoreRecords::SPN;
using PGN = StoreRecords::PGN;
using CANID = StoreRecords::CANID;

const QMap<QString, std::function<void(Index &, QString)>> indexFields{
    {u"name"_s, text<&Index::name>()},
    {u"code"_s, numeric<&Index::objecttype>()},
    {u"type"_s, numeric<&Index::datatype>()},
    {u"text"_s, text<&Index::description>()},
    {u"define"_s, entry<Index>(u"objectdefine"_s)},
    {u"tag"_s, entry<Index>(u"eds_define"_s)},
};
const QMap<QString, std::function<void(Sub &, QString)>> subFields{
    {u"name"_s, text<&Sub::name>()},
    {u"type"_s, numeric<&Sub::datatype>()},
    {u"access"_s, text<&Sub::accesstype>()},
    {u"value"_s, text<&Sub::defaultvalue>()},
    {u"low"_s, text<&Sub::lowlimit>()},
    {u"high"_s, text<&Sub::uplimit>()},
    {u"size"_s, numeric<&Sub::size>()},
    {u"default"_s, numeric<&Sub::defaultineds>()},
    {u"limited"_s, numeric<&Sub::limitineds>()},
    {u"eds"_s, numeric<&Sub::writedefaulttoeds>()},
    {u"as"_s, numeric<&Sub::implementation>()},
    {u"var"_s, text<&Sub::varname>()},
    {u"map"_s, [](Sub &sub, const QString &value) { sub.pdomapping = PDOMapping(number(value)); }},
    {u"text"_s, text<&Sub::description>()},
    {u"shared"_s, numeric<&Sub::sharedlines>()},
    {u"stored"_s, numeric<&Sub::nvstorage>()},
    {u"noread"_s, numeric<&Sub::refuseread>()},
    {u"nowrite"_s, numeric<&Sub::refusewrite>()},
    {u"define"_s, entry<Sub>(u"subdefine"_s)},
    {u"tag"_s, entry<Sub>(u"eds_define"_s)},
    {u"edstype"_s, entry<Sub>(u"eds_datatype"_s)},
};
const QMap<QString, std::function<void(PGN &, QString)>> pgnFields{
    {u"name"_s, text<&PGN::name>()},
    {u"safe"_s, numeric<&PGN::issafe>()},
    {u"safetytype"_s, numeric<&PGN::safetytype>()},
    {u"priority"_s, numeric<&PGN::priority>()},
    {u"cycle"_s, numeric<&PGN::cycletime_ms>()},
    {u"inhibit"_s, numeric<&PGN::inhibittime_ms>()},
    {u"senders"_s, numeric<&PGN::multisourceaddress>()},
    {u"text"_s, text<&PGN::desc>()},
};
const QMap<QString, std::function<void(CANID &, QString)>> canIdFields{
    {u"name"_s, text<&CANID::name>()},
    {u"text"_s, text<&CANID::desc>()},
};
const QMap<QString, std::function<void(Signal &, QString)>> signalFields{
    {u"name"_s, text<&Signal::name>()},          {u"type"_s, numeric<&Signal::datatype>()},
    {u"bit"_s, numeric<&Signal::bitposition>()}, {u"bits"_s, numeric<&Signal::bitsize>()},
    {u"pos"_s, numeric<&Signal::pos>()},         {u"as"_s, numeric<&Signal::implementation>()},
    {u"var"_s, text<&Signal::varname>()},        {u"value"_s, text<&Signal::defaultvalue>()},
    {u"text"_s, text<&Signal::desc>()},
};

/// Splits the words that stand before the fields off a command's rest.
QStringList words(QString &rest, int count)
{
    const QStringList all = rest.split(u' ');
    rest = all.mid(count).join(u' ');
    return all.mid(0, count);
}

std::vector<CheckRule> recording(std::span<const CheckRule> rules, QString &current)
{
    std::vector<CheckRule> wrapped(rules.begin(), rules.end());
    for (CheckRule &rule : wrapped) {
        rule.find = [&current, find = rule.find, name = rule.name](ModelChecker &checker, const CheckSubject &subject) {
            current = name;
            find(checker, subject);
        };
    }
    return wrapped;
}

} // namespace

QList<RuleCase> ruleCases()
{
    QList<RuleCase> cases;
    const QDir folder(QStringLiteral(NCX_SOURCE_DIR) + u"/tests/data/check"_s);
    for (const QString &file : folder.entryList({u"*.txt"_s}, QDir::Files)) {
        QStringList clean;
        int lineNumber = 0;
        for (const QString &line : QString::fromUtf8(TestSupport::readFile(folder.filePath(file))).split(u'\n')) {
            ++lineNumber;
            if (line.startsWith("= "_L1)) {
                if (!cases.isEmpty() && cases.last().rule == "clean"_L1)
                    clean = cases.takeLast().commands;
                const QString rule = line.sliced(2);
                cases.append({file, lineNumber, rule, rule == "clean"_L1 ? QStringList() : clean, {}});
            } else if (line.startsWith("> "_L1)) {
                cases.last().messages.append(line.sliced(2).replace("\\n"_L1, "\n"_L1));
            } else if (!line.isEmpty() && !line.startsWith(u'#')) {
                cases.last().commands.append(line);
            }
        }
    }
    return cases;
}

CaseProject::CaseProject(const QStringList &commands)
{
    store_->createNewDataBase();
    const ObjectDataBase::Transaction transaction(*store_);
    for (const QString &command : commands)
        run(command);
}

CaseProject::~CaseProject()
{
    QCoreApplication::setApplicationName(defaultApplication);
}

void CaseProject::run(const QString &command)
{
    const QString word = command.section(u' ', 0, 0);
    const QString rest = command.section(u' ', 1);
    const QString key = rest.section(u" ="_s, 0, 0);
    QString value = rest.section(u" ="_s, 1);
    if (value.startsWith(u' '))
        value.remove(0, 1);
    if (word == "line"_L1) {
        line_ = static_cast<quint8>(number(key));
        if (!store_->nodeExists(line_))
            store_->addNode(line_, {});
        store_->setGeneralSetting(u"line%1type"_s.arg(line_), value);
    } else if (word == "general"_L1) {
        for (const QString &one : key.split(u' '))
            store_->setGeneralSetting(one, value);
    } else if (word == "j1939"_L1) {
        for (const QString &one : key.split(u' '))
            store_->setJ1939Setting(one, value);
    } else if (word == "energybus"_L1) {
        store_->setEnergyBusSetting(key, value);
    } else if (word == "authentication"_L1) {
        store_->setUDSServiceAuthentication(line_, static_cast<quint8>(number(key)), value);
    } else if (word == "misc"_L1) {
        store_->setMiscSetting(key, value);
    } else if (word == "description"_L1) {
        store_->setCurrentLine(line_);
        store_->setDescriptionSetting(key, value);
    } else if (word == "application"_L1) {
        QCoreApplication::setApplicationName(rest);
    } else if (word == "file"_L1) {
        QDir(folder_.path()).mkpath(QFileInfo(key).path());
        EXPECT_TRUE(TestSupport::writeFile(folder_.filePath(key), value.toUtf8()));
    } else {
        runOnLine(word, rest);
    }
}

void CaseProject::runOnLine(const QString &word, const QString &rest)
{
    QString fields = rest;
    if (word == "objects"_L1) {
        for (const QString &index : rest.split(u' ')) {
            store_->addIndex(line_, address(index).first, {});
            store_->addSubIndex(line_, address(index).first, 0, {});
        }
    } else if (word == "subs"_L1) {
        const auto [index, last] = address(rest);
        store_->addIndex(line_, index, {});
        for (quint16 subindex = 0; subindex <= last; ++subindex)
            store_->addSubIndex(line_, index, static_cast<quint8>(subindex), {});
    } else if (word == "object"_L1) {
        const quint16 index = address(words(fields, 1).first()).first;
        Index data;
        store_->getIndex(line_, index, data);
        assign(data, fields, indexFields);
        store_->addIndex(line_, index, data);
    } else if (word == "sub"_L1) {
        const auto [index, subindex] = address(words(fields, 1).first());
        Sub data;
        store_->getSubIndex(line_, index, subindex, data);
        assign(data, fields, subFields);
        store_->addSubIndex(line_, index, subindex, data);
    } else if (word == "remove"_L1) {
        const auto [index, subindex] = address(rest);
        rest.contains(u':') ? store_->removeSubIndex(line_, index, subindex) : store_->removeIndex(line_, index);
    } else if (word == "pgn"_L1) {
        const QStringList key = words(fields, 2);
        PGN data;
        store_->getPGN(line_, number(key.at(0)), direction(key.at(1)), data);
        data.direction = direction(key.at(1));
        assign(data, fields, pgnFields);
        store_->addPGN(line_, number(key.at(0)), data);
    } else if (word == "spn"_L1) {
        const QStringList key = words(fields, 3);
        Signal data;
        store_->getSPN(line_, number(key.at(0)), direction(key.at(1)), number(key.at(2)), data);
        assign(data, fields, signalFields);
        store_->addSPN(line_, number(key.at(0)), direction(key.at(1)), number(key.at(2)), data);
    } else if (word == "canid"_L1) {
        const QStringList key = words(fields, 2);
        CANID data;
        data.direction = direction(key.at(1));
        assign(data, fields, canIdFields);
        store_->addCANID(line_, number(key.at(0)), data);
    } else if (word == "signal"_L1) {
        const QStringList key = words(fields, 3);
        Signal data;
        store_->getDataElement(line_, number(key.at(0)), direction(key.at(1)), number(key.at(2)), data);
        assign(data, fields, signalFields);
        store_->removeDataElement(line_, number(key.at(0)), number(key.at(2)), direction(key.at(1)));
        store_->addDataElement(line_, number(key.at(0)), direction(key.at(1)), number(key.at(2)), data);
    } else {
        ADD_FAILURE() << "no command: " << qPrintable(word);
    }
}

CaseProject::Outcome CaseProject::check()
{
    Outcome outcome;
    QString rule;
    const CheckRules &builtIn = CheckRules::builtIn();
    const std::vector<CheckRule> common = recording(builtIn.common, rule);
    const std::vector<CheckRule> canOpen = recording(builtIn.canOpen, rule);
    const std::vector<CheckRule> j1939 = recording(builtIn.j1939, rule);
    const std::vector<CheckRule> rawCan = recording(builtIn.rawCan, rule);
    ModelChecker checker({.common = common, .canOpen = canOpen, .j1939 = j1939, .rawCan = rawCan});
    QObject::connect(&checker, &ModelChecker::newError, [&](const QString &message) {
        outcome.messages.append(message);
        outcome.rules.append(rule);
    });
    outcome.errors = checker.checkCommon(store_, folder_.path());
    for (const quint8 line : store_->getNodeList()) {
        const LineProtocols protocols = LineProtocols::ofLine(*store_, line);
        if (protocols.canOpen)
            outcome.errors += checker.checkCANopenLine(line, store_, outcome.corrected);
        if (protocols.j1939)
            outcome.errors += checker.checkJ1939Line(1, line, store_, specialPGNs(*store_));
        if (protocols.rawCan)
            outcome.errors += checker.checkRawCANLine(line, store_);
    }
    outcome.messages.replaceInStrings(folder_.path(), u"${FOLDER}"_s);
    outcome.summary = checker.suppressedSummary();
    return outcome;
}
