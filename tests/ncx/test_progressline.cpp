#include "ncx/usage/progressline.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

/// What a terminal has got, from whatever thread.
class Heard
{
public:
    ProgressLine::Show show()
    {
        return [this](const QByteArray &bytes) {
            const std::scoped_lock lock(mutex_);
            text_ += bytes;
        };
    }
    QByteArray text()
    {
        const std::scoped_lock lock(mutex_);
        return text_;
    }

private:
    std::mutex mutex_;
    QByteArray text_;
};

} // namespace

TEST(ProgressLine, TellsALongStepAndGoesWithIt)
{
    Heard heard;
    {
        ProgressLine line(heard.show(), 2ms);
        line.begin(u"reading a.ncxt"_s);
        for (int i = 0; i < 1000 && heard.text().isEmpty(); ++i)
            std::this_thread::sleep_for(5ms);
        line.begin(u"checking"_s);
    }
    EXPECT_TRUE(heard.text().startsWith("\rncx: reading a.ncxt (0 s)\x1b[K")) << heard.text().toStdString();
    EXPECT_TRUE(heard.text().endsWith("\r\x1b[K"));
}

TEST(ProgressLine, SaysNothingOfAShortStep)
{
    Heard heard;
    ProgressLine line(heard.show(), 1h);
    line.begin(u"reading a.ncxt"_s);
    line.end();
    EXPECT_EQ(heard.text(), QByteArray());
}
