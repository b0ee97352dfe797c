#pragma once

#include "generate/run/generatormainhandler.h"

#include <QByteArray>
#include <QList>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>

class OpenedProject;

/// A run whose files are compared with those of a folder before any of them is written. The run itself works in a
/// private folder, into which goes what it reads beside its outputs: the user's section of gen_define.h, files that it
/// removes.
class FolderGeneration
{
public:
    enum class Outcome
    {
        Generated,
        CheckFailed,
        Failed ///< `messages` tell why
    };
    enum class Change
    {
        None,
        New,
        Changed,
        Removed
    };
    struct File
    {
        QString name;
        Change change = Change::None;
    };

    /// `folder` need not exist.
    FolderGeneration(OpenedProject &project, const QString &folder);

    /// Takes the user's section and the generation counter from this gen_define.h, and not from the one in the folder.
    /// To be called before `generate`. False if the file cannot be read.
    bool takeUserSection(const QString &path) { return copy(path, QStringLiteral("gen_define.h")); }
    Outcome generate();
    /// What the check of the run has found.
    const GeneratorMainHandler::ModelFindings &findings() const { return findings_; }
    /// What the run has said besides, line by line, with the folder in place of the private one.
    const QStringList &messages() const { return messages_; }
    /// The files of the run, by name.
    const QList<File> &files() const { return files_; }
    /// Brings files into the folder, all of them or none. What could not be done and why, a sentence; empty if done.
    QString install(const QList<File> &files);
    /// What the settings want to follow a run: a command, and the check of the device descriptions. False if it failed.
    bool followUp();

private:
    void hear(const QString &text);
    bool copy(const QString &path, const QString &name);
    void copyWhatARunReads();
    void compare();
    QString made(const QString &name) const { return private_.filePath(name); }
    QString wanted(const QString &name) const { return absolute_ + u'/' + name; }

    OpenedProject &project_;
    QString folder_; ///< as it was given
    QString absolute_;
    QTemporaryDir private_;
    QStringList read_; ///< what was copied into the private folder
    GeneratorMainHandler::ModelFindings findings_;
    QStringList messages_;
    QList<File> files_;
    bool isInCheck_ = false;
    bool hasFailed_ = false;
};
