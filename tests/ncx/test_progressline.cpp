#include "ncx/usage/progressline.h"

#include <gtest/gtest.h>

#include <QRegularExpression>

#include <condition_variable>
#include <mutex>

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
            changed_.notify_all();
        };
    }
    void waitForText()
    {
        std::unique_lock lock(mutex_);
        changed_.wait(lock, [this] { return !text_.isEmpty(); });
    }
    QByteArray text()
    {
        const std::scoped_lock lock(mutex_);
        return text_;
    }

private:
    std::mutex mutex_;
    std::condition_variable changed_;
    QByteArray text_;
};

} // namespace

TEST(ProgressLine, TellsALongStepAndGoesWithIt)
{
    Heard heard;
    {
        ProgressLine line(heard.show(), 2ms);
        line.begin(u"reading a.ncxt"_s);
        heard.waitForText();
        line.begin(u"checking"_s);
    }
    // A busy machine may let the line come seconds later, or more than once.
    static const QRegularExpression shown(
        uR"(^(\rncx: reading a\.ncxt \(\d+ s\)\x1b\[K)+\r\x1b\[K((\rncx: checking \(\d+ s\)\x1b\[K)+\r\x1b\[K)?$)"_s);
    EXPECT_TRUE(shown.match(QString::fromUtf8(heard.text())).hasMatch()) << heard.text().toStdString();
}

TEST(ProgressLine, SaysNothingOfAShortStep)
{
    Heard heard;
    ProgressLine line(heard.show(), 1h);
    line.begin(u"reading a.ncxt"_s);
    line.end();
    EXPECT_EQ(heard.text(), QByteArray());
}
