#include "DeniedAction.h"

#include <cstring>
#include <sqlite3.h>

namespace {

// SQLite hands a new connection nothing of ours.
constexpr int NoAction = -1;
int deniedAction = NoAction;
const char* deniedObject = nullptr;

} // namespace

DeniedAction::DeniedAction(int action, const char* object) {
    deniedAction = action;
    deniedObject = object;
    sqlite3_auto_extension(reinterpret_cast<void (*)()>(&DeniedAction::onOpen));
}

DeniedAction::~DeniedAction() {
    deniedAction = NoAction;
    sqlite3_cancel_auto_extension(reinterpret_cast<void (*)()>(&DeniedAction::onOpen));
}

int DeniedAction::onOpen(sqlite3* connection, char** /*error*/,
                         const sqlite3_api_routines* /*routines*/) {
    return sqlite3_set_authorizer(connection, &DeniedAction::onAction, nullptr);
}

int DeniedAction::onAction(void* /*none*/, int action, const char* object, const char* /*detail*/,
                           const char* /*database*/, const char* /*trigger*/) {
    const bool denied = action == deniedAction &&
                        (!deniedObject || (object && std::strcmp(object, deniedObject) == 0));
    return denied ? SQLITE_DENY : SQLITE_OK;
}
