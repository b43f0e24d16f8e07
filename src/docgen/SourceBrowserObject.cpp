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

void SourceBrowserMethod::setName(const QString& name) {
    SourceBrowserObject::setName(name);
    m_asString = QString();
}

void SourceBrowserMethod::addArgument(SourceBrowserArgument argument) {
    m_arguments.push_back(std::move(argument));
    m_asString = QString();
}

QString SourceBrowserMethod::asString() const {
    if (m_asString.isNull()) {
        m_asString = name() + u" (";
        for (const SourceBrowserArgument& argument : m_arguments) {
            if (&argument != &m_arguments.front())
                m_asString += u", ";
            m_asString += argument.toString();
        }
        m_asString += u')';
    }
    return m_asString;
}

bool SourceBrowserMethod::isEqual(const SourceBrowserObject& other) const {
    const auto* method = dynamic_cast<const SourceBrowserMethod*>(&other);
    return method && SourceBrowserVariable::isEqual(other) &&
           std::equal(m_arguments.begin(), m_arguments.end(), method->m_arguments.begin(),
                      method->m_arguments.end(),
                      [](const auto& a, const auto& b) { return a.type == b.type; });
}
