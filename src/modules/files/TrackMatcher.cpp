#include "TrackMatcher.h"

#include <algorithm>
#include <cstdlib>

#include <QDir>

#include "MusicRoles.h"

namespace {

constexpr qint64 DurationToleranceMs = 2000;
// Deeper folders add nothing to what tells two files apart.
constexpr int MaxEndingParts = 16;

// Programs and file systems disagree about how an accented letter is composed.
QString composed(const QString& text) {
    return text.normalized(QString::NormalizationForm_C);
}

QString withoutCase(const QString& text) {
    return composed(text).toCaseFolded();
}

QString titleKey(const QString& artist, const QString& title) {
    const QString both = artist.isEmpty() ? title : artist + QStringLiteral(" - ") + title;
    return withoutCase(both).simplified();
}

// The name below the music folder.
QString fileOf(const LibraryTrack& each) {
    const int inRoot = MusicTree::rootPath().splitBase().size();
    QStringList parts = each.folder->path.splitBase().mid(inRoot);
    parts.append(each.track->name);
    return parts.join(QLatin1Char('/'));
}

// "a/b/c" gives "c", "c/b", "c/b/a".
QStringList endings(const QString& file) {
    QStringList all;
    const QStringList parts = withoutCase(file).split(QLatin1Char('/'), Qt::SkipEmptyParts);
    for (auto part = parts.crbegin(); part != parts.crend() && all.size() < MaxEndingParts; ++part)
        all.append(all.isEmpty() ? *part : all.last() + QLatin1Char('/') + *part);
    return all;
}

} // namespace

TrackMatcher::TrackMatcher(const LibraryPtr& library, const QString& musicFolder)
    : m_library(library),
      m_musicFolder(musicFolder.endsWith(QLatin1Char('/')) ? musicFolder
                                                           : musicFolder + QLatin1Char('/')) {
    for (quint32 track = 0; track < m_library->tracksCount(); ++track) {
        const LibraryTrack& each = m_library->track(track);
        const QString file = fileOf(each);
        m_files.insert(composed(file), track);
        for (const QString& ending : endings(file)) {
            Ending& entry = m_endings[ending];
            ++entry.count;
            entry.track = track;
        }
        const TrackTags& tags = *each.track->tags;
        const QString title = MusicRoles::title(*each.track);
        const QString key = titleKey(tags.artist, title);
        m_titles[key].push_back(track);
        if (!tags.albumArtist.isEmpty() && titleKey(tags.albumArtist, title) != key)
            m_titles[titleKey(tags.albumArtist, title)].push_back(track);
    }
}

QString TrackMatcher::relative(const QString& file) const {
    const QString clean = QDir::cleanPath(file);
    return clean.startsWith(m_musicFolder) ? clean.mid(m_musicFolder.size()) : clean;
}

std::optional<quint32> TrackMatcher::find(const TrackHint& hint) const {
    for (const QString& file : hint.files) {
        const auto found = m_files.constFind(composed(relative(file)));
        if (found != m_files.constEnd())
            return *found;
    }
    for (const QString& file : hint.files) {
        if (const auto found = byEnding(relative(file), hint.durationMs))
            return found;
    }
    return byTitle(hint);
}

std::optional<quint32> TrackMatcher::byEnding(const QString& file, qint64 durationMs) const {
    const QStringList all = endings(file);
    for (int parts = all.size(); parts > 0; --parts) {
        const auto found = m_endings.constFind(all.at(parts - 1));
        if (found == m_endings.constEnd())
            continue;
        const bool fits = found->count == 1 && (parts > 1 || mayLast(found->track, durationMs));
        return fits ? std::optional(found->track) : std::nullopt;
    }
    return std::nullopt;
}

std::optional<quint32> TrackMatcher::byTitle(const TrackHint& hint) const {
    if (hint.title.isEmpty())
        return std::nullopt;
    std::vector<quint32> found = m_titles.value(titleKey(hint.artist, hint.title));
    const auto keep = [&found](const auto& condition) {
        found.erase(std::remove_if(found.begin(), found.end(),
                                   [&condition](quint32 track) { return !condition(track); }),
                    found.end());
    };
    keep([&](quint32 track) { return mayLast(track, hint.durationMs); });
    const QString album = withoutCase(hint.album).simplified();
    const auto isOfAlbum = [&](quint32 track) {
        return withoutCase(m_library->track(track).track->tags->album).simplified() == album;
    };
    if (!album.isEmpty() && std::any_of(found.begin(), found.end(), isOfAlbum))
        keep(isOfAlbum);
    if (found.empty() || (hint.durationMs <= 0 && found.size() > 1))
        return std::nullopt;
    return *std::min_element(found.begin(), found.end(), [&](quint32 a, quint32 b) {
        return std::llabs(durationOf(a) - hint.durationMs) <
               std::llabs(durationOf(b) - hint.durationMs);
    });
}

qint64 TrackMatcher::durationOf(quint32 track) const {
    return m_library->track(track).track->tags->durationMs;
}

bool TrackMatcher::mayLast(quint32 track, qint64 durationMs) const {
    const qint64 own = durationOf(track);
    return own <= 0 || durationMs <= 0 || std::llabs(own - durationMs) <= DurationToleranceMs;
}
