#include "import/ncxpimporter.h"

#include "import/projectmerge.h"
#include "store/objectdatabase.h"

NCXPImporter::NCXPImporter() = default;

NCXPImporter::~NCXPImporter()
{
    // Before the members that a run still under way would be using.
    waitForEnd();
}

void NCXPImporter::doImport()
{
    running_ = true;
    // Without a parent and gone before the end is told: it belongs to this thread.
    if (store_ && !filePath_.isEmpty()) {
        store_->setBlocked(false);
        ObjectDataBase source;
        if (source.openDataBase(filePath_, true)) {
            constexpr quint32 lastObject = 0xffff;
            if (firstIndex_ <= lastObject)
                ProjectMerge::copyObjects(*store_, line_, source, sourceLine_, static_cast<quint16>(firstIndex_),
                                          static_cast<quint16>(qMin(lastIndex_, lastObject)));
            ProjectMerge::copyPGNs(*store_, line_, source, sourceLine_, firstIndex_, lastIndex_);
        }
    }
    finish();
}
