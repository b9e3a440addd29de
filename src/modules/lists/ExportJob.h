#pragma once

#include "ListFormats.h"
#include "ListJob.h"
#include "TrackAddress.h"
#include "TrackList.h"

// Answers one `lists:export`: reads the playlist in parts, so that other requests get their turns,
// and writes the file in a thread. A playlist that changes meanwhile is an error: the file would be
// of no moment.
class ExportJob : public ListJob {
    Q_OBJECT
public:
    using ListJob::ListJob;

    void start() override;

private:
    bool readArguments();
    void findName();
    void takeName(const OrvoRowsRoles& lists);
    void nextPart();
    void takeRows(const OrvoRowsRoles& rows);
    void write();
    void answer(const QByteArray& bytes, const QString& name, int count);
    void fail(const CMError& error) override;

    int m_plid = -1;
    const ListFormat* m_format = nullptr;
    TrackAddress::Paths m_paths = TrackAddress::Paths::Relative;
    QString m_musicFolder;
    TrackList m_list;
    qint64 m_revision = -1; // of the first part
};
