// The expansion of references. One pass runs over the text from left to right and writes a new one; a
// reference that holds a "$" asks for a further pass over the result. A macro's text is not looked at again
// on its own account.
//
// Endless expansion is impossible: a pass that changes nothing is the last, and all passes together may write
// no more than `expansionBudget` characters. When that is used up, the text before the pass is the answer.

#include "macros/MacroSystem.h"

#include <QDateTime>
#include <QLocale>
#include <algorithm>
#include <vector>

namespace {

constexpr qsizetype expansionBudget = 4 << 20;
/// What a pass takes from the budget beyond the characters that it writes, so that short cycles end soon.
constexpr qsizetype passCost = 16 << 10;

/// Where the next "$(" begins, or -1. A search for the "$" alone is several times as fast as one for both.
qsizetype nextReference(const QString& text, qsizetype from) {
    qsizetype at = text.indexOf(u'$', from);
    while (at >= 0 && (at + 1 == text.size() || text[at + 1] != u'('))
        at = text.indexOf(u'$', at + 1);
    return at;
}

/// One pass over one text.
class Pass {
public:
    Pass(const MacroScope& macros, const QString& text, qsizetype budget)
        : m_macros(macros), m_text(text), m_budget(budget) {}

    /// False if the result would exceed the budget.
    bool run();
    QString result;
    bool again = false;

private:
    qsizetype closingOf(qsizetype open);
    void matchAll();
    void expandReference(qsizetype start, qsizetype close);
    QStringView piece(qsizetype from, qsizetype to) const { return QStringView(m_text).mid(from, to - from); }

    const MacroScope& m_macros;
    const QString& m_text;
    const qsizetype m_budget;
    std::vector<qsizetype> m_closing; ///< for each "(" its ")", or -1; empty until a reference lacks its end
};

bool Pass::run() {
    result.reserve(m_text.size());
    qsizetype at = 0;
    for (;;) {
        const qsizetype start = nextReference(m_text, at);
        result += piece(at, start < 0 ? m_text.size() : start);
        if (start < 0)
            return result.size() <= m_budget;
        const qsizetype close = closingOf(start + 1);
        if (close < 0) { // unterminated: the "$" is lost, the rest is ordinary text
            again |= m_text.lastIndexOf(u'$') > start;
            result += u'(';
            at = start + 2;
        } else {
            expandReference(start, close);
            at = close + 1;
        }
        if (result.size() > m_budget)
            return false;
    }
}

/// The ")" that ends what the "(" at `open` begins, or -1. The first that is missing costs a look at the
/// whole rest, so all of them are matched then.
qsizetype Pass::closingOf(qsizetype open) {
    if (!m_closing.empty())
        return m_closing[static_cast<size_t>(open)];
    qsizetype depth = 1;
    for (qsizetype i = open + 1; i < m_text.size(); ++i) {
        if (m_text[i] == u'(')
            ++depth;
        else if (m_text[i] == u')' && --depth == 0)
            return i;
    }
    matchAll();
    return -1;
}

void Pass::matchAll() {
    m_closing.assign(static_cast<size_t>(m_text.size()), -1);
    std::vector<qsizetype> open;
    for (qsizetype i = 0; i < m_text.size(); ++i) {
        if (m_text[i] == u'(') {
            open.push_back(i);
        } else if (m_text[i] == u')' && !open.empty()) {
            m_closing[static_cast<size_t>(open.back())] = i;
            open.pop_back();
        }
    }
}

void Pass::expandReference(qsizetype start, qsizetype close) {
    const QStringView body = piece(start + 2, close);
    again |= std::find(body.begin(), body.end(), u'$') != body.end();
    QStringView name = body;
    QStringView fallback = piece(start, close + 1);
    if (const auto colon = std::find(body.begin(), body.end(), u':'); colon != body.end()) {
        name = body.left(colon - body.begin());
        fallback = body.mid(name.size() + 1);
        const bool isFinal = fallback.startsWith(u':');
        if (isFinal)
            fallback = fallback.mid(1);
        again &= !isFinal;
    }
    const auto value = m_macros.value(QString::fromRawData(name.data(), name.size()));
    if (!value)
        result += fallback;
    else if (QString dynamic; MacroSystem::dynamicMacro(name, dynamic))
        result += dynamic;
    else
        result += *value;
}

struct DynamicMacro {
    QLatin1String name;
    QLatin1String format;
};

constexpr DynamicMacro dynamicMacros[] = {
    {QLatin1String("Date"), QLatin1String("d MMMM yyyy")}, {QLatin1String("DateYear"), QLatin1String("yyyy")},
    {QLatin1String("DateMonth"), QLatin1String("MM")},     {QLatin1String("DateDay"), QLatin1String("dd")},
    {QLatin1String("Time"), QLatin1String("hh:mm:ss")},    {QLatin1String("TimeHour"), QLatin1String("hh")},
    {QLatin1String("TimeMinute"), QLatin1String("mm")},    {QLatin1String("TimeSecond"), QLatin1String("ss")},
};

} // namespace

bool MacroSystem::dynamicMacro(QStringView name, QString& text) {
    for (const DynamicMacro& macro : dynamicMacros) {
        if (name == macro.name) {
            text = QLocale::c().toString(QDateTime::currentDateTime(), macro.format);
            return true;
        }
    }
    return false;
}

QString MacroSystem::replaceMacros(const MacroScope& macros, const QString& text) {
    return nextReference(text, 0) < 0 ? text : replaceMacros2(macros, text);
}

QString MacroSystem::replaceMacros(const MacroMap& macros, const QString& text) {
    return replaceMacros(MapScope(macros), text);
}

QString MacroSystem::replaceMacros2(const MacroScope& macros, QString text) {
    qsizetype budget = qMax(expansionBudget, 4 * text.size());
    for (;;) {
        Pass pass(macros, text, budget);
        if (!pass.run())
            return text;
        if (!pass.again || pass.result == text)
            return pass.result;
        budget -= pass.result.size() + passCost;
        text = std::move(pass.result);
    }
}
