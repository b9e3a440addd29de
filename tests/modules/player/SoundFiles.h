#pragma once

#include <string>
#include <vector>

#include <QString>
#include <QTemporaryDir>

// Interleaved 16-bit stereo, as it is compared.
using Pcm = std::vector<qint16>;

struct WavFile {
    int rate = 0;
    int channels = 0;
    int bits = 0;
    qint64 declaredBytes = 0; // what the header says
    std::vector<char> data;   // what is there

    Pcm samples() const;
};

// Makes files to play, in a folder of its own that goes with this object.
class SoundFiles {
public:
    // Stereo, never silent, different for every seed; no two places in it look alike.
    static Pcm pcm(int frames, unsigned seed);
    // The whole of several pieces end to end.
    static Pcm joined(const std::vector<Pcm>& pieces);
    static WavFile readWav(const QString& fileName);

    QString fileName(const QString& name) const { return m_folder.filePath(name); }
    QString uri(const QString& name) const;

    // These return the new file's URI.
    QString wav(const QString& name, const Pcm& samples, int rate = 44100);
    QString flac(const QString& name, const Pcm& samples, int rate = 44100);
    QString ogg(const QString& name, const Pcm& samples, int rate = 44100);
    QString text(const QString& name, const QByteArray& content);

    // A file decoded on its own, by a plain pipeline.
    static std::vector<char> decoded(const QString& fileName, const std::string& caps);

private:
    QString encode(const QString& name, const Pcm& samples, int rate, const char* encoder);

    QTemporaryDir m_folder;
};
