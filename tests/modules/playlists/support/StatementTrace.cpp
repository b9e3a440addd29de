#include "StatementTrace.h"

#include <sqlite3.h>

#include "StoreFixture.h"

StatementTrace::StatementTrace(Database& database, Hook hook)
    : m_connection(StoreProbe::connection(database)), m_hook(std::move(hook)) {
    sqlite3_trace_v2(m_connection, SQLITE_TRACE_STMT, &StatementTrace::onStatement, this);
}

StatementTrace::~StatementTrace() {
    sqlite3_trace_v2(m_connection, 0, nullptr, nullptr);
}

int StatementTrace::onStatement(unsigned /*event*/, void* self, void* statement, void* text) {
    auto* trace = static_cast<StatementTrace*>(self);
    const QString sql = QString::fromUtf8(static_cast<const char*>(text));
    // Triggers announce themselves as comments.
    if (sql.startsWith(QLatin1String("--")))
        return 0;
    trace->m_texts.append(sql);
    char* bound = sqlite3_expanded_sql(static_cast<sqlite3_stmt*>(statement));
    trace->m_boundTexts.append(QString::fromUtf8(bound));
    sqlite3_free(bound);
    if (!StoreProbe::foreignKeysOn(trace->m_connection))
        trace->m_withoutForeignKeys.append(sql);
    if (trace->m_hook)
        trace->m_hook(sql);
    return 0;
}
