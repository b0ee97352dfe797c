#pragma once

#include <QObject>
#include <QProcess>

/// Runs the outside program that checks an EDS file, once.
class EdsCheckerWrapper : public QObject
{
    Q_OBJECT

public:
    explicit EdsCheckerWrapper(QString checkerPath, QObject *parent = nullptr);
    ~EdsCheckerWrapper() override;
    Q_DISABLE_COPY_MOVE(EdsCheckerWrapper)

    /// False if the program cannot be started; `finished` does not follow then.
    bool start(const QString &edsFile);
    void cancel() { process_.kill(); }
    /// What the program has written on both streams.
    QString output();

Q_SIGNALS:
    void finished();

public Q_SLOTS:
    void processFinished(int exitCode);

private:
    QString checkerPath_;
    QProcess process_;
};
