#include "texttools/wholefile.h"

#include <QSaveFile>

bool TextTools::commitWhole(QSaveFile &file)
{
    // The file gives itself up if it is not committed; a commit that fails would also forget why.
    return file.error() == QFileDevice::NoError && file.flush() && file.commit();
}
