#include "Controller.h"

#include <variant>

#include "ControllerText.h"
#include "ModuleLog.h"
#include "OrvoPlayListCommands.h"
#include "OrvoPlayListPaths.h"
#include "OrvoRoles.h"
#include "PlayListBase.h"
#include "PlayListManager.h"
#include "TextBudget.h"

// One command: its path, and its handler, whose kind says how the request is answered.
struct Controller::Command {
    using Run = bool (Controller::*)(CMSetDataRequest, QString&); // setReply with its result
    using Create = bool (Controller::*)(CMSetDataRequest, QString&,
                                        int&);            // setReplyInt with the new id
    using Start = void (Controller::*)(CMSetDataRequest); // answers by itself
    CMPath (*path)();
    std::variant<Run, Create, Start> handler;
};

const QList<Controller::Command>& Controller::commands() {
    static const QList<Command> rows = {
        {OrvoPlayListPlPrepareItemsPath, &Controller::plPrepareItems},
        {OrvoPlayListPlPlayPath, &Controller::plPlay},
        {OrvoPlayListPlCreatePath, &Controller::plCreate},
        {OrvoPlayListPlClearPath, &Controller::plClearItems},
        {OrvoPlayListPlSetNamePath, &Controller::plSetName},
        {OrvoPlayListPlSetShufflePath, &Controller::plSetShuffle},
        {OrvoPlayListPlSetRepeatPath, &Controller::plSetRepeat},
        {OrvoPlayListPlDeletePath, &Controller::plDelete},
        {OrvoPlayListPlRemoveItemsPath, &Controller::plRemoveItems},
        {OrvoPlayListPlAddItemsPath, &Controller::plAddItems},
        {OrvoPlayListPlAddExternalItemsPath, &Controller::plAddExternalItems},
        {OrvoPlayListPlMoveItemspath, &Controller::plMoveItems},
        {OrvoPlayListClCreatePath, &Controller::clCreate},
        {OrvoPlayListClAddItemPath, &Controller::clAddItem},
        {OrvoPlayListClRemoveItemPath, &Controller::clRemoveItem},
        {OrvoPlayListClDeletePath, &Controller::clDelete},
        {OrvoPlayListPlSetOrderPath, &Controller::plSetOrder},
    };
    return rows;
}

Controller::Controller(PlayListWorker* worker, PlayListManager* manager,
                       const PlayListLimits& limits)
    : m_worker(worker), m_manager(manager), m_limits(limits) {}

bool Controller::handleSetData(const CMSetDataRequest& request) {
    CM_ENTER(moduleLog());
    LOG4CPLUS_TRACE(moduleLog(), "routing " << loggedText(request.path().toString())
                                            << ", value: " << loggedValue(request.value()));
    for (const Command& command : commands()) {
        if (request.path() != command.path())
            continue;
        QString msg;
        if (const auto* run = std::get_if<Command::Run>(&command.handler)) {
            const bool success = (this->**run)(request, msg);
            setReply(request, success, msg);
        } else if (const auto* create = std::get_if<Command::Create>(&command.handler)) {
            int id = -1;
            const bool success = (this->**create)(request, msg, id);
            setReplyInt(request, success, id, msg);
        } else {
            (this->*std::get<Command::Start>(command.handler))(request);
        }
        return true;
    }
    return false;
}

namespace {
void answer(const CMSetDataRequest& request, bool success, const OrvoValue& value,
            const QString& msg) {
    if (!success) {
        request.reply().setError(TrString(msg));
        return;
    }
    OrvoRoles roles;
    roles.setValue(value);
    OrvoActionReply reply;
    reply.setXclass(QStringLiteral("OrvoActionReply"));
    reply.setResult(roles);
    request.reply().setValue(reply.toVariant());
}
} // namespace

void Controller::setReply(const CMSetDataRequest& request, bool success, const QString& msg) {
    CM_ENTER_ARGS(moduleLog(), "res: " << success << " msg: " << loggedText(msg));
    answer(request, success, OrvoValue::fromBool(success), msg);
}

void Controller::setReplyInt(const CMSetDataRequest& request, bool success, int value,
                             const QString& msg) {
    CM_ENTER_ARGS(moduleLog(),
                  "res: " << success << " val: " << value << " msg: " << loggedText(msg));
    answer(request, success, OrvoValue::fromI32(value), msg);
}

QString Controller::buildErrMsg(const QString& a, const QString& b, const QString& c) {
    return c.isEmpty() ? QStringLiteral("%1 %2").arg(a).arg(b)
                       : QStringLiteral("%1 %2 (%3)").arg(a).arg(b).arg(c);
}

QString Controller::buildOkMsg(const QString& a, const QString& b, const QString& c) {
    return c.isEmpty() ? QStringLiteral("%1 (%2)").arg(a).arg(b)
                       : QStringLiteral("%1 %2 (%3)").arg(a).arg(b).arg(c);
}

bool Controller::refuse(const QString& logLine) {
    LOG4CPLUS_ERROR(moduleLog(), logLine);
    return false;
}

bool Controller::refuse(QString& msg, const QString& logLine, const QString& prefix,
                        const QString& reason, const QString& detail) {
    msg = buildErrMsg(prefix, reason, detail);
    return refuse(logLine);
}

PlayListBase* Controller::existingPlayList(int plid, const QString& prefix, QString& msg) {
    PlayListBase* pl = m_manager->getPlayListByUid(plid);
    if (!checkPlayList(pl, plid, prefix, msg))
        refuse(QStringLiteral("Playlist id: %1 doesn't exist").arg(plid));
    return pl;
}

bool Controller::checkNonemptyString(const QString& str, const QString& field,
                                     const QString& prefix, QString& msg) {
    if (!str.isEmpty())
        return true;
    msg =
        buildErrMsg(prefix, CONTROLLER_TEXT("Please provide a non-empty string as field."), field);
    return false;
}

bool Controller::checkNameLength(const QString& name, const QString& prefix, QString& msg) const {
    if (TextBudget::bytesOf(name) <= m_limits.maxNameBytes)
        return true;
    msg = buildErrMsg(prefix, CONTROLLER_TEXT("Name is too long."));
    return false;
}

bool Controller::checkPlayList(const PlayListBase* pl, const int& plid, const QString& prefix,
                               QString& msg) {
    if (pl)
        return true;
    return refuse(msg, QStringLiteral("There is no playlist with ID : %1").arg(plid), prefix,
                  CONTROLLER_TEXT("There is no playlist with this ID."), QString::number(plid));
}

bool Controller::checkPlayListId(const int& plid, const QString& prefix, QString& msg) {
    if (plid != -1)
        return true;
    return refuse(msg, QStringLiteral("Cannot find playlist with invalid ID : %1").arg(plid),
                  prefix, CONTROLLER_TEXT("Cannot find playlist with invalid ID."));
}

bool Controller::checkStored(bool stored, const int& plid, const QString& prefix, QString& msg) {
    if (stored)
        return true;
    return refuse(msg, QStringLiteral("The change could not be stored. playlist id: %1").arg(plid),
                  prefix, CONTROLLER_TEXT("The change could not be stored."));
}

bool Controller::checkRevision(const CMSetDataRequest& request, const PlayListBase* pl,
                               const QString& prefix, QString& msg) {
    const OrvoPlayListPlId args(request.value().toHash());
    if (!args.containsRevision())
        return true;
    const qint64 revision = args.revision();
    if (revision == pl->getRevision())
        return true;
    if (revision == OrvoRevision::Malformed)
        return refuse(msg, QStringLiteral("Invalid revision for playlist id: %1").arg(pl->getUid()),
                      prefix, CONTROLLER_TEXT("Invalid revision."), OrvoPlayListPlId::Revision());
    LOG4CPLUS_ERROR(moduleLog(), "Playlist id: " << pl->getUid() << " has revision "
                                                 << pl->getRevision() << " instead of "
                                                 << revision);
    msg = buildErrMsg(prefix, CONTROLLER_TEXT("The playlist has changed meanwhile."));
    request.reply().setError(CMError(CMError::Conflict(), TrString(msg), CMError::DefaultTitle()));
    return false;
}
