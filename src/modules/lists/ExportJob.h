#pragma once

#include <QObject>
#include <QThreadPool>

#include "CMRequest.h"
#include "ListFormats.h"
#include "TrackAddress.h"
#include "TrackList.h"

// Answers one `lists:export`: reads the playlist in parts, so that other requests get their turns,
// and writes the file in a thread. A playlist that changes meanwhile is an error: the file would be
// of no moment. Owned by the worker, on the event loop's thread; deletes itself when it has
// answered.
class ExportJob : public QObject {
    Q_OBJECT
public:
    ExportJob(const CMSetDataRequest& request, QThreadPool* pool, QObject* parent);

    void start();

private:
    bool readArguments();
    void findName();
    void nextPart();
    void takeRows(const OrvoRowsRoles& rows);
    void write();
    void answer(const QByteArray& bytes, const QString& name, int count);
    void fail(const CMError& error);

    CMSetDataRequest m_request;
    QThreadPool* m_pool;
    int m_plid = -1;
    const ListFormat* m_format = nullptr;
    TrackAddress::Paths m_paths = TrackAddress::Paths::Relative;
    QString m_musicFolder;
    TrackList m_list;
    qint64 m_revision = -1; // of the first part
};
