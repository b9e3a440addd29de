#include "TrackListNode.h"

namespace {

// What a text costs at least in an answer is one byte for each of its letters.
qint64 lettersOf(const QVariant& value) {
    qint64 letters = 0;
    switch (static_cast<QMetaType::Type>(value.userType())) {
    case QMetaType::QString:
        return static_cast<const QString*>(value.constData())->size();
    case QMetaType::QVariantList:
        for (const QVariant& element : *static_cast<const QVariantList*>(value.constData()))
            letters += lettersOf(element);
        return letters;
    case QMetaType::QVariantHash:
        for (const QVariant& member : *static_cast<const QVariantHash*>(value.constData()))
            letters += lettersOf(member);
        return letters;
    default:
        return 0;
    }
}

} // namespace

void TrackListNode::sendTracks(PlayListBase* pl, const TrString& title,
                               const CMGetRowsRequest& request) {
    const auto visitRows = [pl, &request](const PlayListBase::VisitRoles& visit) {
        pl->visitRoles(request.fromRow(), request.toRow(), visit);
    };
    sendTracks(pl, pl ? pl->getSize() : 0, visitRows, title, request);
}

void TrackListNode::sendTracks(PlayListBase* pl, int total, const VisitRows& visitRows,
                               const TrString& title, const CMGetRowsRequest& request) {
    QVariantList rows;
    OrvoRowsRoles reply;
    if (pl) {
        const int plid = pl->getUid();
        const QStringList names = request.roleNames();
        qint64 letters = 0;
        const auto addRow = [&](QVariantHash& roles, const QString& id, int sequenceNumber) {
            roles.insert(OrvoRoles::Context(), trackMenu(id, plid, sequenceNumber).toHash());
            rows.append(QVariant(CMGlobal::itemRolesToList(names, OrvoRoles(roles))));
            letters += lettersOf(rows.last());
            return letters <= MaxLetters;
        };
        visitRows(addRow);
        if (letters > MaxLetters) {
            request.reply().setError(CMError(QStringLiteral("AnswerTooLarge"),
                                             TrString("TrackListNode", "Ask for fewer rows."),
                                             TrString("TrackListNode", "Answer too large")));
            return;
        }
        reply.setRevision(pl->getRevision());
        const int last = pl->getLastSequenceNumber();
        reply.setLastPlayedIndex(last);
        if (last >= 0 && last < pl->getSize() && !pl->hasEnded())
            reply.setResumeIndex(last);
    }
    sendRowsReply(rows, total, title, createRolesFromPath(path(), request.roleNames()), request,
                  false, reply);
}
