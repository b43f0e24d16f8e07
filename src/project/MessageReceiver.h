#pragma once

#include <QString>

/// Takes lines for the user; who builds something is one.
class MessageReceiver {
public:
    virtual ~MessageReceiver() = default;
    virtual void message(const QString& text) = 0;
};
