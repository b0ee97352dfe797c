#include "ncx/compare/compareddevice.h"

#include "generate/run/importdispatch.h"
#include "nodedict/codes.h"
#include "store/objectdatabase.h"
#include "texttools/textfile.h"

#include <QFileInfo>

#include <algorithm>

using namespace Qt::StringLiterals;

bool ComparedDevice::isDescriptionPath(const QString &path)
{
    const QString suffix = QFileInfo(path).suffix().toLower();
    return suffix == "eds"_L1 || suffix == "dcf"_L1;
}

bool ComparedDevice::open(const QString &path)
{
    if (isDescriptionPath(path))
        return openDescription(path);
    project_ = std::make_unique<OpenedProject>();
    const bool isOpen = project_->open(path, OpenedProject::Purpose::Reading);
    reason_ = project_->reason();
    store_ = project_->sharedStore();
    return isOpen;
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
