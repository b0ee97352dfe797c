#include "generate/filegenerator.h"

#include "generate/outputfile.h"
#include "store/objectdatabase.h"

#include <QDir>
#include <QFileInfo>
#include <QTextStream>

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
    database()->setBlocked(true);
    readMultiLineSetting();
    writeFile();
    setRunning(false);
    quitThread();
    database()->setBlocked(false);
    Q_EMIT progress(100);
}

void FileGenerator::writeFile()
{
    OutputFile file(filePath());
    if (!file.open()) {
        fail(OutputError, file.errorText());
        return;
    }
    QTextStream stream(file.device());
    write(stream);
    stream.flush();
    if (errorCode() == 0 && !file.commit())
        fail(OutputError, file.errorText());
    if (errorCode() == 0)
        writeCompanions();
}
