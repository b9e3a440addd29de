#pragma once

#include <QStringList>

class Lists;
class Device;
struct Verb;

// What can stand at the end of a command line: verbs, their options, lists by their names, folders
// of the device and files here. A device that is not there has no lists and no folders.
class Completion {
public:
    Completion(Device* device, Lists* lists) : m_device(device), m_lists(lists) {}

    // `words`: those behind the program's name and its leading options; the last one is begun.
    QStringList candidates(const QStringList& words) const;

private:
    QStringList argumentsOf(const Verb& verb, const QStringList& words) const;
    QStringList ofKind(const QString& kind, const QString& begun) const;
    QStringList playlists() const;
    QStringList collections() const;
    QStringList paths(const QString& begun) const;
    QStringList folders(const QString& begun) const;
    static QStringList files(const QString& begun);

    Device* m_device;
    Lists* m_lists;
};
