#include "CMRootWorker.h"
#include "CommandSequence.h"
#include "FuzzTarget.h"

// A sequence of commands, one for every four bytes: a letter and three numbers, blanks left out.
void Fuzz::commands(const QByteArray& input) {
    constexpr int MostCommands = 200;
    QByteArray bytes;
    for (const char byte : input) {
        if (byte != '\n' && byte != ' ')
            bytes.append(byte);
    }
    const int limit = bytes.isEmpty() ? 0 : CommandSequence::limitOf(bytes.at(0));
    CommandSequence sequence(limit);
    for (int at = 1; at + 3 < bytes.size() && at < 4 * MostCommands; at += 4) {
        const auto number = [&](int which) { return int(uchar(bytes.at(at + which))) - '0'; };
        sequence.run(bytes.at(at), {number(1), number(2), number(3)});
    }
    sequence.finish();
}
