#include "GatewayFixture.h"

#include <QElapsedTimer>
#include <QEventLoop>
#include <QTimer>

GatewayFixture::GatewayFixture() : m_module(std::make_unique<TestModule>()) {
    restart();
}

GatewayFixture::~GatewayFixture() = default;

void GatewayFixture::restart(const QHash<QString, QVariant>& config) {
    m_gateway.reset();
    QHash<QString, QVariant> all = config;
    all.insert(QStringLiteral("gateway/listen"), QStringLiteral("127.0.0.1:0"));
    m_gateway = std::make_unique<GatewayWorker>(all);
    ASSERT_TRUE(m_gateway->start());
}

void GatewayFixture::runFor(int milliseconds) {
    QEventLoop loop;
    QTimer::singleShot(milliseconds, &loop, &QEventLoop::quit);
    loop.exec();
}

bool GatewayFixture::waitFor(const std::function<bool()>& condition, int patienceMs) {
    QElapsedTimer clock;
    clock.start();
    while (!condition()) {
        if (clock.elapsed() > patienceMs)
            return false;
        runFor(2);
    }
    return true;
}
