#include "ncx/assistant/roots.h"
#include "support/testhome.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>

using namespace Qt::StringLiterals;
using namespace TestSupport;

namespace {

TEST(Roots, HoldWhateverLeadsOutOfThem)
{
    QTemporaryDir top;
    const QDir folder(top.path());
    ASSERT_TRUE(folder.mkpath(u"root/inner"_s) && folder.mkpath(u"rootless"_s) && folder.mkpath(u"other"_s));
    ASSERT_TRUE(QFile::link(folder.filePath(u"other"_s), folder.filePath(u"root/out"_s)));
    ASSERT_TRUE(QFile::link(folder.filePath(u"other/new.ncxt"_s), folder.filePath(u"root/new.ncxt"_s)));
    ASSERT_TRUE(QFile::link(folder.filePath(u"root/inner"_s), folder.filePath(u"root/in"_s)));
    ASSERT_TRUE(QFile::link(folder.filePath(u"root"_s), folder.filePath(u"alias"_s)));
    for (const QString &given : {u"root"_s, u"alias"_s, u"root/inner/.."_s}) {
        const Roots roots({folder.filePath(given)});
        for (const QString &inside : {u"root"_s, u"root/none.ncxt"_s, u"root/in/a.ncxt"_s, u"root/none/deep/a.ncxt"_s,
                                      u"alias/a.ncxt"_s, u"rootless/../root/a.ncxt"_s})
            EXPECT_EQ(roots.refusal(folder.filePath(inside)), QString()) << qPrintable(inside);
        for (const QString &outside : {u"."_s, u"rootless/a.ncxt"_s, u"root/../other/a.ncxt"_s, u"root/out/a.ncxt"_s,
                                       u"root/out/none/a.ncxt"_s, u"root/new.ncxt"_s})
            EXPECT_NE(roots.refusal(folder.filePath(outside)), QString()) << qPrintable(outside);
        EXPECT_NE(roots.refusal(u"/etc/passwd"_s), QString());
    }
}

} // namespace
