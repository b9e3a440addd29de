#pragma once

struct sqlite3;
struct sqlite3_api_routines;

// What the connections that are opened while this lives may not do: one action of SQLite's
// authorizer, on `object` where it is given. They may again afterwards. One at a time.
class DeniedAction {
public:
    explicit DeniedAction(int action, const char* object = nullptr);
    ~DeniedAction();
    DeniedAction(const DeniedAction&) = delete;
    DeniedAction& operator=(const DeniedAction&) = delete;

private:
    static int onOpen(sqlite3* connection, char** error, const sqlite3_api_routines* routines);
    static int onAction(void* none, int action, const char* object, const char* detail,
                        const char* database, const char* trigger);
};
