#pragma once

#include "generate/base/outputhandlerbase.h"
#include "generate/run/generatormainhandler.h"

#include <QString>

#include <functional>
#include <memory>

/// A sink that hands each text on, without its markup.
class TextSink : public OutputHandlerBase
{
    Q_OBJECT

public:
    using Hear = std::function<void(const QString &)>;

    explicit TextSink(Hear hear = {})
        : hear_(std::move(hear))
    {
    }
    void setHear(Hear hear) { hear_ = std::move(hear); }
    void message(const QVariant &value) override;
    QString collectedText() const override { return collected_; }

    /// A text without the tags that the check uses, and nothing else of it lost.
    static QString plain(QString text);

private:
    Hear hear_;
    QString collected_;
};

/// A project that is opened to be read or worked on. The user's file stays as it is: all work is done on a copy in the
/// application's local data folder, which goes with this object. The process takes the identity of the project.
class OpenedProject
{
public:
    OpenedProject();
    ~OpenedProject();
    Q_DISABLE_COPY_MOVE(OpenedProject)

    enum class Purpose
    {
        Running,   ///< with the corrections and settings that a run begins with, not to be saved
        Serving,   ///< the same, to be saved
        Reading,   ///< as it is in its file, in the present layout, not to be saved
        Comparing, ///< the same, maybe in another thread while others are opened: the process is to have the widest
                   ///< identity, and keeps it
        Copying,   ///< the same, to be saved elsewhere
        Editing    ///< the same, to be saved in the place of that file
    };

    /// Opens a project of any form and age. False, with the reason and what to do about it, for what is missing, cannot
    /// be read, is something else, is broken, or was written by a later version.
    bool open(const QString &path, Purpose purpose = Purpose::Running);
    /// A sentence part, without the path and without a full stop; empty after a successful open.
    const QString &reason() const { return reason_; }

    const QString &path() const { return path_; } ///< as it was given
    bool isText() const { return isTextPath(path_); }
    /// Why a file cannot be read at all, whatever is in it; empty if it can.
    static QString reasonNotToRead(const QString &path);
    /// The same, or why what the file begins with makes it no project; empty if it may be one.
    static QString reasonAgainst(const QString &path);
    /// Why a file of text that is longer than one that is meant to be read is refused.
    static QString tooLargeText();
    /// Why there is no working copy of a project of so many bytes, and what to do about it; empty if there
    /// is one.
    static QString reasonWithoutCopy(qint64 size = 0);
    static bool isTextPath(const QString &path) { return path.endsWith(QLatin1StringView("ncxt")); }
    ObjectDataBase &store() const { return *handler_.database(); }
    const std::shared_ptr<ObjectDataBase> &sharedStore() const { return handler_.database(); }
    GeneratorMainHandler &handler() { return handler_; }
    TextSink &sink() { return sink_; }
    /// What a project says to a number of a line that it has not, a sentence.
    static QString reasonWithoutLine(ObjectDataBase &store, const QString &path, const QString &line);
    /// Saves it as `save` does.
    QString saveAs(const QString &path) { return save(store(), path); }
    /// Saves a project to a file whose ending tells the form, as a whole or not at all. The reason for which that could
    /// not be, a sentence part; empty if it is done.
    static QString save(ObjectDataBase &store, const QString &path);
    /// Takes the file as it is now for the one that is being edited.
    void noteFile();
    /// True if the file is not the one any more that was opened for editing: another process has written it.
    bool hasChangedOnDisk() const;

private:
    void takeIdentity(const QString &application) const;
    bool refuse(const QString &reason);
    bool openAsItIs(const QString &path);
    QString reasonOfFailure() const;

    TextSink sink_;
    GeneratorMainHandler handler_;
    QString path_;
    QString reason_;
    QByteArray stamp_;
    bool isBesideOthers_ = false; ///< what the whole process has is not changed
};
