#include "AudioOutput.h"

#include "DeviceOutput.h"
#include "NullOutput.h"
#include "WavOutput.h"

std::unique_ptr<AudioOutput> AudioOutput::make(const QString& sink, std::function<void()> failed,
                                               QString* error) {
    const QString wav = QStringLiteral("wav=");
    if (sink.isEmpty() || sink == QLatin1String("auto"))
        return std::make_unique<DeviceOutput>("autoaudiosink", std::move(failed));
    if (sink == QLatin1String("null"))
        return std::make_unique<NullOutput>();
    if (sink.startsWith(wav))
        return WavOutput::open(sink.mid(wav.size()), error);
    *error =
        QStringLiteral("there is no audio sink \"%1\", only auto, null and wav=FILE").arg(sink);
    return {};
}
