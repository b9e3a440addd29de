#pragma once

#include <array>

#include "CMPath.h"
#include "PropertyModel.h"
#include "World.h"

// Commands to a fresh device beside a model of plain lists: after each one the answer, the store
// and what the device shows are what the model says, and the store is sound. Whatever is not, ends
// the process.
class CommandSequence {
public:
    using Numbers = std::array<int, 3>;

    // The first byte of an input: '0' is a store without a limit, '1' and so on have one.
    static int limitOf(char byte);

    explicit CommandSequence(int itemsLimit);
    // A command by its letter; a letter that none has does nothing.
    void run(char letter, const Numbers& numbers);
    // SQLite's own checks, a restart, and the comparison once more.
    void finish();

private:
    struct Command {
        char letter;
        void (CommandSequence::*run)(const Numbers& numbers);
    };
    static const QVector<Command>& commands();

    void create(const Numbers& numbers);
    void rename(const Numbers& numbers);
    void shuffle(const Numbers& numbers);
    void repeat(const Numbers& numbers);
    void remove(const Numbers& numbers);
    void clear(const Numbers& numbers);
    void removeItems(const Numbers& numbers);
    void moveItems(const Numbers& numbers);
    void addItems(const Numbers& numbers);
    void addPaths(const Numbers& numbers);
    void merge(const Numbers& numbers);
    void play(const Numbers& numbers);
    void createCollection(const Numbers& numbers);
    void removeCollection(const Numbers& numbers);
    void addMember(const Numbers& numbers);
    void removeMember(const Numbers& numbers);
    void restart(const Numbers& numbers);
    void vacuum(const Numbers& numbers);

    static QString name(int number);
    // `count` positions from `first` on, every other one backwards for an odd one; also some that
    // are not there.
    static QList<int> positions(int first, int count);
    static QVariantList asList(const QList<int>& numbers);
    QStringList freshTitles(int count);
    void expect(bool success, const CMPath& path, const QVariantHash& args);
    void compare(bool thorough);
    void compareRows();

    World& m_world;
    PropertyModel m_model;
    QString m_done; // for the message
    int m_titles = 0;
};
