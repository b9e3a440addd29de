#include "MenuNode.h"

#include <QPointer>

#include "../PlayListBase.h"
#include "../PlayListManager.h"
#include "CMRootWorker.h"
#include "OrvoPlayListCommands.h"

CMPath MenuNode::pathWith(CMPath path, const Params& params) {
    for (const auto& param : params)
        path.addParam(param.first, param.second);
    return path;
}

CMPath MenuNode::entryPath(const CMGetRowsRequest& request, const QString& action,
                           const Params& params) const {
    CMPath result = path();
    result.setParams(request.path().params());
    result.addParam(Action(), action);
    return pathWith(result, params);
}

OrvoRoles MenuNode::actionRow(const TrString& title, const CMPath& path) {
    OrvoRoles row;
    row.setTitle(title);
    row.setPath(path);
    row.setType(OrvoRolesType::Action);
    return row;
}

OrvoRoles MenuNode::editRow(const TrString& title, const CMPath& path, const OrvoValue& value) {
    OrvoRoles row;
    row.setTitle(title);
    row.setPath(path);
    row.setType(OrvoRolesType::Editable);
    row.setValue(value);
    row.setModifiable(true);
    return row;
}

OrvoRoles MenuNode::menuRow(const TrString& title, const CMPath& path) {
    return contextMenu(title, path);
}

OrvoRoles MenuNode::separatorRow() {
    OrvoRoles row;
    row.setType(OrvoRolesType::Separator);
    return row;
}

void MenuNode::sendMenu(const QList<OrvoRoles>& entries, const TrString& title,
                        const CMGetRowsRequest& request) {
    QVariantList rows;
    rows.reserve(entries.size());
    for (const OrvoRoles& entry : entries)
        rows.append(QVariant(CMGlobal::itemRolesToList(request.roleNames(), entry)));
    sendRowsReply(rows, rows.count(), title,
                  createRolesFromPath(request.path(), request.roleNames()), request, true);
}

int MenuNode::numberParam(const CMSetDataRequest& request, const QString& name) {
    return toInt(request.path().param(name), -1);
}

bool MenuNode::isMadeForItem(const CMPath& path, int uid) const {
    const QMap<QString, QString>& params = path.params();
    if (!params.contains(Revision()))
        return true;
    bool isNumber = false;
    const qint64 revision = params.value(Revision()).toLongLong(&isNumber);
    return isNumber && manager()->isItemOf(revision, uid);
}

bool MenuNode::isMadeForTarget(const CMPath& path, const PlayListBase* target) {
    const QMap<QString, QString>& params = path.params();
    return !params.contains(TargetRevision()) ||
           params.value(TargetRevision()) == QString::number(target->getFirstRevision());
}

void MenuNode::refuse(const CMSetDataRequest& request, const TrString& message) {
    request.reply().setError(CMError(CMError::Conflict(), message, CMError::DefaultTitle()));
}

OrvoHash MenuNode::playListOnly(const CMSetDataRequest& request) {
    OrvoPlayListPlId args;
    args.setPlid(numberParam(request, Plid()));
    return args;
}

const MenuNode::MenuAction* MenuNode::findAction(const CMSetDataRequest& request) const {
    const QString name = request.path().param(Action());
    for (const MenuAction& action : actions()) {
        if (name == QLatin1String(action.name))
            return &action;
    }
    return nullptr;
}

bool MenuNode::setDataRequest(const CMSetDataRequest& request) {
    const MenuAction* action = findAction(request);
    if (action)
        sendCommand(action->command(), action->arguments(request), request);
    return action != nullptr;
}

QString MenuNode::stringValue(const CMSetDataRequest& request) {
    return OrvoValue(request.value().toHash()).string();
}

void MenuNode::sendCommand(const CMPath& command, const OrvoHash& args,
                           const CMSetDataRequest& request) {
    const QPointer<MenuNode> self(this);
    const auto finished = [self, request](const CMReply<QVariant>& reply) {
        if (self)
            self->watchReplyFinished(reply, request);
        else if (reply.isError())
            request.reply().setError(reply.error());
        else
            request.reply().setValue(reply.value());
    };
    // The callbacks hand on copies of the outcome: holding the reply itself here would keep it
    // alive for ever.
    const CMReply<QVariant> reply;
    reply.onSuccess([finished](const QVariant& value) {
        const CMReply<QVariant> outcome;
        outcome.setValue(value);
        finished(outcome);
    });
    reply.onError([finished](const CMError& error) {
        const CMReply<QVariant> outcome;
        outcome.setError(error);
        finished(outcome);
    });
    CMRoot()->invoke(command, args.toVariant(), reply);
}

void MenuNode::watchReplyFinished(const CMReply<QVariant>& reply, CMSetDataRequest request) {
    if (reply.isError()) {
        request.reply().setError(reply.error());
        return;
    }
    const MenuAction* action = findAction(request);
    if (action && action->after == Menu::StaysOpen) {
        request.reply().setValue(reply.value());
        return;
    }
    OrvoActionReply answer(reply.value().toHash());
    QList<OrvoEvent> events = answer.events();
    events.append(genClosePathEvent());
    answer.setEvents(events);
    request.reply().setValue(answer.toVariant());
}
