#pragma once

#include <QJsonValue>
#include <QString>

/// What a command of ostquery answers, in its two forms: lines for people, each with its end, and a value for
/// programs, an array or an object.
struct Answer {
    QString text;
    QJsonValue json;
};

/// The request can't be carried out: a text for the user.
struct QueryError {
    QString message;
};
