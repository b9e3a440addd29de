#include "StoreWatch.h"

#include <cstring>
#include <sqlite3.h>

namespace {

// SQLite hands its hooks no argument of ours.
sqlite3* newest = nullptr;
int vacuumCount = 0;
bool watching = false;

int onStatement(unsigned, void*, void*, void* text) {
    if (std::strncmp(static_cast<const char*>(text), "VACUUM", 6) == 0)
        ++vacuumCount;
    return 0;
}

int onOpen(sqlite3* connection, char**, const sqlite3_api_routines*) {
    sqlite3_exec(connection, "PRAGMA synchronous=OFF;", nullptr, nullptr, nullptr);
    if (watching) {
        newest = connection;
        sqlite3_trace_v2(connection, SQLITE_TRACE_STMT, onStatement, nullptr);
    }
    return SQLITE_OK;
}

void (*const openHook)() = reinterpret_cast<void (*)()>(reinterpret_cast<void*>(onOpen));

} // namespace

StoreWatch::StoreWatch() {
    newest = nullptr;
    vacuumCount = 0;
    watching = true;
    sqlite3_auto_extension(openHook);
}

StoreWatch::~StoreWatch() {
    watching = false;
    sqlite3_cancel_auto_extension(openHook);
}

int StoreWatch::vacuums() const {
    return vacuumCount;
}

int StoreWatch::runsOf(const char* sql) const {
    int runs = 0;
    for (sqlite3_stmt* s = sqlite3_next_stmt(newest, nullptr); s;
         s = sqlite3_next_stmt(newest, s)) {
        if (qstrcmp(sql, sqlite3_sql(s)) == 0)
            runs += sqlite3_stmt_status(s, SQLITE_STMTSTATUS_RUN, 0);
    }
    return runs;
}

qint64 StoreWatch::takeSteps() {
    qint64 steps = 0;
    for (sqlite3_stmt* s = sqlite3_next_stmt(newest, nullptr); s; s = sqlite3_next_stmt(newest, s))
        steps += quint32(sqlite3_stmt_status(s, SQLITE_STMTSTATUS_VM_STEP, 1));
    return steps;
}

sqlite3* StoreWatch::openUnwatched(const QString& file) {
    sqlite3* connection = nullptr;
    watching = false;
    sqlite3_open(file.toUtf8().constData(), &connection);
    watching = true;
    return connection;
}
