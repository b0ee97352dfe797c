#include "generate/base/filegenerator.h"

#include "generate/base/outputfile.h"
#include "generate/base/utf8sink.h"
#include "store/objectdatabase.h"

#include <QDir>
#include <QFileInfo>

using namespace Qt::StringLiterals;

QString FileGenerator::filePath() const
{
    return QDir(outputFolder()).filePath(fileName());
}

bool FileGenerator::checkWritable()
{
    const QFileInfo info(filePath());
    return !info.exists() || info.isWritable();
}

AbstractGenerator::Status FileGenerator::startJob()
{
    return launch(jobName());
}

AbstractGenerator::Status FileGenerator::cancelJob()
{
    return requestCancel();
}

void FileGenerator::doJob()
{
    setRunning(true);
    const std::shared_ptr<ObjectDataBase> store = database();
    if (store) {
        store->setBlocked(true);
        readMultiLineSetting();
        writeFile();
    } else {
        fail(StoreError, u"The project has no line."_s);
    }
    setRunning(false);
    quitThread();
    if (store)
        store->setBlocked(false);
    Q_EMIT progress(100);
}

void FileGenerator::writeFile()
{
    OutputFile file(filePath());
    if (!file.open()) {
        fail(OutputError, file.errorText());
        return;
    }
    Utf8Sink sink(file.device());
    write(sink);
    sink.flush();
    if (errorCode() == 0 && !file.commit())
        fail(OutputError, file.errorText());
    if (errorCode() == 0)
        writeCompanions();
}
