#pragma once

#include "mcp/session/projectsession.h"
#include "ncx/assistant/findingsreport.h"
#include "ncx/assistant/roots.h"
#include "ncx/project/openedproject.h"
#include "store/statements/rowjournal.h"

#include <memory>

/// What the tools of an assistant work on: a project that is being built, with what its check has found so far, and
/// with a journal of its edits.
class AssistantSession : public ProjectSession
{
public:
    explicit AssistantSession(Roots roots);
    ~AssistantSession() override;

    GeneratorMainHandler &handler() const override { return project_->handler(); }
    OpenedProject &project() const { return *project_; }
    const Roots &roots() const { return roots_; }

    /// Opens a project in the place of the one before. The reason for which that cannot be, and then none is open.
    QString open(const QString &path);
    /// Saves to the file that was opened, or a copy to another one. The reason against it, or empty.
    QString save(const QString &path);
    /// True if the project has edits that are in no file.
    bool isChanged() const { return isChanged_; }
    void setChanged() { isChanged_ = true; }

    /// Whether the call under way wants all findings told.
    bool isVerbose() const { return isVerbose_; }
    void setVerbose(bool verbose) { isVerbose_ = verbose; }

    /// Tells how far a long operation is, as `tellProgress`, and hears what the client says meanwhile. False if it has
    /// taken the request back.
    bool goesOn(int done, int total, const QString &what);

    RowJournal &journal() { return *journal_; }

    /// Looks at the project and keeps what is found, but corrections, which are told once.
    FindingsReport::Findings check();
    /// What the last check has found and left.
    const FindingsReport::Findings &findings() const { return findings_; }
    void setFindings(const FindingsReport::Findings &findings) { findings_ = findings; }
    /// What a client has been told by check_model.
    FindingsReport::Findings told = {};

private:
    Roots roots_;
    std::unique_ptr<OpenedProject> project_;
    std::unique_ptr<RowJournal> journal_;
    FindingsReport::Findings findings_;
    bool isChanged_ = false;
    bool isVerbose_ = false;
};

class ToolCall;
/// The session of a call to a tool of this server.
AssistantSession &sessionOf(const ToolCall &call);
