#include "driver/ToolOutput.h"

#include "foundation/Text.h"

#include <algorithm>
#include <cstring>

namespace {

/// Finds one character again and again, looking at each byte once.
class NextOf {
public:
    NextOf(std::string_view bytes, char character) : m_bytes(bytes), m_character(character) {}

    /// The first position from `start` on, which never goes back; that of the end if there is none.
    size_t from(size_t start) {
        if (!m_looked || m_position < start)
            m_position = std::min(m_bytes.find(m_character, start), m_bytes.size());
        m_looked = true;
        return m_position;
    }

private:
    std::string_view m_bytes;
    char m_character;
    bool m_looked = false;
    size_t m_position = 0;
};

} // namespace

QStringList linesOf(std::string_view bytes) {
    QStringList lines;
    NextOf newline(bytes, '\n');
    NextOf carriageReturn(bytes, '\r');
    size_t start = 0;
    while (start < bytes.size()) {
        const size_t end = std::min(newline.from(start), carriageReturn.from(start));
        const bool isEnded = end < bytes.size();
        if (!isEnded && end - start < 2)
            break;
        lines.append(end == start ? QString() : toText(bytes.substr(start, end - start)));
        start = end + (isEnded && bytes[end] == '\r' ? 2 : 1);
    }
    return lines;
}

// A newline is an end of line already, so only carriage returns and the end of the text change anything.
QByteArray consoleLinesOf(QByteArray bytes) {
    qsizetype from = bytes.indexOf('\r');
    qsizetype to = from;
    while (from >= 0 && from < bytes.size()) {
        bytes[to++] = '\n';
        from += 2; // the byte behind goes too
        if (from >= bytes.size())
            break;
        const qsizetype next = bytes.indexOf('\r', from);
        const qsizetype end = next < 0 ? bytes.size() : next;
        std::memmove(bytes.data() + to, bytes.constData() + from, static_cast<size_t>(end - from));
        to += end - from;
        from = end;
    }
    if (to >= 0)
        bytes.truncate(to);
    const qsizetype rest = bytes.size() - 1 - bytes.lastIndexOf('\n');
    if (rest == 1)
        bytes.chop(1);
    else if (rest > 1)
        bytes.append('\n');
    return bytes;
}
