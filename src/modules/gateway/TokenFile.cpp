#include "TokenFile.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QFile>

namespace {

// Shorter ones could be guessed.
constexpr int Shortest = 16;
constexpr int MaxLength = 512;
constexpr mode_t OthersMayRead = S_IRWXG | S_IRWXO;

// Closes the descriptor when it goes.
struct Opened {
    int descriptor;
    ~Opened() {
        if (descriptor >= 0)
            ::close(descriptor);
    }
};

bool isToken(const QByteArray& text) {
    if (text.size() < Shortest || text.size() > MaxLength)
        return false;
    for (const char c : text) {
        if (c <= ' ' || c > '~')
            return false;
    }
    return true;
}

} // namespace

QByteArray TokenFile::read(const QString& file, QString* error) {
    const auto fail = [&](const QString& reason) {
        *error = QStringLiteral("the token file %1 %2").arg(file, reason);
        return QByteArray();
    };
    // Not blocking: a pipe under this name must not stop the device.
    const Opened opened{
        ::open(QFile::encodeName(file).constData(), O_RDONLY | O_NONBLOCK | O_CLOEXEC)};
    if (opened.descriptor < 0)
        return fail(
            QStringLiteral("cannot be read: %1").arg(QString::fromLocal8Bit(std::strerror(errno))));
    struct stat about {};
    if (::fstat(opened.descriptor, &about) != 0 || !S_ISREG(about.st_mode))
        return fail(QStringLiteral("is no regular file"));
    if (about.st_uid != ::geteuid() && about.st_uid != 0)
        return fail(QStringLiteral("belongs to another user"));
    if (about.st_mode & OthersMayRead)
        return fail(QStringLiteral("is open to others than its owner: chmod 600 it"));
    char bytes[MaxLength + 16];
    const ssize_t count = ::read(opened.descriptor, bytes, sizeof bytes);
    const QByteArray text = QByteArray(bytes, int(qMax<ssize_t>(count, 0))).trimmed();
    if (!isToken(text))
        return fail(QStringLiteral("must hold one line of %1 to %2 printable characters without"
                                   " blanks")
                        .arg(Shortest)
                        .arg(MaxLength));
    return text;
}
