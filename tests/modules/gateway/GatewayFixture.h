#pragma once

#include <gtest/gtest.h>
#include <memory>
#include <sys/types.h>

#include <QTemporaryDir>

#include "CMRootWorker.h"
#include "EventLoop.h"
#include "GatewayWorker.h"
#include "HttpClient.h"
#include "TestModule.h"

// A root, the test module and a gateway on a free port of the loopback, in this process.
class GatewayFixture : public ::testing::Test {
protected:
    // A token that a device takes.
    static const QByteArray Token;

    GatewayFixture();
    ~GatewayFixture() override;

    // Starts the gateway over with these keys besides the port.
    void restart(const QHash<QString, QVariant>& config = {});
    // Writes a token file into the test's folder, and names it.
    QString tokenFile(const QByteArray& text = Token + '\n', mode_t mode = 0600);
    quint16 port() const { return m_gateway->port(); }
    CMSubscribe& events() { return *m_module->subscribe(); }

    QTemporaryDir m_folder;
    CMRootWorker m_root;
    std::unique_ptr<TestModule> m_module;
    std::unique_ptr<GatewayWorker> m_gateway;
};
