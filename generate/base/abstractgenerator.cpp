#include "generate/base/abstractgenerator.h"

#include "generate/base/runcontext.h"
#include "nodedict/canopendatatype.h"
#include "store/objectdatabase.h"

#include <QCoreApplication>
#include <QEventLoop>
#include <QFileInfo>

#include <algorithm>
#include <array>

using namespace Qt::StringLiterals;

AbstractGenerator::AbstractGenerator(QObject *parent)
    : QObject(parent)
    , toolVersion_(QCoreApplication::applicationVersion())
{
}

AbstractGenerator::~AbstractGenerator()
{
    Q_ASSERT_X(!thread_ || thread_->isFinished(), "AbstractGenerator", "deleted without waiting for its job");
}

QString AbstractGenerator::infoText() const
{
    return {};
}

template <typename Member, typename Value>
AbstractGenerator::Status AbstractGenerator::set(Member &member, const Value &value)
{
    if (running_)
        return JobRunning;
    member = value;
    return Success;
}

AbstractGenerator::Status AbstractGenerator::setLine(quint8 line)
{
    const Status status = set(line_, line);
    if (status != Success)
        return status;
    return database_ && database_->nodeExists(line) ? Success : UnknownLine;
}

AbstractGenerator::Status AbstractGenerator::setDatabase(const std::shared_ptr<ObjectDataBase> &store)
{
    if (running_)
        return JobRunning;
    if (!store || store->getNodeList().isEmpty())
        return NoStore;
    return set(database_, store);
}

AbstractGenerator::Status AbstractGenerator::setOutputFolder(const QString &folder)
{
    const Status status = set(outputFolder_, folder);
    if (status != Success)
        return status;
    const QFileInfo info(folder);
    if (!info.isDir())
        return FolderMissing;
    return info.isReadable() ? Success : FolderNotReadable;
}

AbstractGenerator::Status AbstractGenerator::setBaseName(const QString &baseName)
{
    return set(baseName_, baseName);
}

AbstractGenerator::Status AbstractGenerator::setFileSuffix(const QString &suffix)
{
    return set(fileSuffix_, suffix);
}

AbstractGenerator::Status AbstractGenerator::setMultiLine(bool multiLine)
{
    return set(multiLine_, multiLine);
}

AbstractGenerator::Status AbstractGenerator::launch(const QString &objectName)
{
    // Not running_: a quick job may be over already, and its thread is gone with it.
    if (thread_)
        return JobRunning;
    setObjectName(objectName);
    cancelRequested_ = false;
    running_ = true;
    thread_ = std::make_unique<QThread>();
    moveToThread(thread_.get());
    thread_->start();
    QMetaObject::invokeMethod(this, "doJob", Qt::QueuedConnection);
    return Success;
}

AbstractGenerator::Status AbstractGenerator::requestCancel()
{
    if (!running_)
        return NoJob;
    cancelRequested_ = true;
    return Success;
}

void AbstractGenerator::quitThread()
{
    if (thread_)
        thread_->quit();
}

void AbstractGenerator::waitForJob()
{
    if (!thread_)
        return;
    QEventLoop events;
    connect(thread_.get(), &QThread::finished, &events, &QEventLoop::quit);
    if (!thread_->isFinished())
        events.exec();
    thread_->wait();
}

void AbstractGenerator::readMultiLineSetting()
{
    generateMultiLine_ = RunContext::generatesMultiLine(*database_);
}

void AbstractGenerator::fail(quint8 code, const QString &text)
{
    errorCode_ = code;
    errorText_ = text;
}

namespace {

struct LargeType
{
    quint32 dataType;
    QLatin1StringView macro;
    int bytes;
    bool isSigned;
};

// The type of a time of day is set like an unsigned value of its width.
constexpr std::array largeTypes{
    LargeType{CAN::TimeOfDay, "U48_SET"_L1, 6, false},  LargeType{CAN::Integer24, "I24_SET"_L1, 3, true},
    LargeType{CAN::Unsigned24, "U24_SET"_L1, 3, false}, LargeType{CAN::Unsigned40, "U40_SET"_L1, 5, false},
    LargeType{CAN::Unsigned48, "U48_SET"_L1, 6, false}, LargeType{CAN::Unsigned64, "U64_SET"_L1, 8, false},
};

} // namespace

QString AbstractGenerator::formatLargeValue(quint32 dataType, quint64 unsignedValue, qint64 signedValue)
{
    const auto type = std::ranges::find(largeTypes, dataType, &LargeType::dataType);
    if (type == largeTypes.end())
        return {};
    const quint64 value = type->isSigned ? static_cast<quint64>(signedValue) : unsignedValue;
    QStringList bytes;
    for (int shift = 8 * (type->bytes - 1); shift >= 0; shift -= 8)
        bytes.append(u"0x%1"_s.arg((value >> shift) & 0xFF, 2, 16, '0'_L1));
    return u"%1(%2)"_s.arg(type->macro, bytes.join(u','));
}
