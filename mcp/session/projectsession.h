#pragma once

#include "generate/run/generatormainhandler.h"
#include "import/profiledatabases.h"
#include "mcp/session/accessthrottle.h"
#include "mcp/session/mcpoutputhandler.h"

#include <functional>

/// What the tools work on: the one open project with all that opens, checks, generates and saves it, and the reference
/// profiles.
class ProjectSession : public QObject
{
    Q_OBJECT

public:
    explicit ProjectSession(QObject *parent = nullptr);

    MCPOutputHandler &output() { return output_; }
    /// Made when it is first asked for.
    virtual GeneratorMainHandler &handler() const;
    ObjectDataBase &store() const { return *handler().database(); }

    /// Set by `open_project` alone. A failed open leaves none open, also where one was before.
    bool isProjectOpen() const { return projectOpen_; }
    void setProjectOpen(bool open) { projectOpen_ = open; }
    /// Why nothing that the store says of the project is to be trusted any more: a write has failed halfway. Empty as
    /// long as the store is whole.
    QString damage() const;
    /// The result of the last generation.
    GeneratorMainHandler::GeneratorResult generatorResult() const { return generatorResult_; }

    /// Folder of the reference profiles; by default the one inside the program.
    const QString &profilePath() const { return profilePath_; }
    void setProfilePath(const QString &path);
    ProfileDatabases &profiles() { return *profiles_; }
    /// Of the listing of profiles, and of that of one profile's objects.
    AccessThrottle &profileListing() { return profileListing_; }
    AccessThrottle &profileIndexListing() { return profileIndexListing_; }

    /// Called with false before a generation and with true after it: no further request is to be read meanwhile.
    std::function<void(bool)> setReadingEnabled = [](bool) {};
    /// Tells the client how far a long operation is, in steps of `total`, 0 for an unknown number; to one that has not
    /// asked for it nothing is told.
    std::function<void(int done, int total, const QString &message)> tellProgress = [](int, int, const QString &) {};
    /// True once the client has taken the request back that is under way.
    bool isCancelled() const { return cancelled_; }
    void setCancelled(bool cancelled) { cancelled_ = cancelled; }

    /// Runs the model check and tells its outcome in the words with which all tools that edit end.
    QString checkSummary();
    /// The protocols of a line, a code of `LineProtocols::ofType`; 0 for a line without any.
    int lineTypeCode(quint8 line) const;
    /// Whether this build of the program works with lines of the type. The J1939 build leaves out type 5, though that
    /// contains J1939.
    static bool lineTypeSupported(int typeCode);

public Q_SLOTS:
    void onGeneratorFinished(GeneratorMainHandler::GeneratorResult result) { generatorResult_ = result; }

private:
    mutable MCPOutputHandler output_;
    mutable std::unique_ptr<GeneratorMainHandler> handler_;
    bool projectOpen_ = false;
    bool cancelled_ = false;
    GeneratorMainHandler::GeneratorResult generatorResult_ = GeneratorMainHandler::GenerationDone;
    QString profilePath_ = QStringLiteral(":/codb");
    std::unique_ptr<ProfileDatabases> profiles_ = std::make_unique<ProfileDatabases>(profilePath_);
    AccessThrottle profileListing_;
    AccessThrottle profileIndexListing_;
};
