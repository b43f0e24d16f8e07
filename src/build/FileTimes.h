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
    /// `path` is where it lies, for callers who have that already.
    std::optional<qint64> modified(const QString& directory, std::string_view name,
                                   const QString& path = QString());
    void forget();

    /// `name` counted from `directory` unless it is absolute.
    static QString resolved(const QString& directory, const QString& name);

private:
    struct Hash {
        using is_transparent = void;
        size_t operator()(std::string_view name) const;
    };
    /// The times of names that all count from one directory.
    class Times {
    public:
        /// Null if the name was never asked for.
        const std::optional<qint64>* find(std::string_view name);
        const std::optional<qint64>& add(std::string_view name, std::optional<qint64> time);

    private:
        struct Known;
        using Map = std::unordered_map<std::string, Known, Hash, std::equal_to<>>;
        struct Known {
            std::optional<qint64> modified;
            Map::value_type* next = nullptr; ///< what was asked for behind it, the last time
        };

        const std::optional<qint64>& moveTo(Map::value_type& entry);

        Map m_map;
        Map::value_type* m_last = nullptr; ///< what was asked for last
    };

    Times m_absolute;
    Times m_relative; ///< by the name as it is written, counted from m_directory
    QString m_directory;
};
