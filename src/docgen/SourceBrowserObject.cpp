#include "docgen/SourceBrowserObject.h"

#include <algorithm>

void SourceBrowserObject::setName(const QString& name) {
    m_name = name;
    m_path = QString();
}

void SourceBrowserObject::setScope(const QString& scope) {
    m_scope = scope;
    m_path = QString();
}

const QString& SourceBrowserObject::path() const {
    if (m_path.isNull())
        m_path = m_scope.isEmpty() ? m_name : m_scope + u'.' + m_name;
    return m_path;
}

bool SourceBrowserVariable::isEqual(const SourceBrowserObject& other) const {
    return dynamic_cast<const SourceBrowserVariable*>(&other) && other.name() == name();
}

QString SourceBrowserArgument::toString() const {
    const bool isInside = namePos >= 0 && namePos < type.size();
    QString text = isInside ? type.left(namePos) : type + u' ';
    if (text.endsWith(u"* ") || text.endsWith(u"& "))
        text.chop(1);
    text += name;
    if (isInside)
        text += type.mid(namePos);
    return text.simplified();
}

QString SourceBrowserMethod::asString() const {
    QString text = name() + u" (";
    for (const SourceBrowserArgument& argument : m_arguments) {
        if (&argument != &m_arguments.front())
            text += u", ";
        text += argument.toString();
    }
    return text + u')';
}

bool SourceBrowserMethod::isEqual(const SourceBrowserObject& other) const {
    const auto* method = dynamic_cast<const SourceBrowserMethod*>(&other);
    return method && SourceBrowserVariable::isEqual(other) &&
           std::equal(m_arguments.begin(), m_arguments.end(), method->m_arguments.begin(),
                      method->m_arguments.end(),
                      [](const auto& a, const auto& b) { return a.type == b.type; });
}
