#include "ncx/assistant/assistantsession.h"

#include "mcp/call/tool.h"
#include "ncx/project/identity.h"
#include "store/objectdatabase.h"

#include <QCoreApplication>
#include <QFileInfo>

using namespace Qt::StringLiterals;

AssistantSession::AssistantSession(Roots roots)
    : roots_(std::move(roots))
    , project_(std::make_unique<OpenedProject>())
    , journal_(std::make_unique<RowJournal>(project_->store().statements()))
{
}

AssistantSession::~AssistantSession() = default;

QString AssistantSession::open(const QString &path)
{
    setProjectOpen(false);
    journal_.reset();
    project_ = std::make_unique<OpenedProject>();
    const bool isOpen = project_->open(path, OpenedProject::Purpose::Serving);
    journal_ = std::make_unique<RowJournal>(project_->store().statements());
    findings_.clear();
    told.clear();
    isChanged_ = false;
    if (!isOpen)
        return project_->reason();
    project_->noteFile();
    handler().setKeepsPdos(true);
    setProjectOpen(true);
    check();
    return {};
}

bool AssistantSession::goesOn(int done, int total, const QString &what)
{
    tellProgress(done, total, what);
    QCoreApplication::processEvents();
    return !isCancelled();
}

QString AssistantSession::save(const QString &path)
{
    Identity::take(Identity::leastFor(store(), path));
    QString reason = project_->saveAs(path);
    if (!reason.isEmpty())
        return reason;
    if (QFileInfo(path).canonicalFilePath() == QFileInfo(project_->path()).canonicalFilePath()) {
        project_->noteFile();
        isChanged_ = false;
    }
    return {};
}

FindingsReport::Findings AssistantSession::check()
{
    // The identity of the project, as in a run; an edit may have changed its lines.
    Identity::take(Identity::leastFor(store(), project_->path()));
    FindingsReport::Findings found = handler().findAfterEdit().findings;
    Identity::takeWidest();
    // What was corrected is not found the next time.
    findings_ = found;
    findings_.removeIf([](const CheckFinding &finding) { return finding.kind == CheckFinding::Kind::Correction; });
    return found;
}

AssistantSession &sessionOf(const ToolCall &call)
{
    return static_cast<AssistantSession &>(call.session());
}
