#include "import/ncxpimporter.h"

#include "import/projectmerge.h"
#include "store/objectdatabase.h"

NCXPImporter::NCXPImporter() = default;

NCXPImporter::~NCXPImporter()
{
    // Before the members that a run still under way would be using.
    waitForEnd();
}

void NCXPImporter::read()
{
    constexpr quint32 lastObject = 0xffff;
    // Without a parent and gone before the end is told: it belongs to this thread.
    ObjectDataBase source;
    if (filePath_.isEmpty() || !source.openDataBase(filePath_, true))
        return;
    if (firstIndex_ <= lastObject)
        ProjectMerge::copyObjects(*store_, line_, source, sourceLine_, static_cast<quint16>(firstIndex_),
                                  static_cast<quint16>(qMin(lastIndex_, lastObject)), report_);
    ProjectMerge::copyPGNs(*store_, line_, source, sourceLine_, firstIndex_, lastIndex_, report_);
}
