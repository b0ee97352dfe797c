#include "support/shellcase.h"
#include "support/testhome.h"

#include <gtest/gtest.h>

#include <QDirIterator>

#include <unistd.h>

using namespace Qt::StringLiterals;
using namespace TestSupport;

namespace {

class Ncx : public testing::TestWithParam<TextCase>
{
};

TEST_P(Ncx, SaysWhatIsExpected)
{
    if (GetParam().path.endsWith("/rights.txt"_L1) && geteuid() == 0)
        GTEST_SKIP() << "root reads and writes everything";
    CaseFolder(u"ncx/files"_s).play(GetParam());
    QDirIterator copies(home().path(), {u"qvxdatatemp_*"_s}, QDir::Files, QDirIterator::Subdirectories);
    EXPECT_FALSE(copies.hasNext()) << "a working copy was left behind";
}

INSTANTIATE_TEST_SUITE_P(Program, Ncx, testing::ValuesIn(textCases(u"ncx"_s, {u"== "_s})), caseName);

} // namespace
