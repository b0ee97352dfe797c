#include "generate/run/edscheckerwrapper.h"

#include <QFileInfo>

using namespace Qt::StringLiterals;

EdsCheckerWrapper::EdsCheckerWrapper(QString checkerPath, QObject *parent)
    : QObject(parent)
    , checkerPath_(std::move(checkerPath))
{
    process_.setProcessChannelMode(QProcess::MergedChannels);
    process_.setStandardInputFile(QProcess::nullDevice());
    connect(&process_, &QProcess::finished, this, &EdsCheckerWrapper::processFinished);
}

EdsCheckerWrapper::~EdsCheckerWrapper()
{
    process_.disconnect(this);
    if (process_.state() != QProcess::NotRunning) {
        process_.kill();
        process_.waitForFinished();
    }
}

bool EdsCheckerWrapper::start(const QString &edsFile)
{
    constexpr int startTimeoutMs = 30000;
    // The database of CiA 301's objects lies beside the program.
    const QString database = QFileInfo(checkerPath_).absolutePath() + "/v301.codb"_L1;
    process_.start(checkerPath_, {u"-e"_s, edsFile, u"-d"_s, database});
    return process_.waitForStarted(startTimeoutMs);
}

QString EdsCheckerWrapper::output()
{
    return QString::fromLocal8Bit(process_.readAllStandardOutput());
}

void EdsCheckerWrapper::processFinished(int /*exitCode*/)
{
    Q_EMIT finished();
}
