#include "GatewayFixture.h"

#include <sys/stat.h>

#include <QFile>

const QByteArray GatewayFixture::Token = "0123456789abcdef-token";

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

QString GatewayFixture::tokenFile(const QByteArray& text, mode_t mode) {
    const QString name = m_folder.filePath(QStringLiteral("token"));
    QFile file(name);
    EXPECT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(text);
    file.close();
    EXPECT_EQ(::chmod(QFile::encodeName(name).constData(), mode), 0);
    return name;
}
