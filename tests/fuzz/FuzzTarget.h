#pragma once

#include <QByteArray>
#include <QString>
#include <QVector>

// One place where bytes from outside come in: its name, which is also that of its folders of
// inputs, and what is done with one input. Whatever the input, `run` returns; a broken promise ends
// the process, so that both libFuzzer and the replay report the input.
struct FuzzTarget {
    const char* name;
    void (*run)(const QByteArray& input);

    static const QVector<FuzzTarget>& all();
};

namespace Fuzz {

void gateway(const QByteArray& input); // with small limits of size
void gatewayWithDefaultLimits(const QByteArray& input);
void path(const QByteArray& input);
void roles(const QByteArray& input);
void numbers(const QByteArray& input);
void commands(const QByteArray& input);
void lists(const QByteArray& input);

// Ends the process with the reason when a promise does not hold.
void require(bool holds, const QString& reason);

} // namespace Fuzz
