// One pass over the text. When a character does not fit, the last "*" takes one character more; those before
// it never need to, so the time is at most the product of the two lengths.

#include "project/Wildcard.h"

namespace {

class Matcher {
public:
    Matcher(QStringView pattern, QStringView text, Qt::CaseSensitivity sensitivity)
        : m_pattern(pattern), m_text(text), m_sensitivity(sensitivity) {}

    bool run() {
        qsizetype star = -1; // behind the last "*"
        qsizetype taken = 0; // where the text behind it begins
        while (m_at < m_text.size()) {
            if (m_in < m_pattern.size() && m_pattern[m_in] == u'*') {
                star = ++m_in;
                taken = m_at;
            } else if (m_in < m_pattern.size() && step()) {
                ++m_at;
            } else if (star >= 0) {
                m_in = star;
                m_at = ++taken;
            } else {
                return false;
            }
        }
        while (m_in < m_pattern.size() && m_pattern[m_in] == u'*')
            ++m_in;
        return m_in == m_pattern.size();
    }

private:
    QChar folded(QChar c) const { return m_sensitivity == Qt::CaseSensitive ? c : c.toCaseFolded(); }

    /// Whether one element of the pattern fits the character; steps over the element if so.
    bool step() {
        if (m_pattern[m_in] == u'[')
            return stepSet();
        if (m_pattern[m_in] != u'?' && folded(m_pattern[m_in]) != folded(m_text[m_at]))
            return false;
        ++m_in;
        return true;
    }

    bool stepSet() {
        qsizetype from = m_in + 1;
        const bool outside = from < m_pattern.size() && m_pattern[from] == u'^';
        from += outside;
        const qsizetype close = m_pattern.indexOf(u']', from + 1); // a "]" in front is a member
        if (close < 0 || isMember(m_pattern.mid(from, close - from)) == outside)
            return false;
        m_in = close + 1;
        return true;
    }

    bool isMember(QStringView set) const {
        const QChar c = folded(m_text[m_at]);
        for (qsizetype i = 0; i < set.size(); ++i) {
            const bool isRange = i + 2 < set.size() && set[i + 1] == u'-';
            if (isRange ? folded(set[i]) <= c && c <= folded(set[i + 2]) : folded(set[i]) == c)
                return true;
            i += isRange ? 2 : 0;
        }
        return false;
    }

    QStringView m_pattern;
    QStringView m_text;
    Qt::CaseSensitivity m_sensitivity;
    qsizetype m_in = 0; ///< the place in the pattern
    qsizetype m_at = 0; ///< the place in the text
};

} // namespace

bool wildcardMatches(QStringView pattern, QStringView text, Qt::CaseSensitivity sensitivity) {
    return Matcher(pattern, text, sensitivity).run();
}
