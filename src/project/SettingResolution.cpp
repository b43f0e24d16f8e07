// The value of a setting. Values are stated sparsely, in configurations of nodes at any level, and this is
// the order in which the places are asked, for the configuration "Debug" of a file:
//
//     the file     "Debug", the configurations that "Debug" inherits from, "Common"
//     its folder   the same three
//     ...          and so on, up to the outermost solution
//     the default
//
// The first place that states a single value decides. A list goes on and gathers every place's entries, the
// most specific first. Beware: "Common" of a file beats "Debug" of its folder, because a level is searched
// whole before the next; and a configuration that is inherited brings no inheritance of its own.

#include "project/ProjectSystem.h"

#include "macros/MacroSystem.h"
#include "macros/ReleaseConstants.h"
#include "project/MessageReceiver.h"
#include "project/NodeMacros.h"

#include <QVarLengthArray>
#include <algorithm>
#include <array>

namespace {

/// The symbol of a setting's name; null if no attribute has this name anywhere.
Symbol settingSymbol(Setting setting) {
    struct Known {
        Symbol symbol;
        size_t symbolCount = 0; ///< how many there were when it was looked for
    };
    static std::array<Known, settingCount> known;
    Known& entry = known[static_cast<size_t>(setting)];
    if (!entry.symbol && entry.symbolCount != Symbol::count())
        entry = {Symbol::find(propertyClass(setting).saveName()), Symbol::count()};
    return entry.symbol;
}

/// The configurations that one configuration inherits from, as seen from a node: the list of the nearest
/// solution that has one. The answer holds for all nodes up to that solution, so a walk from node to parent
/// finds it once in a while, not at every level.
class InheritedNames {
public:
    explicit InheritedNames(Symbol configuration) : m_configuration(configuration) {}

    /// To be asked of nodes in the order of a walk upwards, of each or of some.
    const std::vector<Symbol>& at(ProjectElement* element) {
        if (!m_known)
            find(element->nearest(ProjectElement::Solution));
        return *m_names;
    }
    /// To be told of every node that the walk leaves.
    void leave(const ProjectElement* element) { m_known = m_known && element != m_source; }

private:
    void find(const ProjectElement* element) {
        while (element && element->inherited(m_configuration).empty())
            element = element->parent();
        m_source = element;
        m_known = true;
        m_names = element ? &element->inherited(m_configuration) : &none;
    }

    static const std::vector<Symbol> none;

    const Symbol m_configuration;
    const std::vector<Symbol>* m_names = &none;
    const ProjectElement* m_source = nullptr;
    bool m_known = false;
};

const std::vector<Symbol> InheritedNames::none;

/// One search for one setting.
class Search {
public:
    /// `property` is the symbol of the class's save name.
    Search(const PropertyClass& propertyClass, Symbol property, PropertyInheritanceInformation* info,
           SettingOrigins* origins)
        : m_class(propertyClass),
          m_property(property),
          m_isList(propertyClass.type() == PropertyClass::StringList),
          m_info(info),
          m_origins(origins) {}

    QString run(ProjectElement* element, const QString& configName) {
        if (m_property) // else no attribute has this name anywhere
            walk(element, Symbol::findConfiguration(configName));
        if (!m_hits.isEmpty())
            return gathered();
        if (m_info)
            m_info->append({m_class.defaultValue(), QString(""), nullptr});
        if (m_origins)
            m_origins->append({nullptr, QString(), m_class.defaultValue()});
        return m_class.defaultValue();
    }

private:
    void walk(ProjectElement* element, Symbol configuration) {
        const bool isCommon = configuration == Symbol::common();
        InheritedNames names(configuration);
        for (; element; element = element->parent()) {
            if (element->hasConfigurations()) {
                if (look(element, configuration, m_info))
                    return;
                if (!isCommon && lookFurther(element, names.at(element)))
                    return;
            }
            names.leave(element);
        }
    }

    bool lookFurther(ProjectElement* element, const std::vector<Symbol>& inherited) {
        for (const Symbol name : inherited) {
            if (look(element, name, m_info))
                return true;
        }
        return look(element, Symbol::common(), nullptr);
    }

    /// Whether the search ends with what the element states in this configuration.
    bool look(ProjectElement* element, Symbol configuration, PropertyInheritanceInformation* info) {
        const QString* value = element->statedValue(configuration, m_property);
        if (!value)
            return false;
        if (info)
            info->append({*value, element->getName(), element});
        if (m_origins)
            m_origins->append({element, configuration.text(), *value});
        m_hits.append(value);
        return !m_isList;
    }

    /// The hits joined by ";", but for the empty ones in front.
    QString gathered() const {
        if (m_hits.size() == 1)
            return *m_hits[0];
        qsizetype size = m_hits.size();
        for (const QString* hit : m_hits)
            size += hit->size();
        QString result(size, Qt::Uninitialized);
        QChar* out = result.data();
        for (const QString* hit : m_hits) {
            if (out != result.constData())
                *out++ = u';';
            out = std::copy(hit->cbegin(), hit->cend(), out);
        }
        result.truncate(out - result.constData());
        return result;
    }

    const PropertyClass& m_class;
    const Symbol m_property;
    const bool m_isList;
    PropertyInheritanceInformation* m_info;
    SettingOrigins* m_origins;
    QVarLengthArray<const QString*, 64> m_hits;
};

} // namespace

QString ProjectSystem::settingFor(ProjectElement* element, const PropertyClass& propertyClass,
                                  const QString& configName, PropertyInheritanceInformation* info,
                                  SettingOrigins* origins) const {
    return Search(propertyClass, Symbol::find(propertyClass.saveName()), info, origins)
        .run(element, configName);
}

QString ProjectSystem::settingFor(ProjectElement* element, Setting setting, const QString& configName) const {
    return Search(propertyClass(setting), settingSymbol(setting), nullptr, nullptr).run(element, configName);
}

QString ProjectSystem::settingForExpanded(ProjectElement* element, const PropertyClass& propertyClass,
                                          const QString& configName) const {
    return MacroSystem::replaceMacros(NodeMacros(*this, element, configName),
                                      settingFor(element, propertyClass, configName));
}

QString ProjectSystem::settingForExpanded(ProjectElement* element, Setting setting,
                                          const QString& configName) const {
    return MacroSystem::replaceMacros(NodeMacros(*this, element, configName),
                                      settingFor(element, setting, configName));
}

QString ProjectSystem::specificSettingFor(ProjectElement* element, const PropertyClass& propertyClass,
                                          const QString& configName) const {
    QString value;
    element->getProperty(configName, propertyClass.saveName(), value, nullptr);
    return value;
}

QString ProjectSystem::commonSettingFor(const ProjectElement* element, Setting setting) {
    const QString* value = element->statedValue(Symbol::common(), settingSymbol(setting));
    return value ? *value : QString();
}

QString ProjectSystem::getProjectType(ProjectElement* project) const {
    return commonSettingFor(project, Setting::project_type);
}

QString ProjectSystem::platform(ProjectElement* element) const {
    return element ? settingFor(element, Setting::Platform, "Common") : QString(Get_PLATFORM());
}

ProjectElement* ProjectSystem::findConfiguration(ProjectElement* element, const QString& name) const {
    return element->firstConfiguration(name);
}

QStringList ProjectSystem::configurations(ProjectElement* element, int flags) const {
    QStringList names;
    if (flags & IncludeCommon)
        names.append("Common");
    ProjectElement* solution = element ? solutionContaining(element) : m_solution.get();
    for (; solution; solution = solution->parent()) {
        const ElementMap declared = solution->configurations();
        for (auto entry = declared.cbegin(); entry != declared.cend(); ++entry) {
            if (names.contains(entry.key()))
                continue;
            if (entry.value()->hasAttribute("hidden")) {
                if (flags & IncludeHidden)
                    names.append(entry.key());
            } else if ((flags & IncludeVisible) && entry.key() != "Common" &&
                       settingFor(solution, Setting::Platform, entry.key()) == Get_PLATFORM()) {
                names.append(entry.key());
            }
        }
    }
    names.sort();
    return names.isEmpty() ? QStringList("Common") : names;
}

PropertyValueList ProjectSystem::applicableSettingsFor(ProjectElement*, const QString&) {
    return PropertyValueList(true);
}

bool ProjectSystem::upToDate(ProjectElement* element, const PropertyClass& propertyClass,
                             const QString& configName, const QDateTime& since, MessageReceiver* receiver,
                             bool quiet) const {
    const bool unchanged = upToDate1(element, propertyClass, configName, since);
    if (!unchanged && !quiet && receiver)
        receiver->message(propertyClass.shortDescription() + " property has changed.");
    return unchanged;
}

/// The walk of settingFor over the times of changes.
bool ProjectSystem::upToDate1(ProjectElement* element, const PropertyClass& propertyClass,
                              const QString& configName, const QDateTime& since) const {
    const bool isSingle = propertyClass.type() != PropertyClass::StringList;
    QStringList names(configName);
    if (configName != "Common") {
        if (const ProjectElement* solution = solutionContaining(element)) {
            for (const Symbol inherited : solution->inherited(Symbol::find(configName)))
                names.append(inherited.text());
        }
        names.append("Common");
    }
    for (; element; element = element->parent()) {
        for (const QString& name : names) {
            bool newer = false;
            if (element->propertyHasChanged(name, propertyClass.saveName(), since, newer) &&
                (isSingle || newer))
                return !newer;
        }
    }
    return true;
}
