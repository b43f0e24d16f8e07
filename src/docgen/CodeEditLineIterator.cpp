#include "docgen/CodeEditLineIterator.h"

#include "foundation/Text.h"

#include <algorithm>

CodeEditLineIterator::CodeEditLineIterator(const QString& path) : m_file(files().read(path)) {
    start(m_file.view());
}

CodeEditLineIterator::CodeEditLineIterator(std::string_view bytes) { start(bytes); }

void CodeEditLineIterator::start(std::string_view bytes) {
    m_rest = bytes;
    if (m_rest.starts_with("\xEF\xBB\xBF"))
        m_rest.remove_prefix(3);
}

bool CodeEditLineIterator::getLine(std::string_view& line) {
    if (m_rest.empty())
        return false;
    const size_t end = m_rest.find('\n');
    line = m_rest.substr(0, end);
    m_rest.remove_prefix(end == std::string_view::npos ? m_rest.size() : end + 1);
    if (line.ends_with('\r'))
        line.remove_suffix(1);
    return true;
}

QString decodedSource(std::string_view bytes) {
    const QByteArray text = QByteArray::fromRawData(bytes.data(), static_cast<qsizetype>(bytes.size()));
    return text.isValidUtf8() ? QString::fromUtf8(text) : toText(bytes);
}
