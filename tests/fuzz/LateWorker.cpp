#include "LateWorker.h"

#include <utility>

#include "World.h"

void LateWorker::setDataRequest(const CMSetDataRequest& request) {
    if (m_late)
        m_kept.append(request);
    else
        answer(request);
}

void LateWorker::answerKept() {
    const QList<CMSetDataRequest> kept = std::exchange(m_kept, {});
    for (const CMSetDataRequest& request : kept) {
        const bool drops =
            request.value().toStringList().join(QLatin1Char(' ')).contains(QLatin1String("drop"));
        if (!drops)
            answer(request);
    }
}

// One item for each element of a list, so that it can be a media source; success for the rest.
void LateWorker::answer(const CMSetDataRequest& request) {
    QVariantList prepared;
    for (const QVariant& path : request.value().toList())
        prepared.append(World::item(path.toString()));
    request.reply().setValue(prepared);
}
