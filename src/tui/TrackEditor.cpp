#include "TrackEditor.h"

#include <QJsonArray>

#include "AsyncApi.h"
#include "ListPlace.h"
#include "Names.h"

namespace {

QJsonObject recordOf(int plid, const QVector<int>& indices, qint64 revision) {
    QJsonArray items;
    for (const int index : indices)
        items.append(index);
    QJsonObject record{{QStringLiteral("plid"), plid}, {QStringLiteral("items"), items}};
    if (revision >= 0)
        record.insert(QStringLiteral("revision"), revision);
    return record;
}

} // namespace

QString TrackEditor::pathOf(const char* function) const {
    return m_paths.value(QLatin1String(function)).toString();
}

std::optional<int> TrackEditor::playlistAt(const QString& path) const {
    const QString list = path.section(QLatin1Char('?'), 0, 0);
    if (list == pathOf("OrvoPlayListPqGetItemsPath"))
        return Names::QueueId;
    const int plid = Names::idBelow(list, pathOf("OrvoPlayListPlGetItemsPath"));
    return plid < 0 ? std::nullopt : std::optional(plid);
}

std::optional<TrackEditor::Edit> TrackEditor::editOf(const ListPlace& place) {
    const auto plid = playlistAt(place.path());
    const QVector<int> indices = place.chosenIndices();
    if (!plid || indices.isEmpty()) {
        Q_EMIT refused(QStringLiteral("This is no track of a playlist; m opens its menu."));
        return std::nullopt;
    }
    if (place.chosenCount() > indices.size()) {
        Q_EMIT refused(QStringLiteral("Some chosen tracks are too far away; choose fewer."));
        return std::nullopt;
    }
    return Edit{*plid, indices};
}

void TrackEditor::add(ListPlace* place, int steps) {
    if (m_place != place) {
        m_waiting.clear();
        m_revisionBefore = -1;
    }
    m_place = place;
    if (steps != 0 && !m_waiting.isEmpty() && m_waiting.last() * steps > 0)
        m_waiting.last() += steps;
    else
        m_waiting.append(steps);
    goOn();
}

void TrackEditor::onRows(ListPlace* place) {
    if (m_place == place)
        goOn();
}

// News of the last edit may come behind its answer; the next one is for the list that it left.
bool TrackEditor::isSettled() const {
    const qint64 revision = m_place->store().revision();
    return !m_isBusy && !m_place->isSettling() && (revision < 0 || revision != m_revisionBefore);
}

void TrackEditor::goOn() {
    if (m_waiting.isEmpty() || !m_place || !isSettled())
        return;
    const int steps = m_waiting.takeFirst();
    const auto edit = editOf(*m_place);
    if (!edit) {
        m_waiting.clear();
        return;
    }
    QJsonObject record = recordOf(edit->plid, edit->indices, m_place->store().revision());
    if (steps == 0) {
        const int count = edit->indices.size();
        send("OrvoPlayListPlRemoveItemsPath", record,
             count == 1 ? QStringLiteral("1 track removed")
                        : QStringLiteral("%1 tracks removed").arg(count));
        return;
    }
    // Downwards the last one stands at the target afterwards, upwards the first one.
    const int from = steps > 0 ? edit->indices.last() : edit->indices.first();
    const int to = qBound(0, from + steps, m_place->store().count() - 1);
    if (to == from) {
        goOn();
        return;
    }
    record.insert(QStringLiteral("to"), to);
    send("OrvoPlayListPlMoveItemspath", record, {});
}

void TrackEditor::send(const char* function, const QJsonObject& record, const QString& said) {
    m_isBusy = true;
    m_revisionBefore = m_place->store().revision();
    m_api->post(
        pathOf(function), record,
        [self = QPointer<TrackEditor>(this), place = m_place, said](const ApiAnswer& answer) {
            if (!self)
                return;
            self->m_isBusy = false;
            if (!answer.error.isEmpty()) {
                self->m_waiting.clear();
                self->m_revisionBefore = -1;
                Q_EMIT self->refused(answer.error);
                return;
            }
            if (!said.isEmpty()) {
                // What was chosen is gone.
                if (place)
                    place->chooseNothing();
                Q_EMIT self->done(said);
            }
            self->goOn();
        });
}
