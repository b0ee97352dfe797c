#include "ncx/compare/compareddevice.h"

#include "generate/run/importdispatch.h"
#include "ncx/project/identity.h"
#include "nodedict/codes.h"
#include "store/objectdatabase.h"
#include "texttools/processstart.h"
#include "texttools/textfile.h"

#include <QFileInfo>

#include <algorithm>
#include <future>
#include <tuple>

using namespace Qt::StringLiterals;

namespace {

bool hasUsualForm(const QString &path)
{
    return path.endsWith(".ncxt"_L1) || path.endsWith(".ncxp"_L1);
}

} // namespace

bool ComparedDevice::isDescriptionPath(const QString &path)
{
    const QString suffix = QFileInfo(path).suffix().toLower();
    return suffix == "eds"_L1 || suffix == "dcf"_L1;
}

bool ComparedDevice::open(const QString &path)
{
    return isDescriptionPath(path) ? openDescription(path) : openProject(path, OpenedProject::Purpose::Reading);
}

bool ComparedDevice::openProject(const QString &path, OpenedProject::Purpose purpose)
{
    project_ = std::make_unique<OpenedProject>();
    const bool isOpen = project_->open(path, purpose);
    reason_ = project_->reason();
    store_ = project_->sharedStore();
    return isOpen;
}

/// Opens a project and reads all that a comparison asks for.
bool ComparedDevice::readBesideOthers(const QString &path)
{
    if (!openProject(path, OpenedProject::Purpose::Comparing))
        return false;
    for (const quint8 number : lines()) {
        DeviceLine &each = line(number);
        std::ignore = each.objects();
        std::ignore = each.pgns();
        std::ignore = each.canIds();
    }
    return true;
}

bool ComparedDevice::openBoth(ComparedDevice &first, const QString &firstPath, ComparedDevice &second,
                              const QString &secondPath)
{
    // The importer of a description has a thread of its own, and another project may change the current folder.
    if (!hasUsualForm(firstPath) || !hasUsualForm(secondPath)) {
        const bool isFirstOpen = first.open(firstPath);
        return second.open(secondPath) && isFirstOpen;
    }
    Identity::takeWidest();
    // In one heap the two would wait for each other at each text.
    ProcessStart::limitHeaps(2);
    // Where there can be no thread, the second one waits for the first.
    std::future<bool> isSecondOpen =
        std::async(std::launch::async | std::launch::deferred, [&] { return second.readBesideOthers(secondPath); });
    const bool isFirstOpen = first.readBesideOthers(firstPath);
    return isSecondOpen.get() && isFirstOpen;
}

bool ComparedDevice::openDescription(const QString &path)
{
    constexpr auto canOpen = static_cast<int>(CAN::LineType::CanOpen);
    isDescription_ = true;
    reason_ = OpenedProject::reasonNotToRead(path);
    if (reason_.isEmpty() && QFileInfo(path).size() > TextFile::maxFileSize)
        reason_ = OpenedProject::tooLargeText();
    if (!reason_.isEmpty())
        return false;
    store_ = std::make_shared<ObjectDataBase>();
    if (!store_->createNewDataBase() || !store_->setGeneralSetting(u"line0type"_s, QString::number(canOpen))) {
        reason_ = OpenedProject::reasonWithoutCopy();
        return false;
    }
    ImportReport report;
    if (!ImportDispatch::importFile(store_, path, 0, report) || report.objects == 0)
        reason_ = u"it describes no object"_s;
    return reason_.isEmpty();
}

bool ComparedDevice::isDamaged() const
{
    return store_->isDamaged();
}

QString ComparedDevice::damage()
{
    return u"it is broken: not all of it could be read"_s;
}

QList<quint8> ComparedDevice::lines() const
{
    return store_->getNodeList();
}

std::optional<quint8> ComparedDevice::canOpenLine() const
{
    const QList<quint8> all = lines();
    const auto found =
        std::ranges::find_if(all, [this](quint8 line) { return LineProtocols::ofLine(*store_, line).canOpen; });
    return found == all.end() ? std::nullopt : std::optional(*found);
}

DeviceLine &ComparedDevice::line(quint8 number)
{
    std::unique_ptr<DeviceLine> &line = lines_[number];
    if (!line)
        line = std::make_unique<DeviceLine>(*store_, number);
    return *line;
}
