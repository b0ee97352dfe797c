#include "ncx/commands/showpage.h"

#include "ncx/commands/outputfile.h"
#include "ncx/page/devicepage.h"
#include "ncx/project/openedproject.h"
#include "ncx/usage/invocation.h"
#include "store/objectdatabase.h"

using namespace Qt::StringLiterals;

namespace {

int write(const Invocation &call, const QString &path, const QByteArray &content)
{
    return OutputFile::write(call, path, content, {{.path = call.operand(), .text = u"the project"_s}});
}

} // namespace

int ShowPage::writePage(const Invocation &call, OpenedProject &project, const QList<quint8> &lines)
{
    const QByteArray html = DevicePage::html(project, lines);
    if (project.store().isDamaged())
        return CouldNot; // which is told for all that is shown
    return write(call, call.value("html"_L1), html);
}

int ShowPage::writeFrames(const Invocation &call, const QList<FrameSvg::Titled> &frames)
{
    if (frames.isEmpty()) {
        call.terminal().fail(u"%1 is no PDO, PGN or CAN-ID with a frame"_s.arg(call.operand(1)));
        return CouldNot;
    }
    return write(call, call.value("svg"_L1), FrameSvg::document(frames));
}
