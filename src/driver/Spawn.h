#pragma once

#include <QByteArray>
#include <QStringList>

namespace QTx {

/// Runs a program with the words, the first of which names it and is searched for along PATH.
///
/// With both line lists the program's standard output and error stream are captured, and the lines put into
/// them; if either is null there is no capture. With `wait` the result is the program's exit status, as a
/// signed value of 8 bits, and -1 if it couldn't be started or a signal ended it; `startError` then takes the
/// system's error number if it couldn't be started, and 0 otherwise. Without `wait` a program that goes on
/// gives 0.
///
/// The program starts in `directory`, unless that is null or there is no such place. It inherits the
/// environment and the standard input. A signal that asks this process to end while a program is waited for
/// (see Interruption) goes to the program too, and the call returns when that has ended with all that it has
/// started.
///
/// What a program has written before it ends is captured whole; what is written later, by a process that it
/// has left behind, is not waited for. The two flags have no effect on this platform.
int spawnProcess(const QStringList& words, bool wait, const QString& directory, bool flag,
                 QStringList* outLines, QStringList* errLines, bool flag2, int* startError = nullptr);

/// What a program has written, byte for byte.
struct ToolStreams {
    QByteArray out;
    QByteArray err;
};

/// Runs a program to its end and captures its streams, like spawnProcess. Lines cost memory each, and a tool
/// may write millions; here they stay what they are.
int spawnProcess(const QStringList& words, const QString& directory, ToolStreams& streams, int& startError);

} // namespace QTx
