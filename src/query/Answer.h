#pragma once

#include <QJsonValue>
#include <QString>

/// What a command on a solution answers, in its two forms: lines for people, each with its end, and a value
/// for programs, an array or an object.
struct Answer {
    QString text;
    QJsonValue json;
};
