#include "ListText.h"

#include <algorithm>

#include <QTextCodec>

#include "ListLimits.h"

namespace {

constexpr const char* FallbackEncoding = "windows-1252";

// Some editors of old end a file with this.
constexpr QChar EndOfFile(0x1a);

bool isOfNoText(QChar character) {
    return character < QLatin1Char(' ') && character != QLatin1Char('\t') &&
           character != QLatin1Char('\n') && character != QLatin1Char('\r') &&
           character != EndOfFile;
}

} // namespace

QString ListText::decoded(const QByteArray& bytes) {
    if (const QTextCodec* marked = QTextCodec::codecForUtfText(bytes, nullptr))
        return marked->toUnicode(bytes);
    QTextCodec::ConverterState state;
    const QString text =
        QTextCodec::codecForName("UTF-8")->toUnicode(bytes.constData(), bytes.size(), &state);
    if (state.invalidChars == 0 && state.remainingChars == 0)
        return text;
    return QTextCodec::codecForName(FallbackEncoding)->toUnicode(bytes);
}

TrString ListText::refusal(const QString& text) {
    constexpr int BytesPerMiB = 1024 * 1024;
    if (text.trimmed().isEmpty())
        return TrString("Lists", "The file is empty.");
    // A letter is a byte at least; what is much too large is not even counted.
    if (text.size() > ListLimits::MaxBytes || text.toUtf8().size() > ListLimits::MaxBytes)
        return TrString("Lists", "The file is larger than %1 MiB.",
                        {QString::number(ListLimits::MaxBytes / BytesPerMiB)});
    if (std::any_of(text.cbegin(), text.cend(), isOfNoText))
        return TrString("Lists", "This is not a playlist file.");
    return {};
}
