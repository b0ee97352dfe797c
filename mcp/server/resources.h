#pragma once

#include "mcp/call/reply.h"

class ProjectSession;

/// The reference profiles as resources under the URI scheme "codb://".
namespace Resources {

Reply list(ProjectSession &session);
/// `uri` is that of a profile, or of one of its objects.
Reply read(ProjectSession &session, const QString &uri);

} // namespace Resources
