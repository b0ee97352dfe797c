#pragma once

#include "generate/fileheader.h"
#include "support/projectbuilder.h"

#include <gtest/gtest.h>

#include <QMap>
#include <QTemporaryDir>

#include <functional>

/// Support for the tests of gen_define.h.
namespace TestSupport {

/// What the compiler has to say about a header that is compiled alone.
QString compilerErrors(const QString &path);

/// A generated gen_define.h; every one is compiled.
class Header
{
public:
    Header(const ProjectBuilder &project, SourceForm form, const QString &folder);

    const QString &text() const { return text_; }
    /// Text behind the name; "none" if the macro is not defined.
    QString value(const QString &name) const { return values_.value(name, QStringLiteral("none")); }
    QStringList names() const { return values_.keys(); }
    QString userSection() const { return userSection_; }

private:
    QString text_;
    QMap<QString, QString> values_;
    QString userSection_;
};

class Define : public testing::Test
{
protected:
    Header v4(const ProjectBuilder &project) const { return {project, SourceForm::V4, folder_.path()}; }
    Header classic(const ProjectBuilder &project) const { return {project, SourceForm::Classic, folder_.path()}; }
    QString path() const { return folder_.filePath(QStringLiteral("gen_define.h")); }

    QTemporaryDir folder_;
};

using Values = QMap<QString, QString>;
void expectValues(const Header &header, const Values &expected);

/// Adds objects with subindex 0.
ProjectBuilder &objects(ProjectBuilder &project, const QList<quint16> &indices);
/// Adds subindices 0 to the last to the object that was named last.
ProjectBuilder &subs(ProjectBuilder &project, quint8 last);
/// For `ProjectBuilder::sub`: a subindex that can be written, with a default value.
std::function<void(StoreRecords::SubIndexData &)> withDefault(const QString &value, quint16 dataType = 7);

} // namespace TestSupport
