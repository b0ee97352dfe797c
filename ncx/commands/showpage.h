#pragma once

#include "ncx/page/framesvg.h"

class Invocation;
class OpenedProject;

/// The files that `ncx show` writes instead of an answer. Both return the exit code; what went wrong has been told.
namespace ShowPage {

/// The page of the device, or of these lines of it.
int writePage(const Invocation &call, OpenedProject &project, const QList<quint8> &lines);
/// The frames that the call names.
int writeFrames(const Invocation &call, const QList<FrameSvg::Titled> &frames);

} // namespace ShowPage
