#include "ProgressBar.h"

#include <cstdio>
#include <unistd.h>

namespace {
constexpr int Cells = 30;

void write(const QString& text) {
    const QByteArray bytes = text.toUtf8();
    std::fwrite(bytes.constData(), 1, size_t(bytes.size()), stderr);
    std::fflush(stderr);
}
} // namespace

ProgressBar::ProgressBar(const QString& label)
    : m_label(label), m_visible(::isatty(STDERR_FILENO)) {}

ProgressBar::~ProgressBar() {
    if (m_shown)
        write(QStringLiteral("\r\033[K"));
}

void ProgressBar::show(int done, int total) {
    if (!m_visible)
        return;
    m_shown = true;
    write(QStringLiteral("\r\033[K") + line(m_label, done, total));
}

QString ProgressBar::line(const QString& label, int done, int total) {
    if (total <= 0)
        return QStringLiteral("%1 %2").arg(label).arg(done);
    const int filled = int(qint64(Cells) * qBound(0, done, total) / total);
    return QStringLiteral("%1 [%2%3] %4/%5")
        .arg(label, QString(filled, QLatin1Char('#')), QString(Cells - filled, QLatin1Char('.')))
        .arg(done)
        .arg(total);
}
