#include "import/basedataimporter.h"

#include "store/objectdatabase.h"

#include <QDebug>
#include <QFileInfo>

BaseDataImporter::BaseDataImporter() = default;

BaseDataImporter::~BaseDataImporter()
{
    waitForEnd();
}

bool BaseDataImporter::setLine(quint8 line)
{
    line_ = line;
    return true;
}

bool BaseDataImporter::setDatabase(const std::shared_ptr<ObjectDataBase> &store)
{
    store_ = store;
    return store_ != nullptr;
}

bool BaseDataImporter::setFile(const QString &path)
{
    const QFileInfo file(path);
    const bool usable = file.isFile() && file.isReadable();
    filePath_ = usable ? path : QString();
    return usable;
}

bool BaseDataImporter::setIndexRange(quint32 first, quint32 last)
{
    firstIndex_ = first;
    lastIndex_ = last;
    return true;
}

bool BaseDataImporter::startImport()
{
    if (running_.exchange(true))
        return false;
    if (thread_)
        thread_->wait(); // the one of the run before, on its way out
    else
        thread_ = std::make_shared<QThread>();
    if (thread() != thread_.get())
        moveToThread(thread_.get());
    thread_->start(QThread::NormalPriority);
    QMetaObject::invokeMethod(this, &BaseDataImporter::doImport, Qt::QueuedConnection);
    return true;
}

void BaseDataImporter::waitForEnd()
{
    if (thread_)
        thread_->wait();
}

void BaseDataImporter::doImport()
{
    running_ = true;
    report_ = {};
    if (store_) {
        store_->setBlocked(false);
        store_->closeGate();
        {
            const ObjectDataBase::Transaction transaction(*store_);
            read();
        }
        store_->openGate();
        qDebug().noquote() << report_.text();
    }
    running_ = false;
    if (thread_)
        thread_->quit();
    Q_EMIT progress(100);
}
