#pragma once

#include <memory>

#include "ListJob.h"
#include "ListReader.h"
#include "OrvoPlayListItem.h"
#include "TrackPlace.h"

// Answers one `lists:import`: reads the file in a thread, has its tracks found by the files module
// and added to a new playlist, in parts, so that other requests get their turns. The playlist is
// made when the first track is found, and until the last one is in it its name says so, which is
// what a crash leaves. When the playlists module refuses anything, or has room for a part only, it
// is deleted again. That and every addition goes by the revision that the playlist had before, so
// that what another client did with it is not undone.
class ImportJob : public ListJob {
    Q_OBJECT
public:
    using ListJob::ListJob;

    void start() override;

private:
    struct Source {
        QString text;  // either this
        QString bytes; // or these, in base64
        QString suffix;
    };
    using ResultPtr = std::shared_ptr<const ListReader::Result>;

    // In the thread.
    static ListReader::Result read(const Source& source);

    void take(const ResultPtr& result);
    void nextPart();
    // One for each file of the part; empty where the files module found none.
    void takeItems(const QVariantList& found);
    void begin(const QList<OrvoPlayListItem>& items);
    void create(const QString& name, const std::function<void()>& then,
                const OnError& otherwise = {});
    void add(const QList<OrvoPlayListItem>& items);
    void readRevision(const std::function<void(const OrvoRowsRoles&)>& then);
    void later(void (ImportJob::*step)());
    // All that was found is added.
    void finish();
    void answer();
    // Lets go of everything but itself.
    void end();
    // Undoes what was done.
    void fail(const CMError& error) override;
    void refuse(const CMError& error);

    QString m_name; // as asked for
    QString m_fileName;
    QString m_base;
    ResultPtr m_file;
    std::size_t m_next = 0;           // the first entry of the part
    std::vector<TrackPlace> m_places; // where those of the part lead
    int m_plid = -1;
    int m_added = 0;
    int m_rowsCount = 0;
    qint64 m_revision = 0;
    QVariantList m_notFound;
};
