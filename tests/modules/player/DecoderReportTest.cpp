#include "DecoderReport.h"

#include <gtest/gtest.h>

#include <QCoreApplication>

namespace {

using Kind = EngineEvent::Kind;

class DecoderReportTest : public ::testing::Test {
protected:
    // What has come through, as "kind text".
    QStringList told() {
        QCoreApplication::processEvents();
        return m_told;
    }

    GstPadPtr pad() {
        gst_init(nullptr, nullptr);
        return GstPadPtr(GST_PAD(gst_object_ref_sink(gst_pad_new("sink", GST_PAD_SINK))));
    }

private:
    QStringList m_told;

protected:
    EngineEvents events{[this](const EngineEvent& event) {
        m_told.append(QString::number(int(event.kind)) + ' ' + QString::fromStdString(event.text));
    }};
    DecoderReport report{7, events};
};

QString event(Kind kind, const char* text) {
    return QString::number(int(kind)) + ' ' + text;
}

TEST_F(DecoderReportTest, theFirstThatIsToldIsTheOneThatCounts) {
    report.ready(AudioFormat{});
    report.fail("broken off");
    report.redirect("http://elsewhere/");
    EXPECT_EQ(told(), QStringList{event(Kind::DecoderReady, "")});
    EXPECT_EQ(report.error(), "broken off");
}

// One of GStreamer's threads may still be on its way when the decoder is gone.
TEST_F(DecoderReportTest, whatIsToldAfterItWasClosedGoesNowhere) {
    report.setEntry(pad());
    ASSERT_TRUE(report.entry());
    report.close();
    EXPECT_FALSE(report.entry());
    report.fail("too late");
    EXPECT_EQ(told(), QStringList());
}

} // namespace
