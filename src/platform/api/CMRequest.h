#pragma once

#include <limits>
#include <optional>

#include "CMPath.h"
#include "CMReply.h"
#include "OrvoRoles.h"

// What reaches a module: a path, what is wanted of it, and the reply to complete. Copies share the
// reply.
template <typename Result>
class CMRequest {
public:
    explicit CMRequest(const CMPath& path) : m_path(path) {}
    CMRequest(const CMPath& path, const CMReply<Result>& reply) : m_path(path), m_reply(reply) {}

    const CMPath& path() const { return m_path; }
    bool hasReply() const { return m_reply.has_value(); }
    // A request that must be answered and has no reply is a programming error: fatal.
    const CMReply<Result>& reply() const;

private:
    CMPath m_path;
    std::optional<CMReply<Result>> m_reply;
};

// Set-data: run the command, or act on the node, at the path. The value is usually a hash.
class ORVO_API_EXPORT CMSetDataRequest : public CMRequest<QVariant> {
public:
    CMSetDataRequest(const CMPath& path, const QVariant& value) : CMRequest(path), m_value(value) {}
    CMSetDataRequest(const CMPath& path, const QVariant& value, const CMReply<QVariant>& reply)
        : CMRequest(path, reply), m_value(value) {}

    const QVariant& value() const { return m_value; }

private:
    QVariant m_value;
};
Q_DECLARE_METATYPE(CMSetDataRequest*)

// Get-rows: the rows from `fromRow` to `toRow`, both included, counted from 0; by default all of
// them.
class ORVO_API_EXPORT CMGetRowsRequest : public CMRequest<OrvoRowsRoles> {
public:
    static constexpr int LastRow = std::numeric_limits<int>::max();

    CMGetRowsRequest(const CMPath& path, int fromRow, int toRow, const QStringList& roleNames,
                     const CMReplyData<OrvoRowsRoles>& reply)
        : CMRequest(path, reply), m_fromRow(fromRow), m_toRow(toRow), m_roleNames(roleNames) {}

    int fromRow() const { return m_fromRow; }
    int toRow() const { return m_toRow; }
    const QStringList& roleNames() const { return m_roleNames; }

private:
    int m_fromRow = 0;
    int m_toRow = LastRow;
    QStringList m_roleNames;
};

// Get-data: the node's own roles.
class ORVO_API_EXPORT CMGetDataRequest : public CMRequest<OrvoRoles> {
public:
    CMGetDataRequest(const CMPath& path, const QStringList& roleNames,
                     const CMReplyData<OrvoRoles>& reply)
        : CMRequest(path, reply), m_roleNames(roleNames) {}

    const QStringList& roleNames() const { return m_roleNames; }

private:
    QStringList m_roleNames;
};

// Match-row: the first row at or after `fromRow` whose title contains the text, upper and lower
// case alike. The answer is its number, -1 when there is none.
class ORVO_API_EXPORT CMMatchRowRequest : public CMRequest<int> {
public:
    CMMatchRowRequest(const CMPath& path, const QString& text, int fromRow,
                      const CMReply<int>& reply)
        : CMRequest(path, reply), m_text(text), m_fromRow(fromRow) {}

    const QString& text() const { return m_text; }
    int fromRow() const { return m_fromRow; }

private:
    QString m_text;
    int m_fromRow = 0;
};

ORVO_API_EXPORT void cmAssertHasReply(bool hasReply, const CMPath& path);

template <typename Result>
const CMReply<Result>& CMRequest<Result>::reply() const {
    cmAssertHasReply(m_reply.has_value(), m_path);
    return *m_reply;
}
