#include "PictureStore.h"

#include <QCryptographicHash>
#include <QDir>
#include <QSaveFile>

#include "FilesLog.h"

namespace {

// By what they begin with: the types that the gateway serves.
QString pictureSuffix(const QByteArray& bytes) {
    struct Kind {
        QByteArray start;
        const char* suffix;
    };
    static const Kind kinds[] = {
        {QByteArrayLiteral("\x89PNG\r\n\x1a\n"), "png"},
        {QByteArrayLiteral("\xff\xd8\xff"), "jpg"},
        {QByteArrayLiteral("GIF8"), "gif"},
    };
    for (const Kind& kind : kinds) {
        if (bytes.startsWith(kind.start))
            return QString::fromLatin1(kind.suffix);
    }
    constexpr int WebpTypeAt = 8;
    const bool isWebp = bytes.startsWith("RIFF") && bytes.mid(WebpTypeAt, 4) == "WEBP";
    return isWebp ? QStringLiteral("webp") : QString();
}

} // namespace

PictureStore::PictureStore(const QString& folder, qint64 maxTotalBytes)
    : m_folder(folder), m_maxTotalBytes(maxTotalBytes) {
    if (!isUsable())
        return;
    for (const QFileInfo& file : QDir(folder).entryInfoList(QDir::Files)) {
        m_names.insert(file.fileName());
        m_totalBytes += file.size();
    }
}

QString PictureStore::folderIn(const QString& dataFolder) {
    return dataFolder.isEmpty() ? QString() : dataFolder + QStringLiteral("/artwork");
}

QString PictureStore::keep(const QByteArray& bytes) {
    const QString suffix = pictureSuffix(bytes);
    if (!isUsable() || suffix.isEmpty() || bytes.size() > MaxPictureBytes)
        return {};
    const QByteArray hash = QCryptographicHash::hash(bytes, QCryptographicHash::Sha256).toHex();
    const QString name = QString::fromLatin1(hash) + QLatin1Char('.') + suffix;
    return has(name) || write(name, bytes) ? name : QString();
}

bool PictureStore::write(const QString& name, const QByteArray& bytes) {
    QString failure;
    QSaveFile out(file(name));
    if (m_totalBytes + bytes.size() > m_maxTotalBytes)
        failure = QStringLiteral("there are %1 bytes of them").arg(m_totalBytes);
    else if (!QDir().mkpath(m_folder) || !out.open(QIODevice::WriteOnly) ||
             out.write(bytes) != bytes.size() || !out.commit())
        failure = out.errorString();
    if (failure.isEmpty()) {
        m_totalBytes += bytes.size();
        m_names.insert(name);
        return true;
    }
    if (!m_failureLogged)
        LOG4CPLUS_WARN(filesLog(), "pictures of music files are not kept any more: " << failure);
    m_failureLogged = true;
    return false;
}
