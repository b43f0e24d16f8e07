#pragma once

#include <QString>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>

/// When files were last modified: asked of the file system once each, and remembered until `forget`, which
/// whoever changes files calls. Times are whole seconds since the epoch.
class FileTimes {
public:
    /// Of a file whose name counts from `directory` unless it is absolute; nothing if there is no such file.
    std::optional<qint64> modified(const QString& directory, std::string_view name);
    void forget();

    /// `name` counted from `directory` unless it is absolute.
    static QString resolved(const QString& directory, const QString& name);

private:
    struct Hash {
        using is_transparent = void;
        size_t operator()(std::string_view name) const;
    };
    using Times = std::unordered_map<std::string, std::optional<qint64>, Hash, std::equal_to<>>;

    Times m_absolute;
    Times m_relative; ///< by the name as it is written, counted from m_directory
    QString m_directory;
};
