#pragma once

#include <QByteArray>
#include <QString>
#include <string_view>
#include <vector>

/// One entry of a container's directory, and the bytes from which its data come.
struct ArchiveChunk2 {
    QByteArray name;    ///< at most Archive2::nameSize bytes, none of them 0
    quint32 offset = 0; ///< where the data begin in `contents`
    quint32 size = 0;   ///< bytes
    quint8 flag = 0;
    quint32 time = 0; ///< of the file that the member was made from, seconds since 1970; 0 means unknown
    QString source;   ///< the file that `contents` are of, for messages
    std::string_view contents; ///< not owned

    /// The member's data; null if they do not lie within `contents`.
    std::string_view data() const;
};

/// The container inside a package: named files in one image. It works on bytes and knows nothing of the
/// compression around it, nor of files. All integers are little-endian.
///
///     offset  size  field
///     0       4     magic, 0x4152C3C8
///     4       4     count: signed number of members
///     8       count x 1040  the directory, an entry a member:
///                     0     1024  name, padded with zero bytes; a longer one is cut and has none
///                     1024  4     offset of the data from the start of the image
///                     1028  4     size of the data in bytes
///                     1032  1     flag, 1 in all that this system adds
///                     1033  3     padding
///                     1036  4     time of the file it was made from, seconds since 1970; 0 means unknown
///     ...           the data in the order of the directory, without padding
class Archive2 {
public:
    enum Result { Ok = 0, BadHeader = 1, ShortDirectory = 2, WriteFailed = 3 };

    static constexpr qsizetype headerSize = 8;
    static constexpr qsizetype entrySize = 1040;
    static constexpr qsizetype nameSize = 1024;
    /// The largest image that is read or written: every offset in it is positive, signed or not.
    static constexpr quint64 mostBytes = 0x7FFF'FFFF;

    /// Reads the directory of `image`, which must outlive this object, for its members' data stay there.
    /// `path` is what messages call it. With ShortDirectory the entries in front of the end are there.
    Result open(std::string_view image, const QString& path);

    /// Adds a member whose data are the `size` bytes at `offset` of `contents`, which must outlive this
    /// object. The name counts up to its first zero byte, and is cut if it is too long.
    void addMember(const QString& source, std::string_view contents, const QByteArray& name, quint32 offset,
                   quint32 size, quint8 flag, quint32 time);
    /// The first member of exactly that name, or null.
    const ArchiveChunk2* findMember(const QByteArray& name) const;
    const std::vector<ArchiveChunk2>& members() const { return m_chunks; }

    /// Puts the whole container together in `image`, which messages call `path`. With WriteFailed there is an
    /// error text and no image: data lie outside their source, or the image would be too large.
    Result write(const QString& path, QByteArray& image);
    /// The text of the last failure to write, with a line end.
    const QString& errorText() const { return m_errorText; }

    /// A name as the directory holds it.
    static QByteArray storedName(const QByteArray& name);

private:
    bool isWritable(const QString& path);

    std::vector<ArchiveChunk2> m_chunks;
    QString m_errorText;
};
