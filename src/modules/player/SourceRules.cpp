#include "SourceRules.h"

#include <QDir>
#include <QFileInfo>

#include "PlayerLog.h"

namespace {

constexpr int DefaultFileTimeoutMs = 15000;
constexpr int DefaultNetworkTimeoutMs = 30000;

int positive(const QHash<QString, QVariant>& config, const QString& key, int otherwise) {
    if (!config.contains(key))
        return otherwise;
    bool isNumber = false;
    const int value = config.value(key).toInt(&isNumber);
    if (isNumber && value > 0)
        return value;
    LOG4CPLUS_WARN(playerLog(),
                   key << " is no positive number of milliseconds, using " << otherwise);
    return otherwise;
}

bool isNetwork(const QUrl& url) {
    return url.scheme() == QLatin1String("http") || url.scheme() == QLatin1String("https");
}

SourceRules::Source refused(const QString& why) {
    return {{}, why, 0};
}

} // namespace

SourceRules::SourceRules(const QHash<QString, QVariant>& config)
    : m_musicDir(config.value(QStringLiteral("musicDir")).toString()),
      m_anywhere(config.value(QStringLiteral("player/files")) == QStringLiteral("anywhere")),
      m_fileTimeoutMs(
          positive(config, QStringLiteral("player/fileTimeoutMs"), DefaultFileTimeoutMs)),
      m_networkTimeoutMs(
          positive(config, QStringLiteral("player/networkTimeoutMs"), DefaultNetworkTimeoutMs)) {}

SourceRules::Source SourceRules::source(const QString& uri) const {
    const QUrl url(uri);
    if (uri.isEmpty() || !url.isValid() || url.scheme().isEmpty())
        return refused(QStringLiteral("there is no address to play"));
    if (url.isLocalFile())
        return file(url);
    if (isNetwork(url))
        return {url, {}, m_networkTimeoutMs};
    return refused(QStringLiteral("its kind of address is not played"));
}

SourceRules::Source SourceRules::file(const QUrl& url) const {
    const QString name = url.toLocalFile();
    const bool isName = QDir::isAbsolutePath(name) && !name.contains(QChar(0));
    const QFileInfo file(isName ? QFileInfo(name).canonicalFilePath() : QString());
    // Looked at before it is opened: opening a pipe waits.
    if (file.filePath().isEmpty() || !file.isFile())
        return refused(QStringLiteral("there is no such file"));
    if (!m_anywhere && !isInMusicFolder(file.filePath()))
        return refused(QStringLiteral("it is outside of the music folder"));
    return {QUrl::fromLocalFile(file.filePath()), {}, m_fileTimeoutMs};
}

bool SourceRules::isInMusicFolder(const QString& canonical) const {
    // Asked every time: the folder may come later, or be a link that changes.
    const QString folder = m_musicDir.isEmpty() ? QString() : QDir(m_musicDir).canonicalPath();
    if (folder.isEmpty())
        return false;
    return canonical.startsWith(folder.endsWith(QLatin1Char('/')) ? folder
                                                                  : folder + QLatin1Char('/'));
}

SourceRules::Source SourceRules::redirected(const QUrl& from, const QString& location) const {
    constexpr int MaxShown = 200;
    const QUrl target = from.resolved(QUrl(location));
    if (target.isValid() && isNetwork(target) && !target.host().isEmpty())
        return {target, {}, m_networkTimeoutMs};
    return refused(QStringLiteral("it is redirected to \"%1\"").arg(location.left(MaxShown)));
}
