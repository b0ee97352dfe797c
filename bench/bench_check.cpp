// Times the check of a CANopen line with N objects of five subindices each, as the server runs it after an edit: the
// first time with nothing in memory, then again. Prints milliseconds and the number of messages.

#include "check/modelchecker.h"
#include "store/objectdatabase.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QStandardPaths>

#include <cstdio>

using namespace Qt::StringLiterals;

namespace {

std::shared_ptr<ObjectDataBase> projectOf(int objects)
{
    auto store = std::make_shared<ObjectDataBase>();
    store->createNewDataBase();
    store->setGeneralSetting(u"line0type"_s, u"1"_s);
    const ObjectDataBase::Transaction transaction(*store);
    QList<ObjectDataBase::SubEntry> subs;
    for (int number = 0; number < objects; ++number) {
        const auto index = static_cast<quint16>(0x2000 + number);
        ObjectDataBase::INDEX_DATA_T object;
        object.name = u"Group %1"_s.arg(number);
        object.objecttype = 9;
        store->addIndex(0, index, object);
        for (quint8 sub = 0; sub < 5; ++sub) {
            ObjectDataBase::SUBINDEX_DATA_T data;
            data.name = u"Element %1 of group %2"_s.arg(sub).arg(number);
            data.defaultvalue = u"4"_s;
            data.accesstype = sub == 0 ? u"const"_s : u"rw"_s;
            data.implementation = sub == 0 ? 1 : 2;
            data.varname = u"group[%1].element%2"_s.arg(number).arg(sub);
            data.limitineds = true;
            data.uplimit = u"100"_s;
            subs.append({0, index, sub, data});
        }
    }
    store->addSubIndices(subs);
    return store;
}

void measure(const char *what, int objects, const std::shared_ptr<ObjectDataBase> &store)
{
    ModelChecker checker;
    int messages = 0;
    QObject::connect(&checker, &ModelChecker::newError, [&messages] { ++messages; });
    bool corrected = false;
    QElapsedTimer timer;
    timer.start();
    checker.checkCommon(store, {});
    checker.checkCANopenLine(0, store, corrected);
    std::printf("%8d  %-6s %8lld ms  %d messages\n", objects, what, static_cast<long long>(timer.elapsed()), messages);
}

} // namespace

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    QStandardPaths::setTestModeEnabled(true);
    for (const int objects : {100, 1000, 10000}) {
        const auto store = projectOf(objects);
        measure("first", objects, store);
        measure("again", objects, store);
    }
    return 0;
}
