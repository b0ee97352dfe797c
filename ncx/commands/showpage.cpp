#include "ncx/commands/showpage.h"

#include "ncx/page/devicepage.h"
#include "ncx/project/openedproject.h"
#include "ncx/usage/invocation.h"
#include "store/objectdatabase.h"
#include "texttools/wholefile.h"

#include <QFileInfo>

using namespace Qt::StringLiterals;

namespace {

int writeFile(const Invocation &call, const QString &path, const QByteArray &content)
{
    const QFileInfo info(path);
    if (info.exists() && info.canonicalFilePath() == QFileInfo(call.operand()).canonicalFilePath())
        return call.refuse(u"'%1' is the project"_s.arg(path));
    if (info.exists() && !info.isDir() && !call.isSet("force"_L1)) {
        call.terminal().fail(u"%1 exists; --force replaces it"_s.arg(path));
        return CouldNot;
    }
    WholeFile file(path);
    if (info.isDir() || !file.open(QIODevice::WriteOnly) || file.write(content) != content.size() ||
        !file.commitWhole()) {
        call.terminal().fail(u"%1: %2"_s.arg(path, info.isDir() ? u"it is a folder"_s
                                                                : u"it cannot be written: "_s + file.errorString()));
        return CouldNot;
    }
    return Done;
}

} // namespace

int ShowPage::writePage(const Invocation &call, OpenedProject &project, const QList<quint8> &lines)
{
    const QJsonObject data = DevicePage::data(project, lines);
    if (project.store().isDamaged())
        return CouldNot; // which is told for all that is shown
    return writeFile(call, call.value("html"_L1), DevicePage::html(data));
}

int ShowPage::writeFrames(const Invocation &call, const QList<FrameSvg::Titled> &frames)
{
    if (frames.isEmpty()) {
        call.terminal().fail(u"%1 is no PDO, PGN or CAN-ID with a frame"_s.arg(call.operand(1)));
        return CouldNot;
    }
    return writeFile(call, call.value("svg"_L1), FrameSvg::document(frames));
}
