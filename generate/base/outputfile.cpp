#include "generate/base/outputfile.h"

#include "texttools/wholefile.h"

#include <QFileInfo>

using namespace Qt::StringLiterals;

bool OutputFile::open()
{
    const QFileInfo info(path_);
    if (info.exists() && !info.isFile())
        file_ = std::make_unique<QFile>(path_);
    else
        file_ = std::make_unique<WholeFile>(path_);
    return file_->open(QIODevice::WriteOnly | QIODevice::Truncate) || failed();
}

bool OutputFile::commit()
{
    if (auto *whole = qobject_cast<WholeFile *>(file_.get()))
        return whole->commitWhole() || failed();
    if (file_->error() != QFileDevice::NoError)
        return failed();
    file_->close();
    return file_->error() == QFileDevice::NoError || failed();
}

bool OutputFile::failed()
{
    errorText_ = u"Cannot write %1: %2."_s.arg(path_, file_->errorString());
    return false;
}
